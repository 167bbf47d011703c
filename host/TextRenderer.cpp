// Plain-text rendering of the display's snapshot: what a person sees, one line per row.
#include "TextRenderer.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <sstream>
#include <vector>

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

// "[picture: ALT] " for a picture that can be shown, "" for none; ALT is the alternative text, else
// the file's name, else the size and format.
std::string pictureMark(const nlohmann::json& image, const std::string& altText = "") {
    if (!image.is_object() || image.value("kind", "") == "broken") {
        return "";
    }
    std::string alt = altText.empty() ? image.value("name", "") : altText;
    if (alt.empty()) {
        alt = std::to_string(image.value("width", 0)) + "x" + std::to_string(image.value("height", 0)) + " " +
              image.value("kind", "");
    }
    return "[picture: " + alt + "] ";
}

// An image item's picture (or alternative text); buttons (items that report Ok) in brackets.
std::string imageItemValue(const nlohmann::json& item) {
    const std::string altText = textOf(item.value("altText", nlohmann::json()));
    std::string shown = pictureMark(item.value("image", nlohmann::json()), altText);
    shown = shown.empty() ? altText : shown.substr(0, shown.size() - 1);
    if (item.value("informsOnOk", false)) {
        shown = "[ " + shown + " ]";
    }
    return shown + (item.value("arrow", false) ? " >" : "");
}

std::string itemValue(const nlohmann::json& item) {
    const std::string kind = item.value("kind", "");
    if (kind == "choiceGroup") {
        const bool exclusive = item.value("choiceType", "") == "exclusive";
        const char* const ticked = exclusive ? "(*) " : "[x] ";
        const char* const unticked = exclusive ? "( ) " : "[ ] ";
        // The row that Ok would toggle is marked while the group has the focus.
        const int row = item.value("focused", false) ? item.value("row", -1) : -1;
        std::string line;
        int index = 0;
        for (const auto& choice : item.value("choices", nlohmann::json::array())) {
            line += std::string(index++ == row ? ">" : "") +
                    (choice.value("selected", false) ? ticked : unticked) +
                    pictureMark(choice.value("image", nlohmann::json())) + textOf(choice["text"]) + "  ";
        }
        return line;
    }
    if (kind == "slider") {
        return std::to_string(item.value("value", 0)) + " (" + std::to_string(item.value("min", 0)) + ".." +
               std::to_string(item.value("max", 0)) + ")" + (item.value("automatic", false) ? " auto" : "");
    }
    if (kind == "imageItem") {
        return imageItemValue(item);
    }
    if (kind == "selectionField") {
        return "< " + textOf(item.value("value", nlohmann::json())) + " >";
    }
    return textOf(item.value("value", nlohmann::json()));
}

// The entries of an open popup selection under its field, the highlighted one marked.
void renderOpenPopup(const nlohmann::json& item, std::ostringstream& out) {
    const nlohmann::json popup = item.value("popup", nlohmann::json());
    if (!popup.is_object()) {
        return;
    }
    const int focus = popup.value("focus", -1);
    int index = 0;
    for (const auto& entry : item.value("entries", nlohmann::json::array())) {
        out << "    " << (index++ == focus ? "> " : "  ") << textOf(entry) << "\n";
    }
}

// "playing, call mode  [#####-----] 15/30"
std::string playerLine(const nlohmann::json& player) {
    static const char* const states[] = {"playing", "ready", "stopped", "finished", "recording"};
    const int state = player.value("state", 1);
    const nlohmann::json progress = player.value("progress", nlohmann::json::object());
    const int minimum = progress.value("min", 0);
    const int maximum = progress.value("max", 0);
    const int value = progress.value("value", 0);
    const int span = maximum > minimum ? maximum - minimum : 1;
    const int filled = std::clamp((value - minimum) * 10 / span, 0, 10);
    std::string line = state >= 0 && state < 5 ? states[state] : "state " + std::to_string(state);
    line += player.value("mode", 0) == 1 ? ", record mode" : ", call mode";
    line += "  [" + std::string(static_cast<std::size_t>(filled), '#') +
            std::string(static_cast<std::size_t>(10 - filled), '-') + "] " + std::to_string(value) + "/" +
            std::to_string(maximum);
    return line;
}

