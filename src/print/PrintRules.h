// SPDX-License-Identifier: Apache-2.0
#pragma once
// The spreadsheet hand-over: the network workbooks that edit the network block, the parameter
// workbook that prints every parameter. Each copies a workbook template from the component's
// directory into the project, writes the working files and a few cells of the workbook's
// "TEMP" sheet that tell it where its data are, runs its "auto_open" macro and leaves the
// application visible. The component never reads a workbook back: the network part returns
// through "param.$$$" (MergeParameterFile), and the parameter menu refuses to close while a
// workbook of the run is open (CheckExcel).
//
// Every automation call and file step of a hand-over is guarded on its own: one that fails is
// skipped and the next one runs, so a missing template or a spreadsheet that refuses a call
// never ends the menu.

#include <string>

#include "common/ModuleState.h"
#include "store/ParameterFiles.h"

namespace gantrix {

inline constexpr const char* kExcelProgId = "excel.application";

// The project-specific name of a workbook copied from template file into the project.
//
// The name is made of three parts of the project directory, lower case, followed by file
// unchanged: the first character of the first path component (which stands where a drive
// letter stood in a drive-rooted path), then the fourth and the fifth path components. A
// leading "/" is skipped; missing components count as empty; only ASCII letters are
// lowered. Examples for file "MORNET.xls":
//   "/home/ann/plc/Line1/"         -> "hline1MORNET.xls"
//   "/data/a/b/Cell/Two/deeper/"   -> "dcelltwoMORNET.xls"
//   "/srv/plc/"                    -> "sMORNET.xls"
//   "project/"                     -> "pMORNET.xls"
std::string MakeBookName(const std::string& projectDir, const std::string& file);

// Sets Cells(row, column) of sheet sheetName of the open workbook bookName to value, through
// the module's application reference; column is given by its letters ("A", "B"). Errors,
// a missing workbook or sheet included, are ignored; always true.
bool SetSheetCell(ModuleState& state, const std::string& bookName, const std::string& sheetName,
                  const std::string& column, int row, const std::string& value);

// The path from the directory of the installed library to the installed workbook templates
// ("../share/gantrixa0j/templates", one more "../" below a multiarch library directory).
extern const char* const kTemplatesFromLibrary;

// The directory the workbook templates are copied from, ending in "/", found from appPath,
// the component's own directory: appPath + kTemplatesFromLibrary where the component is
// installed (any prefix), else "share/gantrixa0j/templates/" beside it, where the build tree
// keeps them beside the library and the programs. When neither exists, the installed place,
// so that a missing template is looked for where it belongs.
std::string GetTemplatePath(const std::string& appPath = GetAppPath());

// The network workbook of mode index 0..3: 0 MORNET mode, 1 MORNET II combination mode,
// 2 MORNET II mode, 3 the network workbook of the U CPUs. Other indexes do nothing.
// appPath is the component's directory, which the workbook's "TEMP" sheet names; the
// template is copied from templatePath. Both end in "/".
void PrintNetworkSettings(ModuleState& state, int index, const std::string& appPath = GetAppPath(),
                          const std::string& templatePath = GetTemplatePath());

// The parameter workbook; the parameters go to it through "param.$$p".
void PrintParameterSettings(ModuleState& state, const std::string& appPath = GetAppPath(),
                            const std::string& templatePath = GetTemplatePath());

}  // namespace gantrix
