// SPDX-License-Identifier: Apache-2.0
#include "platform/rkcmnt/DeviceTable.h"

#include <utility>

namespace gantrix::platform {
namespace {

struct Row {
    std::string_view cpu;
    DeviceSizes sizes;
};

//                         X     Y     M     B     T     C     D     W     R    I/O
constexpr Row kTable[] = {
    {"A0J", {512, 512, 2048, 1024, 128, 128, 512, 1024, 0, 512}},
    {"A0H", {512, 512, 2048, 1024, 256, 256, 1024, 1024, 4096, 512}},
    {"A1S", {256, 256, 2048, 1024, 256, 256, 1024, 1024, 4096, 256}},
    {"A1 ", {256, 256, 2048, 1024, 256, 256, 1024, 1024, 0, 256}},
    {"A2C", {512, 512, 2048, 1024, 256, 256, 1024, 1024, 4096, 512}},
    {"A2 ", {512, 512, 2048, 1024, 256, 256, 1024, 1024, 4096, 512}},
    {"A3 ", {2048, 2048, 2048, 1024, 256, 256, 1024, 1024, 8192, 2048}},
    {"A3H", {2048, 2048, 2048, 1024, 256, 256, 1024, 1024, 8192, 2048}},
    {"A2A", {512, 512, 8192, 4096, 2048, 1024, 6144, 4096, 8192, 512}},
    {"A3A", {2048, 2048, 8192, 4096, 2048, 1024, 6144, 4096, 8192, 2048}},
    {"A2U", {1024, 1024, 8192, 8192, 2048, 1024, 8192, 8192, 8192, 1024}},
    {"A3U", {2048, 2048, 8192, 8192, 2048, 1024, 8192, 8192, 8192, 2048}},
    {"A4U", {4096, 4096, 8192, 8192, 2048, 1024, 8192, 8192, 8192, 4096}},
};

}  // namespace

std::optional<int32_t> DeviceSizes::Of(char letter) const {
    switch (letter) {
        case 'X':
            return X;
        case 'Y':
            return Y;
        case 'M':
            return M;
        case 'B':
            return B;
        case 'T':
            return T;
        case 'C':
            return C;
        case 'D':
            return D;
        case 'W':
            return W;
        case 'R':
            return R;
        default:
            return std::nullopt;
    }
}

const DeviceSizes* FindDeviceSizes(std::string_view cpuType) {
    for (const Row& row : kTable) {
        if (row.cpu == cpuType) return &row.sizes;
    }
    return nullptr;
}

}  // namespace gantrix::platform
