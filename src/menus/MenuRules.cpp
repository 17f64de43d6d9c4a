// SPDX-License-Identifier: Apache-2.0
#include "menus/MenuRules.h"

#include "common/DialogContext.h"
#include "common/Messages.h"
#include "common/ModuleState.h"
#include "platform/excel/Excel.h"

namespace gantrix {

int FirstExceededEndPosition(const ParameterImage& image, const std::string& cpuType,
                             const std::array<int16_t, 4>& endPosition) {
    static constexpr int kCapacityWord[4] = {64, 66, 134, 136};
    const bool subs = CpuIn(cpuType, {"A3 ", "A3H", "A3A", "A3U", "A4U"});
    for (int i = 0; i < 4; ++i) {
        if (i > 0 && !subs) break;
        const int steps = endPosition[i];
        if (steps <= 1) continue;
        const int k = steps / 1024 + (steps % 1024 != 0 ? 1 : 0);
        if (k > NumberToK(image.GetParamWord(kCapacityWord[i]))) return i;
    }
    return -1;
}

bool CheckEndPlace(ModuleState& state) {
    if (FirstExceededEndPosition(state.image, state.CpuType, state.EndPosition) < 0) return false;
    ShowMessage(state, 9);
    return true;
}

void SetValue(ParameterImage& image, const std::string& cpuType) {
    static constexpr uint8_t kFixed[8] = {2, 104, 0, 16, 3, 72, 1, 16};
    const bool base = CpuIn(cpuType, {"A0J", "A0H", "A1S", "A1 ", "A2C", "A2 ", "A3 ", "A3H"});
    const bool u = CpuIn(cpuType, {"A2U", "A3U", "A4U"});
    if (base) image[524] = 255;
    if (CpuIn(cpuType, {"A2A", "A3A"})) image[524] = 0;
    if (u) image[524] = 15;
    for (int i = 0; i < 8; ++i) image[536 + i] = kFixed[i];
    if (u) {
        for (int i = 0; i < 8; ++i) image[2314 + i] = kFixed[i];
    }
    if (base) image[182] = 255;
}

int TotalMemoryK(ParameterImage& image) {
    if (image[138] == 0xFF && image[139] == 0xFF) {
        image[138] = 0;
        image[139] = 0;
    }
    const int reserved = image.GetParamWord(138);
    return NumberToK(image.GetParamWord(2434)) / 2 + NumberToK(image.GetParamWord(64)) +
           reserved / 1024 + (reserved % 1024 != 0 ? 1 : 0);
}

bool CheckTotalMemory(ModuleState& state) {
    if (!CpuIn(state.CpuType, {"A2U", "A3U", "A4U"})) return true;
    if (TotalMemoryK(state.image) < 31) {
        state.image.SetParamWord(
            state.image.GetParamWord(2434) + 2LL * state.image.GetParamWord(2432), 72);
        return true;
    }
    ShowMessage(state, 23);
    return false;
}

namespace {

// Attaches the module's application reference to the running spreadsheet application (empty
// when none runs) and tells whether its workbook bookName shows mark in the given cell of its
// "TEMP" sheet. Any failure of the automation counts as no.
bool WorkbookStillOpen(ModuleState& state, const std::string& bookName, int row,
                       const std::string& mark) {
    try {
        state.ExcelApp = nullptr;
        state.ExcelApp = excel::GetObject("excel.application");
        if (!state.ExcelApp) return false;
        for (excel::Workbook* book : state.ExcelApp->Workbooks()) {
            if (book == nullptr || book->Name() != bookName) continue;
            for (excel::Worksheet* sheet : book->Worksheets()) {
                if (sheet != nullptr && sheet->Name() == "TEMP") {
                    return sheet->CellText(row, 1) == mark;
                }
            }
        }
    } catch (...) {
        // A spreadsheet that fails to answer counts as closed: the user must never be kept
        // in the menu by an automation error.
    }
    return false;
}

}  // namespace

bool CheckExcel(ModuleState& state) {
    if (state.ParamPrintActive) {
        if (WorkbookStillOpen(state, state.ParamBookName, 1, "Param")) {
            ShowMessage(state, 15);
            return true;
        }
        state.ParamPrintActive = false;
    }
    if (state.NetEditActive) {
        if (WorkbookStillOpen(state, state.NetBookName, 29, "NetParam")) {
            ShowMessage(state, 5);
            return true;
        }
        state.NetEditActive = false;
    }
    state.ExcelApp = nullptr;
    return false;
}

}  // namespace gantrix
