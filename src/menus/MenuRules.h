#pragma once
// The parameter menu's checks and fixed bytes, without the form.

#include <array>
#include <cstdint>
#include <string>

#include "store/ParameterImage.h"

namespace gantrix {

struct ModuleState;

// CheckEndPlace: message 9 when the END position of a program, in K steps rounded up, is above
// its capacity word (64 main, 66, 134, 136 sub programs 1..3); sub programs count only for
// "A3 ", "A3H", "A3A", "A3U" and "A4U", and positions of 0 or 1 never. True when one is.
bool CheckEndPlace(ModuleState& state);

// The fixed bytes written on OK: 524, 536..543, 2314..2321 (U types) and 182.
void SetValue(ParameterImage& image, const std::string& cpuType);

// The total memory of a U-type CPU in K bytes: micro as typed / 2 + main + reserved area.
// Sets 138..139 to 0 when both are 255, as the check does.
int TotalMemoryK(ParameterImage& image);

// CheckTotalMemory: true for non-U types; for U types true when the total is below 31 K
// (then word 72 = word 2434 + 2 x word 2432), else message 23 and false.
bool CheckTotalMemory(ModuleState& state);

// CheckExcel: whether a workbook this run opened is still open on its "TEMP" sheet (message
// 15 or 5 then); clears the flags of workbooks that are gone.
bool CheckExcel(ModuleState& state);

}  // namespace gantrix