void renderRows(const nlohmann::json& widget, std::ostringstream& out) {
    for (const auto& row : widget.value("rows", nlohmann::json::array())) {
        std::string marks;
        if (row.contains("ticked")) {
            marks = row.value("ticked", false) ? "[x] " : "[ ] ";
        } else if (row.contains("chosen")) {
            marks = row.value("chosen", false) ? "(*) " : "( ) ";
        }
        std::string text = pictureMark(row.value("image", nlohmann::json())) +
                           joinColumns(row.value("columns", nlohmann::json::array()));
        if (row.contains("lines")) {
            for (const auto& line : row["lines"]) {
                for (const auto& cell : line) {
                    std::string pictures;
                    for (const auto& image : cell.value("images", nlohmann::json::array())) {
                        pictures += pictureMark(image);
                    }
                    text +=
                        (text.empty() ? "" : " | ") + pictures + textOf(cell.value("text", nlohmann::json()));
                }
            }
        }
        out << focusMark(row) << marks << text << (row.value("grey", false) ? " (grey)" : "") << "\n";
    }
}

// ---- Tables: aligned columns under the header, one text line per cell line. ----

// Characters, not bytes, so that accented names keep the columns straight.
size_t displayWidth(const std::string& text) {
    size_t width = 0;
    for (const unsigned char c : text) {
        width += (c & 0xC0) != 0x80 ? 1 : 0;
    }
    return width;
}

// A cell line as text: its pictures as "[picture]", its text, "(grey)" when drawn inactive.
std::string cellText(const nlohmann::json& cell) {
    std::string text;
    for (size_t i = 0; i < cell.value("images", nlohmann::json::array()).size(); ++i) {
        text += "[picture] ";
    }
    text += textOf(cell.value("text", nlohmann::json()));
    if (cell.value("grey", false) && !text.empty()) {
        text += " (grey)";
    }
    return text;
}

using TextLines = std::vector<std::vector<std::string>>;

TextLines tableLines(const nlohmann::json& grid) {
    TextLines lines;
    for (const auto& line : grid.value("lines", nlohmann::json::array())) {
        std::vector<std::string> cells;
        for (const auto& cell : line) {
            cells.push_back(cellText(cell));
        }
        lines.push_back(cells);
    }
    return lines;
}

void widen(std::vector<size_t>& widths, const TextLines& lines) {
    for (const auto& line : lines) {
        if (widths.size() < line.size()) {
            widths.resize(line.size(), 0);
        }
        for (size_t i = 0; i < line.size(); ++i) {
            widths[i] = std::max(widths[i], displayWidth(line[i]));
        }
    }
}

std::string alignedLine(const std::vector<std::string>& cells, const std::vector<size_t>& widths) {
    size_t used = cells.size();
    while (used > 0 && cells[used - 1].empty()) {
        --used;
    }
    std::string line;
    for (size_t i = 0; i < used; ++i) {
        line += (i == 0 ? "" : " | ") + cells[i];
        if (i + 1 < used) {
            line += std::string(widths[i] - displayWidth(cells[i]), ' ');
        }
    }
    return line;
}

void renderTable(const nlohmann::json& widget, std::ostringstream& out) {
    const TextLines header = tableLines(widget.value("header", nlohmann::json::object()));
    std::vector<TextLines> rows;
    for (const auto& row : widget.value("rows", nlohmann::json::array())) {
        rows.push_back(tableLines(row));
    }
    std::vector<size_t> widths;
    widen(widths, header);
    for (const auto& row : rows) {
        widen(widths, row);
    }
    bool headerShown = false;
    for (const auto& line : header) {
        const std::string text = alignedLine(line, widths);
        if (!text.empty()) {
            out << "  " << text << "\n";
            headerShown = true;
        }
    }
    if (headerShown) {
        size_t total = 0;
        for (size_t width : widths) {
            total += width;
        }
        out << "  " << std::string(total + 3 * (widths.empty() ? 0 : widths.size() - 1), '-') << "\n";
    }
    const nlohmann::json rowList = widget.value("rows", nlohmann::json::array());
    for (size_t r = 0; r < rows.size(); ++r) {
        const std::string arrow = rowList[r].value("arrow", false) ? "  >" : "";
        for (size_t l = 0; l < rows[r].size(); ++l) {
            out << (l == 0 ? focusMark(rowList[r]) : "  ") << alignedLine(rows[r][l], widths)
                << (l == 0 ? arrow : "") << "\n";
        }
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
            renderOpenPopup(item, out);
        }
    } else if (kind == "textBox" || kind == "alert") {
        const std::string picture = pictureMark(widget.value("image", nlohmann::json()));
        if (!picture.empty()) {
            out << picture.substr(0, picture.size() - 1) << "\n";
        }
        out << textOf(widget.value("text", nlohmann::json())) << "\n";
    } else if (kind == "popupConfirm" || kind == "contextMenu") {
        const int focus = widget.value("focus", -1);
        int index = 0;
        for (const auto& entry : widget.value("entries", nlohmann::json::array())) {
            out << (index++ == focus ? "> " : "  ") << textOf(entry) << "\n";
        }
    } else if (kind == "table") {
        renderTable(widget, out);
    } else if (kind == "player") {
        out << "player: " << playerLine(widget) << "\n";
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
