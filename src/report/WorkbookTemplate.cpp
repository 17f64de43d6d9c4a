// SPDX-License-Identifier: Apache-2.0
#include "report/WorkbookTemplate.h"

#include <algorithm>
#include <sstream>

namespace gantrix {
namespace {

// Blanks, tabs and the carriage return of a file written with CR LF line ends.
std::string Stripped(const std::string& text) {
    const char* space = " \t\r";
    const auto first = text.find_first_not_of(space);
    if (first == std::string::npos) return "";
    return text.substr(first, text.find_last_not_of(space) - first + 1);
}

}  // namespace

std::optional<WorkbookTemplate> ParseWorkbookTemplate(const std::string& text) {
    WorkbookTemplate workbook;
    bool headed = false;
    std::istringstream lines(text);
    std::string line;
    while (std::getline(lines, line)) {
        line = Stripped(line);
        if (line.empty() || line[0] == '#') continue;
        const std::size_t blank = line.find_first_of(" \t");
        const std::string word = line.substr(0, blank);
        const std::string rest = blank == std::string::npos ? "" : Stripped(line.substr(blank + 1));
        if (!headed) {
            if (word != "gantrix-workbook") return std::nullopt;
            if (rest == "parameter") {
                workbook.kind = WorkbookKind::Parameter;
            } else if (rest == "network") {
                workbook.kind = WorkbookKind::Network;
            } else {
                return std::nullopt;
            }
            headed = true;
        } else if (word == "sheet" && !rest.empty()) {
            auto& sheets = workbook.sheets;
            if (std::find(sheets.begin(), sheets.end(), rest) != sheets.end()) return std::nullopt;
            sheets.push_back(rest);
        } else {
            return std::nullopt;
        }
    }
    if (!headed) return std::nullopt;
    auto& sheets = workbook.sheets;
    if (std::find(sheets.begin(), sheets.end(), "TEMP") == sheets.end()) sheets.push_back("TEMP");
    return workbook;
}

}  // namespace gantrix
