// SPDX-License-Identifier: Apache-2.0
#include "report/XlsxExport.h"

#include <xlsxwriter.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "store/RuntimeError.h"

namespace gantrix {
namespace {

constexpr std::size_t kSheetNameLimit = 31;

// Whole numbers without a leading zero are stored as numbers, so that they add up in a
// spreadsheet; every other text stays text ("0010" and "1A0" included).
bool IsWholeNumber(const std::string& text) {
    if (text.empty() || text.size() > 9) return false;
    if (text.size() > 1 && text[0] == '0') return false;
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// A UTF-8 sequence is never cut in half.
std::string CutUtf8(const std::string& text, std::size_t limit) {
    if (text.size() <= limit) return text;
    std::size_t end = limit;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
    return text.substr(0, end);
}

// Column widths in characters: the widest cell of the column outside the titles and notes,
// which run across the empty cells to their right.
std::vector<double> ColumnWidths(const Sheet& sheet) {
    std::vector<double> widths(static_cast<std::size_t>(sheet.ColumnCount()), 8.0);
    for (const SheetRow& row : sheet.rows) {
        if (row.kind == RowKind::Title || row.kind == RowKind::Note) continue;
        for (std::size_t c = 0; c < row.cells.size(); ++c) {
            const double width = static_cast<double>(row.cells[c].size()) + 2.0;
            widths[c] = std::min(60.0, std::max(widths[c], width));
        }
    }
    return widths;
}

void Check(lxw_error error, const std::string& path) {
    if (error != LXW_NO_ERROR) {
        throw RuntimeError(kErrPathFileAccess,
                           "Cannot write \"" + path + "\": " + lxw_strerror(error));
    }
}

void WriteSheet(lxw_workbook* book, const Sheet& sheet, lxw_format* title, lxw_format* heading,
                const std::string& path) {
    const std::string name = XlsxSheetName(sheet.name);
    lxw_worksheet* worksheet = workbook_add_worksheet(book, name.c_str());
    if (worksheet == nullptr) {
        throw RuntimeError(kErrPathFileAccess,
                           "Cannot write \"" + path + "\": no sheet named \"" + name + "\"");
    }
    const std::vector<double> widths = ColumnWidths(sheet);
    for (std::size_t c = 0; c < widths.size(); ++c) {
        const auto column = static_cast<lxw_col_t>(c);
        Check(worksheet_set_column(worksheet, column, column, widths[c], nullptr), path);
    }
    for (std::size_t r = 0; r < sheet.rows.size(); ++r) {
        const SheetRow& row = sheet.rows[r];
        lxw_format* format = row.kind == RowKind::Title    ? title
                             : row.kind == RowKind::Header ? heading
                                                           : nullptr;
        for (std::size_t c = 0; c < row.cells.size(); ++c) {
            const std::string& text = row.cells[c];
            if (text.empty()) continue;
            const auto at = static_cast<lxw_row_t>(r);
            const auto column = static_cast<lxw_col_t>(c);
            if (row.kind == RowKind::Body && !row.hex && IsWholeNumber(text)) {
                Check(
                    worksheet_write_number(worksheet, at, column, std::atof(text.c_str()), nullptr),
                    path);
            } else {
                Check(worksheet_write_string(worksheet, at, column, text.c_str(), format), path);
            }
        }
    }
}

}  // namespace

std::string XlsxSheetName(const std::string& name) {
    std::string out = name;
    for (char& c : out) {
        if (std::string_view("[]:*?/\\").find(c) != std::string_view::npos) c = '-';
    }
    return CutUtf8(out, kSheetNameLimit);
}

void WriteXlsx(const std::vector<Sheet>& sheets, const std::string& path) {
    const std::string part = path + ".part";
    lxw_workbook* book = workbook_new(part.c_str());
    if (book == nullptr) throw FileError("Cannot write", path, ENOMEM);
    try {
        lxw_format* title = workbook_add_format(book);
        format_set_bold(title);
        format_set_font_size(title, 12);
        lxw_format* heading = workbook_add_format(book);
        format_set_bold(heading);
        format_set_bg_color(heading, 0xE4E4E4);
        for (const Sheet& sheet : sheets) WriteSheet(book, sheet, title, heading, path);
    } catch (...) {
        workbook_close(book);
        std::remove(part.c_str());
        throw;
    }
    errno = 0;
    const lxw_error closed = workbook_close(book);
    if (closed != LXW_NO_ERROR) {
        const int error = errno;
        std::remove(part.c_str());
        // The system's reason says more than the library's guess at one.
        if (closed == LXW_ERROR_CREATING_XLSX_FILE && error != 0) {
            throw FileError("Cannot write", path, error);
        }
        Check(closed, path);
    }
    if (std::rename(part.c_str(), path.c_str()) != 0) {
        const int error = errno;
        std::remove(part.c_str());
        throw FileError("Cannot write", path, error);
    }
}

}  // namespace gantrix
