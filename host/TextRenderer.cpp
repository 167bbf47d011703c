// Plain-text rendering of the display's snapshot: what a person sees, one line per row.
#include "TextRenderer.h"

#include <nlohmann/json.hpp>
#include <sstream>

namespace {

std::string textOf(const nlohmann::json& value) {
    return value.is_string() ? value.get<std::string>() : "";
}

std::string focusMark(const nlohmann::json& entry) {
    return entry.value("focused", false) ? "> " : "  ";
}

std::string joinColumns(const nlohmann::json& columns) {
    std::string line;
    for (const auto& column : columns) {
        const std::string text = textOf(column);
        if (!text.empty()) {
            line += (line.empty() ? "" : " | ") + text;
        }
    }
    return line;
}

std::string itemValue(const nlohmann::json& item) {
    const std::string kind = item.value("kind", "");
    if (kind == "choiceGroup") {
        std::string line;
        for (const auto& choice : item.value("choices", nlohmann::json::array())) {
            line += std::string(choice.value("selected", false) ? "[x] " : "[ ] ") + textOf(choice["text"]) +
                    "  ";
        }
        return line;
    }
    if (kind == "slider") {
        return std::to_string(item.value("value", 0)) + " (" + std::to_string(item.value("min", 0)) + ".." +
               std::to_string(item.value("max", 0)) + ")";
    }
    return textOf(item.value("value", nlohmann::json()));
}

void renderRows(const nlohmann::json& widget, std::ostringstream& out) {
    for (const auto& row : widget.value("rows", nlohmann::json::array())) {
        std::string marks;
        if (row.contains("ticked")) {
            marks = row.value("ticked", false) ? "[x] " : "[ ] ";
        } else if (row.contains("chosen")) {
            marks = row.value("chosen", false) ? "(*) " : "( ) ";
        }
        std::string text = joinColumns(row.value("columns", nlohmann::json::array()));
        if (row.contains("lines")) {
            for (const auto& line : row["lines"]) {
                for (const auto& cell : line) {
                    text += (text.empty() ? "" : " | ") + textOf(cell.value("text", nlohmann::json()));
                }
            }
        }
        out << focusMark(row) << marks << text << (row.value("grey", false) ? " (grey)" : "") << "\n";
    }
}

void renderWidget(const nlohmann::json& widget, std::ostringstream& out) {
    const std::string title = textOf(widget.value("title", nlohmann::json()));
    if (!title.empty()) {
        out << "== " << title << " ==\n";
    }
    const std::string ticker = textOf(widget.value("ticker", nlohmann::json()));
    if (!ticker.empty()) {
        out << "~ " << ticker << " ~\n";
    }
    const std::string kind = widget.value("kind", "");
    if (kind == "form") {
        for (const auto& item : widget.value("items", nlohmann::json::array())) {
            const std::string label = textOf(item.value("label", nlohmann::json()));
            out << focusMark(item) << label << (label.empty() ? "" : ": ") << itemValue(item) << "\n";
        }
    } else if (kind == "textBox" || kind == "alert") {
        out << textOf(widget.value("text", nlohmann::json())) << "\n";
    } else if (kind == "popupConfirm" || kind == "contextMenu") {
        const int focus = widget.value("focus", -1);
        int index = 0;
        for (const auto& entry : widget.value("entries", nlohmann::json::array())) {
            out << (index++ == focus ? "> " : "  ") << textOf(entry) << "\n";
        }
    } else if (kind == "player") {
        out << "player: state " << widget.value("state", 0) << "\n";
    } else {
        renderRows(widget, out);
    }
    const nlohmann::json menu = widget.value("menu", nlohmann::json());
    if (menu.is_object()) {
        out << "-- menu --\n";
        int index = 0;
        const int focus = menu.value("focus", -1);
        for (const auto& entry : menu.value("entries", nlohmann::json::array())) {
            out << (index++ == focus ? "> " : "  ") << textOf(entry) << "\n";
        }
    }
}

} // namespace

std::string TextRenderer::render(const nlohmann::json& snapshot) {
    std::ostringstream out;
    if (!snapshot.value("shown", false)) {
        return "(application hidden)\n";
    }
    const nlohmann::json tabBar = snapshot.value("tabBar", nlohmann::json());
    if (tabBar.is_object()) {
        int index = 0;
        const int current = tabBar.value("current", -1);
        for (const auto& label : tabBar.value("labels", nlohmann::json::array())) {
            out << (index++ == current ? "[" + textOf(label) + "]" : " " + textOf(label) + " ") << " ";
        }
        out << "\n";
    }
    const nlohmann::json screen = snapshot.value("screen", nlohmann::json());
    if (screen.is_object()) {
        renderWidget(screen, out);
    } else {
        out << "(empty screen)\n";
    }
    const nlohmann::json popup = snapshot.value("popup", nlohmann::json());
    if (popup.is_object()) {
        out << "+-- popup --\n";
        renderWidget(popup, out);
        out << "+----------\n";
    }
    std::string keys;
    for (const auto& label : snapshot.value("softKeys", nlohmann::json::array())) {
        keys += "[" + textOf(label) + "] ";
    }
    if (!keys.empty()) {
        out << keys << "\n";
    }
    return out.str();
}
