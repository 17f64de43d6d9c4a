// SPDX-License-Identifier: Apache-2.0
#pragma once
// The parameter menu's checks and fixed bytes, without the form.

#include <array>
#include <cstdint>
#include <string>

#include "store/ParameterImage.h"

namespace gantrix {

struct ModuleState;

// The first program (0 main, 1..3 sub programs) whose END position, in K steps rounded up,
// is above its capacity word (64, 66, 134, 136); sub programs count only for "A3 ", "A3H",
// "A3A", "A3U" and "A4U", and positions of 0 or 1 never. -1 when none is.
int FirstExceededEndPosition(const ParameterImage& image, const std::string& cpuType,
                             const std::array<int16_t, 4>& endPosition);

// CheckEndPlace: message 9 for the first exceeded END position; true when one was found.
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
// 15 or 5 then); clears the flags of workbooks that are gone and, when nothing of the run is
// open, releases the module's application reference.
bool CheckExcel(ModuleState& state);

}  // namespace gantrix
