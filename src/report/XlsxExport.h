// SPDX-License-Identifier: Apache-2.0
#pragma once
// Saving sheets as a spreadsheet file (.xlsx, Office Open XML) that any spreadsheet program
// opens: one worksheet per sheet, titles and headings in bold, whole numbers as numbers.

#include <string>
#include <vector>

#include "report/Sheet.h"

namespace gantrix {

// The name a worksheet gets for a sheet name: the characters a spreadsheet refuses in sheet
// names ([ ] : * ? / \) become "-", and the name is cut to 31 characters.
std::string XlsxSheetName(const std::string& name);

// Writes the sheets to path. The file is written beside its target and renamed over it, so a
// failure leaves an existing file as it was; it raises a RuntimeError naming the file.
void WriteXlsx(const std::vector<Sheet>& sheets, const std::string& path);

}  // namespace gantrix
