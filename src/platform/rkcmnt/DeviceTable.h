// SPDX-License-Identifier: Apache-2.0
#pragma once
// Device points per CPU type, the one table behind RkGetDeviceMaxSize and RkCheckIoAssign.
//
//  CPU    X/Y    M     B     T     C     D     W     R    I/O points
//  A0J    512  2048  1024   128   128   512  1024     0    512
//  A0H    512  2048  1024   256   256  1024  1024  4096    512
//  A1S    256  2048  1024   256   256  1024  1024  4096    256
//  A1     256  2048  1024   256   256  1024  1024     0    256
//  A2C    512  2048  1024   256   256  1024  1024  4096    512
//  A2     512  2048  1024   256   256  1024  1024  4096    512
//  A3    2048  2048  1024   256   256  1024  1024  8192   2048
//  A3H   2048  2048  1024   256   256  1024  1024  8192   2048
//  A2A    512  8192  4096  2048  1024  6144  4096  8192    512
//  A3A   2048  8192  4096  2048  1024  6144  4096  8192   2048
//  A2U   1024  8192  8192  2048  1024  8192  8192  8192   1024
//  A3U   2048  8192  8192  2048  1024  8192  8192  8192   2048
//  A4U   4096  8192  8192  2048  1024  8192  8192  8192   4096
//
// Why these numbers: the extended types' sizes fill exactly the device-code ranges in which
// their set-value and refresh devices are stored (group A: B 1536..1791, C 3072..4095,
// W 4096..8191, D 8192..14335, T 14336..16383, R 16384..24575; group U: B 2048..2559,
// C 4096..5119, W 5120..13311, D 13312..21503, T 21504..23551, R 32768..40959). The
// smallest type's sizes are those its three fixed latch patterns run to (L 0-2047, B 0-3FF,
// T 0-127, C 0-127, D 0-511, W 0-3FF). The file register R is as large as the memory
// capacity dialog lets it be configured (4 or 8 K points; none where the dialog hides it).
// The I/O points are the X/Y range that the I/O assignment may fill.

#include <cstdint>
#include <optional>
#include <string_view>

namespace gantrix::platform {

struct DeviceSizes {
    int32_t X, Y, M, B, T, C, D, W, R;
    int32_t IoPoints;

    // Points of a device letter, nullopt for a letter the table does not know.
    std::optional<int32_t> Of(char letter) const;
};

// The thirteen CPU type codes, each three characters ("A1 " with its trailing blank).
inline constexpr std::string_view kCpuTypes[] = {"A0J", "A0H", "A1S", "A1 ", "A2C", "A2 ", "A3 ",
                                                 "A3H", "A2A", "A3A", "A2U", "A3U", "A4U"};

// The row for an exact CPU type code, or nullptr for a code outside the table.
const DeviceSizes* FindDeviceSizes(std::string_view cpuType);

}  // namespace gantrix::platform
