// SPDX-License-Identifier: Apache-2.0
#pragma once
// The 3072-byte parameter image, laid out as the PLC stores it, and its 16-bit word access.
//
//   0..524     main parameter block, covered by the main check bytes 525..527
//   528..1023  further main-area settings, not covered by any check
//   1024..2055 network block, covered by the network sum 2056..2058
//   2059..3071 extension area (U-type settings, network link data)

#include <array>
#include <cstddef>
#include <cstdint>

namespace gantrix {

inline constexpr int kImageSize = 3072;
inline constexpr int kErased = 65535;     // a word of two 255 bytes: not set
inline constexpr int kCheckBytes = 525;   // the main check bytes, three
inline constexpr int kNetworkSum = 2056;  // the network sum, three bytes, low first

class ParameterImage {
  public:
    ParameterImage() { bytes_.fill(0); }

    // Byte access; an index outside 0..3071 is a program error (std::out_of_range).
    uint8_t& operator[](int index) { return bytes_.at(static_cast<std::size_t>(index)); }
    uint8_t operator[](int index) const { return bytes_.at(static_cast<std::size_t>(index)); }

    // The little-endian word at index, index+1 (0..65535). index must be 0..3070.
    int GetParamWord(int index) const;

    // Stores value at index, index+1, low byte first. A value outside 0..65535 does not fit
    // the two bytes and raises the overflow runtime error, leaving the image untouched.
    void SetParamWord(long long value, int index);

    // True when the word at index holds 65535.
    bool IsErased(int index) const { return GetParamWord(index) == kErased; }

    uint8_t* data() { return bytes_.data(); }
    const uint8_t* data() const { return bytes_.data(); }
    const std::array<uint8_t, kImageSize>& bytes() const { return bytes_; }
    std::array<uint8_t, kImageSize>& bytes() { return bytes_; }

    bool operator==(const ParameterImage&) const = default;

  private:
    std::array<uint8_t, kImageSize> bytes_;
};

// Capacities are stored in bytes and typed in K units.
int32_t KToNumber(long long k);  // k x 1024
int16_t NumberToK(long long n);  // n \ 1024, truncating toward zero

}  // namespace gantrix
