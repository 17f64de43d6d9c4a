// SPDX-License-Identifier: Apache-2.0
#pragma once
// The part of the module state that the parameter store works on.

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "store/ParameterImage.h"

namespace gantrix {

struct StoreState {
    ParameterImage image;
    std::string CpuType;     // three characters, e.g. "A3 " with its trailing blank
    int16_t CpuCode = 0;     // family number handed to the host libraries
    std::string ProjectDir;  // project directory ending in "/"
    bool NetworkSumValid = false;
    std::array<int16_t, 4> EndPosition{};  // END steps of the main program, sub programs 1..3
};

// 0xA0 for "A0J", 0xA1 for "A1 ", 0xA2 for "A0H" "A1S" "A2 " "A2C", 0xA3 for "A3 ",
// 0xA4 for every other string.
int16_t CpuCodeOf(std::string_view cpuType);

}  // namespace gantrix
