// SPDX-License-Identifier: Apache-2.0
#include "menus/NetworkMenuRules.h"

#include "common/ModuleState.h"

namespace gantrix {

int16_t NetworkModeOf(const ParameterImage& image, int16_t previous) {
    if (image[1024] == 0) return 0;
    switch (image[2560] & 0x3F) {
        case 1:
            return 1;
        case 2:
            return 2;
        case 63:
            return 3;
        default:
            return previous;
    }
}

void GetMode(ModuleState& state) {
    state.NetworkMode = NetworkModeOf(state.image, state.NetworkMode);
}

bool ModeMatches(int index, int16_t mode) {
    switch (index) {
        case 0:
            return mode == 0 || mode == 3;
        case 1:
            return mode == 0 || mode == 1;
        case 2:
            return mode == 0 || mode == 2;
        default:
            return false;
    }
}

int OptionOfMode(int16_t mode) {
    switch (mode) {
        case 0:
        case 3:
            return 0;
        case 1:
        case 2:
            return mode;
        default:
            return -1;
    }
}

void ClearLink(ParameterImage& image) {
    const uint8_t ioAssignment = image[1071];
    image[1024] = 0;
    for (int i = 1025; i <= 2058; ++i) image[i] = 0xFF;
    image[1071] = ioAssignment;
    for (int i = 2560; i <= 3042; ++i) image[i] = 0xFF;
}

}  // namespace gantrix
