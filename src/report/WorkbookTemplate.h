// SPDX-License-Identifier: Apache-2.0
#pragma once
// The workbook files of the spreadsheet application: small text files that say which kind of
// workbook they are and which sheets they have (docs/spreadsheet-workbooks.md).
//
//   gantrix-workbook parameter        the first line that is not blank or a # comment
//   sheet Capacity/Latch Range Setting
//   sheet TEMP

#include <optional>
#include <string>
#include <vector>

namespace gantrix {

enum class WorkbookKind { Parameter, Network };

struct WorkbookTemplate {
    WorkbookKind kind = WorkbookKind::Parameter;
    // In order; "TEMP", the sheet through which the component hands over its data, is always
    // there (last when the file does not list it).
    std::vector<std::string> sheets;
};

// The template in text; nullopt when the text is not a workbook of this application (no or an
// unknown kind line, any other line, a sheet without a name or listed twice).
std::optional<WorkbookTemplate> ParseWorkbookTemplate(const std::string& text);

}  // namespace gantrix
