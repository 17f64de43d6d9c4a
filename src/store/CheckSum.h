// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

#include "store/ParameterImage.h"

namespace gantrix {

// How a CPU family writes the main check bytes 525..527 from the byte sum of 0..524.
enum class CheckSumForm {
    Plain,        // A0J A0H A1S A1 A2C A2 A3 A3H: the sum's three bytes
    Complement,   // A2A A3A: each byte complemented
    UComplement,  // A2U A3U A4U: the low two bytes complemented, the third plus 0x5A
    None,         // any other code: the check bytes are left alone
};

CheckSumForm CheckSumFormOf(std::string_view cpuType);

// Writes the main check bytes for cpuType and, when networkSumValid, the network sum of
// 1024..2055 into 2056..2058 (never complemented).
void SetCheckSum(ParameterImage& image, std::string_view cpuType, bool networkSumValid);

}  // namespace gantrix
