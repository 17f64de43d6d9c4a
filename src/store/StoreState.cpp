// SPDX-License-Identifier: Apache-2.0
#include "store/StoreState.h"

namespace gantrix {

int16_t CpuCodeOf(std::string_view cpu) {
    if (cpu == "A0J") return 0xA0;
    if (cpu == "A1 ") return 0xA1;
    if (cpu == "A0H" || cpu == "A1S" || cpu == "A2 " || cpu == "A2C") return 0xA2;
    if (cpu == "A3 ") return 0xA3;
    return 0xA4;
}

}  // namespace gantrix
