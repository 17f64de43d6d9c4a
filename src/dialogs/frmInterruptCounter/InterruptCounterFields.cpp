// SPDX-License-Identifier: Apache-2.0
#include "dialogs/frmInterruptCounter/InterruptCounterFields.h"

#include "common/StringTable.h"

namespace gantrix {

InterruptCounterFields ReadInterruptCounter(const ParameterImage& image) {
    InterruptCounterFields f;
    for (int k = 0; k < kInterruptCounters; ++k) {
        f.PointerFlag[k] = ((image[kInterruptCounterBytes + k / 8] >> (k % 8)) & 1) == 0;
    }
    return f;
}

void WriteInterruptCounter(const InterruptCounterFields& f, ParameterImage& image) {
    for (int j = 0; j < 4; ++j) {
        int byte = 0;
        for (int b = 0; b < 8; ++b) {
            if (!f.PointerFlag[8 * j + b]) byte |= 1 << b;
        }
        image[kInterruptCounterBytes + j] = static_cast<uint8_t>(byte);
    }
}

InterruptCounterFields DefaultsInterruptCounter() {
    return {};
}

std::string PointerFlagCaption(int k) {
    return "I" + std::to_string(k);
}

std::string PointerLabel(int k, bool ticked) {
    if (!ticked) return LoadResString(ids::NoInterruptCounter);
    return " ( " + LoadResString(ids::DeviceC) + " " + std::to_string(kFirstInterruptCounter + k) +
           " ) ";
}

}  // namespace gantrix
