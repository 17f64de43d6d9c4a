// SPDX-License-Identifier: Apache-2.0
#pragma once
// The network menu's rules without the form: which MORNET mode the stored network data
// follow, whether a requested mode may be edited on them, and the clearing of the network
// area when the user changes the mode.

#include <cstdint>

#include "store/ParameterImage.h"

namespace gantrix {

struct ModuleState;

// GetMode: the network mode of the image. Byte 1024 of 0 means no network data (0);
// otherwise the low six bits of byte 2560 give 1 (MORNET II combination), 2 (MORNET II) or
// 3 (bits 63, MORNET); any other bits leave the mode as it was (previous).
int16_t NetworkModeOf(const ParameterImage& image, int16_t previous);
void GetMode(ModuleState& state);

// Whether mode index (0 MORNET, 1 MORNET II combination, 2 MORNET II) may be edited on data
// stored in mode; data of no mode suit every index.
bool ModeMatches(int index, int16_t mode);

// The option button (0..2) of a network mode, or -1 for none.
int OptionOfMode(int16_t mode);

// ClearLink: byte 1024 = 0, 1025..2058 and 2560..3042 = 255, keeping byte 1071 (the I/O
// assignment flag); 3043..3071 untouched.
void ClearLink(ParameterImage& image);

}  // namespace gantrix
