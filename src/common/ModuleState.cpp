// SPDX-License-Identifier: Apache-2.0
#include "common/ModuleState.h"

#include <stdexcept>

namespace gantrix {
namespace {

size_t IndexOf(char letter) {
    const auto index = DeviceMaxSizes::kLetters.find(letter);
    if (index == std::string_view::npos) {
        throw std::out_of_range(std::string("device letter ") + letter);
    }
    return index;
}

}  // namespace

int16_t& DeviceMaxSizes::operator[](char letter) {
    return points[IndexOf(letter)];
}
int16_t DeviceMaxSizes::operator[](char letter) const {
    return points[IndexOf(letter)];
}

}  // namespace gantrix
