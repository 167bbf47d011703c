// The display as plain data for the host: web page, text renderer and control interface.
//
// Shape of Display::snapshot() (stable; fields are only ever added):
// {
//   "revision": 12,                         changes with every visible change
//   "model": {"name", "softKeyBar": bool, "softKeys": n, "width", "height", "visibleLines"},
//   "shown": bool,                          the application is on screen
//   "keypad": {"sending": bool},            false while digits go to the application
//   "tabBar": null | {"labels": [..], "current": i, "active": bool, "leftUpwards": bool},
//   "screen": null | <widget>,              the full screen (in a tab screen: the current tab's)
//   "popup": null | <widget>,               alert, popup confirm, context menu or player on top
//   "softKeys": ["Select", "", ...]         one label per soft key; [] without a soft-key bar
// }
// <widget> common fields: "kind", "ownerId", "title", "ticker" (text or null), "commands"
//   (labels), "highlight" (focus highlight shown), "menu" (null or {"entries": [..], "focus": i},
//   the widget's open built-in or options menu). Then by kind:
//   form:           "proportion", "focus", "items": [<item> + "focused"]
//   list, exclusiveList, multipleList: "focus", "rows": [{"columns": [..], "image", "reserveImage",
//                   "grey", "arrow", "ownerId", "focused", "chosen" (exclusive), "ticked" (multiple)}]
//   table:          "header": {"lines": [[<cell>]], "widths"}, "focus" (-1: no row), "reserveArrow",
//                   "rows": [{"lines": [[<cell>]], "widths", "arrow", "reserveArrow", "ownerId",
//                   "focused"}], <cell> = {"text", "grey", "images": [<image>]}
//   textBox:        "text" (masked for passwords), "caret", "textType", "readOnly", "maxSize"
//   alert:          "text", "alertType", "image", "focus" (highlighted command)
//   popupConfirm, contextMenu: "entries": [labels], "focus"; popupConfirm also "state"
//   player:         "state", "mode", "progress": {"min", "max", "step", "value"}
//   tabScreen:      "tabBar" (never seen as "screen": the current tab's widget stands there)
// <item> fields: "kind", "ownerId", "label", "focusable", then by kind:
//   textField:      "fieldType", "value" (masked for passwords), "editing", "readOnly",
//                   "maxLength", "arrow"
//   choiceGroup:    "choiceType" ("exclusive"/"multiple"), "row", "choices": [{"text", "selected",
//                   "image"}]
//   selectionField: "entries", "selected", "value", "popup" (null or {"focus"})
//   slider:         "min", "max", "value", "interval", "automatic"
//   imageItem:      "image", "altText", "arrow", "informsOnOk"
// <image>: null or {"id", "kind" ("png", "jpeg", "gif", "bmp", "broken"), "url" (not when broken), "width",
//   "height", "path" and "name" (pictures made from a path), "problem" (broken only)}
#include <nlohmann/json.hpp>

#include "display/Display.h"
#include "display/Displayable.h"
#include "display/Image.h"
#include "display/TabScreen.h"

namespace DisplayAPI {

nlohmann::json describeImage(const std::shared_ptr<const ImageData>& image) {
    if (!image) {
        return nullptr;
    }
    nlohmann::json out = {
        {"id", image->id}, {"kind", image->kind}, {"width", image->width}, {"height", image->height}};
    if (!image->path.empty()) {
        out["path"] = image->path;
        out["name"] = image->path.substr(image->path.rfind('/') + 1);
    }
    if (image->kind == "broken") {
        out["problem"] = image->problem;
    } else {
        // The host serves the picture's bytes there while a widget shows it.
        out["url"] = "/api/pictures/" + std::to_string(image->id);
    }
    return out;
}

namespace {

nlohmann::json describeWidget(const Displayable* widget) {
    if (widget == nullptr) {
        return nullptr;
    }
    nlohmann::json out;
    widget->describe(out);
    return out;
}

} // namespace

nlohmann::json Display::snapshot() const {
    core::Lock lock(core::mutex());
    nlohmann::json out;
    out["revision"] = revision();
    out["model"] = {
        {"name", mModel.name},   {"softKeyBar", mModel.softKeyBar}, {"softKeys", core::softKeyCount()},
        {"width", mModel.width}, {"height", mModel.height},         {"visibleLines", mModel.visibleLines}};
    out["shown"] = mShown;
    out["keypad"] = {{"sending", mKeypadSending}};
    out["tabBar"] = nullptr;
    Displayable* full = screen();
    if (auto* tabScreen = dynamic_cast<TabScreen*>(full)) {
        nlohmann::json bar;
        tabScreen->describeTabBar(bar);
        out["tabBar"] = bar;
        full = tabScreen->currentTab();
    }
    out["screen"] = describeWidget(full);
    out["popup"] = describeWidget(popup());
    Displayable* current = getCurrent();
    out["softKeys"] = current != nullptr
                          ? current->softKeyLabels()
                          : std::vector<std::string>(static_cast<std::size_t>(core::softKeyCount()));
    return out;
}

} // namespace DisplayAPI
