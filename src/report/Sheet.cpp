// SPDX-License-Identifier: Apache-2.0
#include "report/Sheet.h"

#include <algorithm>

namespace gantrix {
namespace {

std::string Escaped(const std::string& text) {
    std::string out;
    for (char c : text) {
        switch (c) {
            case '&':
                out += "&amp;";
                break;
            case '<':
                out += "&lt;";
                break;
            case '>':
                out += "&gt;";
                break;
            case '"':
                out += "&quot;";
                break;
            default:
                out += c;
        }
    }
    return out;
}

std::string Cells(const SheetRow& row, const char* tag, int columns) {
    std::string out = "<tr>";
    for (int c = 0; c < columns; ++c) {
        const std::string text = c < static_cast<int>(row.cells.size()) ? row.cells[c] : "";
        out += std::string("<") + tag + ">" + Escaped(text) + "</" + tag + ">";
    }
    return out + "</tr>\n";
}

}  // namespace

std::string Sheet::CellText(int row, int column) const {
    if (row < 1 || row > static_cast<int>(rows.size())) return "";
    const std::vector<std::string>& cells = rows[row - 1].cells;
    if (column < 1 || column > static_cast<int>(cells.size())) return "";
    return cells[column - 1];
}

int Sheet::ColumnCount() const {
    std::size_t widest = 0;
    for (const SheetRow& row : rows) widest = std::max(widest, row.cells.size());
    return static_cast<int>(widest);
}

void Sheet::AddTable(const std::string& title, std::vector<std::string> headings,
                     std::vector<std::vector<std::string>> body, bool hex) {
    if (!title.empty()) rows.push_back({RowKind::Title, {title}});
    if (!headings.empty()) rows.push_back({RowKind::Header, std::move(headings), hex});
    for (auto& cells : body) rows.push_back({RowKind::Body, std::move(cells), hex});
    rows.push_back({RowKind::Blank, {}});
}

void Sheet::AddNote(const std::string& text) {
    // A note belongs to the table above it: it takes the place of that table's blank line.
    if (!rows.empty() && rows.back().kind == RowKind::Blank) rows.pop_back();
    rows.push_back({RowKind::Note, {text}});
    rows.push_back({RowKind::Blank, {}});
}

std::string SheetsToHtml(const std::vector<Sheet>& sheets, const std::string& title,
                         const std::string& subtitle) {
    std::string html =
        "<html><head><style>"
        "table { border-collapse: collapse; margin-bottom: 6px; }"
        "th { background-color: #e4e4e4; text-align: left; }"
        "h3 { margin-top: 10px; margin-bottom: 4px; }"
        "</style></head><body>\n";
    html += "<h1>" + Escaped(title) + "</h1>\n<p>" + Escaped(subtitle) + "</p>\n";
    bool first = true;
    for (const Sheet& sheet : sheets) {
        html += first ? "<h2>" : "<h2 style=\"page-break-before: always\">";
        html += Escaped(sheet.name) + "</h2>\n";
        first = false;
        // The rows between two blank lines (or a title) make one HTML table.
        bool open = false;
        int columns = 0;
        const auto close = [&] {
            if (open) html += "</table>\n";
            open = false;
        };
        for (std::size_t i = 0; i < sheet.rows.size(); ++i) {
            const SheetRow& row = sheet.rows[i];
            switch (row.kind) {
                case RowKind::Title:
                    close();
                    html += "<h3>" + Escaped(row.cells.empty() ? "" : row.cells[0]) + "</h3>\n";
                    break;
                case RowKind::Note:
                    close();
                    html += "<p>" + Escaped(row.cells.empty() ? "" : row.cells[0]) + "</p>\n";
                    break;
                case RowKind::Blank:
                    close();
                    break;
                case RowKind::Header:
                case RowKind::Body:
                    if (!open) {
                        columns = 0;
                        for (std::size_t j = i; j < sheet.rows.size(); ++j) {
                            const RowKind kind = sheet.rows[j].kind;
                            if (kind != RowKind::Header && kind != RowKind::Body) break;
                            columns =
                                std::max(columns, static_cast<int>(sheet.rows[j].cells.size()));
                        }
                        html += "<table border=\"1\" cellspacing=\"0\" cellpadding=\"3\">\n";
                        open = true;
                    }
                    html += row.kind == RowKind::Header
                                ? "<thead>" + Cells(row, "th", columns) + "</thead>"
                                : Cells(row, "td", columns);
                    break;
            }
        }
        close();
    }
    return html + "</body></html>\n";
}

}  // namespace gantrix
