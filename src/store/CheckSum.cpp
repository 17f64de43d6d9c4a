// SPDX-License-Identifier: Apache-2.0
#include "store/CheckSum.h"

#include <cstdint>

namespace gantrix {

CheckSumForm CheckSumFormOf(std::string_view cpu) {
    for (std::string_view c : {"A0J", "A0H", "A1S", "A1 ", "A2C", "A2 ", "A3 ", "A3H"}) {
        if (cpu == c) return CheckSumForm::Plain;
    }
    if (cpu == "A2A" || cpu == "A3A") return CheckSumForm::Complement;
    if (cpu == "A2U" || cpu == "A3U" || cpu == "A4U") return CheckSumForm::UComplement;
    return CheckSumForm::None;
}

void SetCheckSum(ParameterImage& image, std::string_view cpuType, bool networkSumValid) {
    uint32_t sum = 0;
    for (int i = 0; i <= 524; ++i) sum += image[i];
    const uint8_t b0 = sum & 0xFF, b1 = (sum >> 8) & 0xFF, b2 = (sum >> 16) & 0xFF;
    switch (CheckSumFormOf(cpuType)) {
        case CheckSumForm::Plain:
            image[525] = b0;
            image[526] = b1;
            image[527] = b2;
            break;
        case CheckSumForm::Complement:
            image[525] = static_cast<uint8_t>(~b0);
            image[526] = static_cast<uint8_t>(~b1);
            image[527] = static_cast<uint8_t>(~b2);
            break;
        case CheckSumForm::UComplement:
            image[525] = static_cast<uint8_t>(~b0);
            image[526] = static_cast<uint8_t>(~b1);
            image[527] = static_cast<uint8_t>(b2 + 0x5A);
            break;
        case CheckSumForm::None:
            break;
    }
    if (networkSumValid) {
        uint32_t net = 0;
        for (int i = 1024; i <= 2055; ++i) net += image[i];
        image[2056] = net & 0xFF;
        image[2057] = (net >> 8) & 0xFF;
        image[2058] = (net >> 16) & 0xFF;
    }
}

}  // namespace gantrix
