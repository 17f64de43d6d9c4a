// SPDX-License-Identifier: Apache-2.0
#pragma once
// A sheet of the spreadsheet application as rows of text cells. The kind of a row says how it
// is shown, printed and exported: a title over a table, the table's column headings, its
// body, a note below it, or a blank line between tables.

#include <string>
#include <vector>

namespace gantrix {

enum class RowKind { Title, Header, Body, Note, Blank };

struct SheetRow {
    RowKind kind = RowKind::Body;
    std::vector<std::string> cells;
    // A row of hexadecimal bytes: text even where it reads as a number ("10"), and narrow
    // however many cells it has.
    bool hex = false;
};

struct Sheet {
    std::string name;
    std::vector<SheetRow> rows;

    // Text of the cell at row, column (counting from 1, as the automation model does); ""
    // outside the rows and cells.
    std::string CellText(int row, int column) const;
    // The widest row.
    int ColumnCount() const;

    // Appends a table: its title, its headings (none when empty), its rows, then a blank line.
    // hex marks its headings and body as rows of hexadecimal bytes.
    void AddTable(const std::string& title, std::vector<std::string> headings,
                  std::vector<std::vector<std::string>> body, bool hex = false);
    void AddNote(const std::string& text);
};

// The sheets as an HTML document for printing: a heading and the tables of each sheet, every
// sheet after the first on a new page; a table's headings repeat on each page it runs over.
std::string SheetsToHtml(const std::vector<Sheet>& sheets, const std::string& title,
                         const std::string& subtitle);

}  // namespace gantrix
