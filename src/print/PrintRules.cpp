// SPDX-License-Identifier: Apache-2.0
#include "print/PrintRules.h"

#include <filesystem>
#include <functional>
#include <stdexcept>
#include <utility>
#include <vector>

#include "common/Messages.h"
#include "common/StringTable.h"
#include "platform/excel/Excel.h"

namespace gantrix {
namespace {

// Runs one step of a hand-over; an error inside it is dropped and the caller goes on with
// the next step.
void Ignore(const std::function<void()>& step) {
    try {
        step();
    } catch (...) {
    }
}

char LowerAscii(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// The length of the UTF-8 sequence that starts with lead (1 for anything malformed).
size_t SequenceLength(unsigned char lead) {
    if (lead >= 0xF0 && lead < 0xF8) return 4;
    if (lead >= 0xE0) return lead < 0xF0 ? 3 : 1;
    if (lead >= 0xC0) return 2;
    return 1;
}

// "A" is 1, "B" 2, ..., "AA" 27.
int ColumnNumber(const std::string& letters) {
    int number = 0;
    for (char c : letters) number = number * 26 + (LowerAscii(c) - 'a' + 1);
    return number;
}

// Workbooks(name) and Worksheets(name): a missing item is an error, as in the automation.
excel::Workbook& Book(const std::shared_ptr<excel::Application>& application,
                      const std::string& name) {
    if (!application) throw std::runtime_error("no spreadsheet application");
    for (excel::Workbook* book : application->Workbooks()) {
        if (book != nullptr && book->Name() == name) return *book;
    }
    throw std::runtime_error("no workbook " + name);
}

excel::Worksheet& Sheet(excel::Workbook& book, const std::string& name) {
    for (excel::Worksheet* sheet : book.Worksheets()) {
        if (sheet != nullptr && sheet->Name() == name) return *sheet;
    }
    throw std::runtime_error("no worksheet " + name);
}

// Attaches the module's reference to the running application; empty when none runs or the
// attach fails.
void Attach(ModuleState& state) {
    state.ExcelApp = nullptr;
    Ignore([&] { state.ExcelApp = excel::GetObject(kExcelProgId); });
}

// Whether the attached application has the workbook open; a book that fails to give its
// name is taken for another one.
bool IsOpen(ModuleState& state, const std::string& bookName) {
    if (!state.ExcelApp) return false;
    bool open = false;
    Ignore([&] {
        for (excel::Workbook* book : state.ExcelApp->Workbooks()) {
            Ignore([&] { open = open || (book != nullptr && book->Name() == bookName); });
        }
    });
    return open;
}

// What differs between the network and the parameter hand-over.
struct HandOver {
    std::string templateFile;
    std::string bookName;
    std::string sheetName;  // the sheet the workbook works on
    std::function<void()> writeWorkingFiles;
    std::function<void()> markActive;
    std::vector<std::pair<std::string, std::string>> tempCells;  // ("A29", value)
};

void ShowApplication(ModuleState& state) {
    if (!state.ExcelApp) return;
    excel::Application& application = *state.ExcelApp;
    Ignore([&] {
        if (application.WindowState() == excel::kWindowMinimized) {
            application.SetWindowState(excel::kWindowNormal);
        }
    });
    Ignore([&] { application.SetVisible(true); });
}

void Run(ModuleState& state, const HandOver& h, const std::string& templatePath) {
    // A second call while the workbook is open only brings it to the front: its cells, the
    // working files and the macro are not renewed.
    Attach(state);
    if (IsOpen(state, h.bookName)) {
        Ignore([&] { Book(state.ExcelApp, h.bookName).Activate(); });
        ShowApplication(state);
        return;
    }
    // Only a "YES" starts the application: with no box to answer, nothing starts.
    if (ShowMessage(state, 24) != "YES") {
        state.ExcelApp = nullptr;
        return;
    }
    state.ExcelApp = nullptr;
    Ignore([&] { state.ExcelApp = excel::CreateObject(kExcelProgId); });
    if (!state.ExcelApp) {
        ShowMessage(state, 4);
        return;
    }
    excel::Application& application = *state.ExcelApp;
    const std::string& dir = state.ProjectDir;

    Ignore(h.writeWorkingFiles);
    Ignore([&] {
        if (Dir(dir + h.bookName) != h.bookName) {
            CopyFileAtomically(templatePath + h.templateFile, dir + h.bookName);
        }
    });
    h.markActive();

    Ignore([&] { application.Open(dir + h.bookName); });
    Ignore([&] { Book(state.ExcelApp, h.bookName).Activate(); });
    for (const auto& [cell, value] : h.tempCells) {
        SetSheetCell(state, h.bookName, "TEMP", cell.substr(0, 1), std::stoi(cell.substr(1)),
                     value);
    }
    // The sheet the workbook works on; a template without it is ignored like any failure.
    Ignore([&] { Sheet(Book(state.ExcelApp, h.bookName), h.sheetName); });
    Ignore([&] { application.Run("auto_open"); });
    ShowApplication(state);
}

}  // namespace

const char* const kTemplatesFromLibrary = GANTRIX_TEMPLATES_FROM_LIBRARY;

std::string GetTemplatePath(const std::string& appPath) {
    const std::string installed =
        std::filesystem::path(appPath + kTemplatesFromLibrary).lexically_normal().string() + "/";
    const std::string buildTree = appPath + "share/gantrixa0j/templates/";
    std::error_code error;
    if (!std::filesystem::is_directory(installed, error) &&
        std::filesystem::is_directory(buildTree, error)) {
        return buildTree;
    }
    return installed;
}

std::string MakeBookName(const std::string& projectDir, const std::string& file) {
    const size_t size = projectDir.size();
    size_t i = size > 0 && projectDir[0] == '/' ? 1 : 0;
    std::string drive, s3, s4;
    if (i < size && projectDir[i] != '/') {
        // The first character, whole even when it takes several bytes.
        drive = projectDir.substr(i, SequenceLength(static_cast<unsigned char>(projectDir[i])));
    }
    int separators = 0;
    for (; i < size; ++i) {
        const char c = projectDir[i];
        if (c == '/') {
            ++separators;
        } else if (separators == 3) {
            s3 += c;
        } else if (separators == 4) {
            s4 += c;
        }
    }
    std::string name = drive + s3 + s4;
    for (char& c : name) c = LowerAscii(c);
    return name + file;
}

bool SetSheetCell(ModuleState& state, const std::string& bookName, const std::string& sheetName,
                  const std::string& column, int row, const std::string& value) {
    Ignore([&] {
        Sheet(Book(state.ExcelApp, bookName), sheetName).SetCell(row, ColumnNumber(column), value);
    });
    return true;
}

void PrintNetworkSettings(ModuleState& state, int index, const std::string& appPath,
                          const std::string& templatePath) {
    static constexpr struct {
        const char* templateFile;  // nullptr: the string table's name
        int templateId;
        int sheetId;
    } kBooks[4] = {{"MORNET.xls", 0, ids::MornetMode},
                   {nullptr, ids::MornetIICombinationBook, ids::MornetIICombinationSheet},
                   {"MORNET2.xls", 0, ids::MornetIISheet},
                   {"MORNET10.xls", 0, ids::NetworkSettingSheet}};
    if (index < 0 || index > 3) return;
    HandOver h;
    h.templateFile = kBooks[index].templateFile != nullptr
                         ? kBooks[index].templateFile
                         : LoadResString(kBooks[index].templateId);
    h.sheetName = LoadResString(kBooks[index].sheetId);
    state.NetBookName = MakeBookName(state.ProjectDir, h.templateFile);
    h.bookName = state.NetBookName;
    h.writeWorkingFiles = [&state] {
        // The working file gets the current image with the latest network part.
        Ignore([&] { MergeParameterFile(state, kParamWork); });
        SaveParameterFile(state, kParamWork);
    };
    h.markActive = [&state] {
        state.NetEditActive = true;
        state.ParamChanged = true;
    };
    h.tempCells = {{"A29", "NetParam"},
                   {"B29", appPath},
                   {"B30", state.ProjectDir},
                   {"B31", state.CpuType},
                   {"B32", std::to_string(index)}};
    Run(state, h, templatePath);
}

void PrintParameterSettings(ModuleState& state, const std::string& appPath,
                            const std::string& templatePath) {
    HandOver h;
    h.templateFile = LoadResString(ids::ParameterModeBook);
    h.sheetName = LoadResString(ids::CapacityLatchRangeSheet);
    state.ParamBookName = MakeBookName(state.ProjectDir, h.templateFile);
    h.bookName = state.ParamBookName;
    // The print workbook reads the parameters from this copy of the image.
    h.writeWorkingFiles = [&state] { SaveParameterFile(state, "param.$$p"); };
    h.markActive = [&state] { state.ParamPrintActive = true; };
    h.tempCells = {{"A1", "Param"},
                   {"A2", state.CpuType},
                   {"A3", state.ProjectDir + "param.$$p"},
                   {"A4", state.ProjectDir + "temp.dat"},
                   {"A10", appPath}};
    Run(state, h, templatePath);
}

}  // namespace gantrix
