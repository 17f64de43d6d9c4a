// SPDX-License-Identifier: Apache-2.0
#include "store/ParameterImage.h"

#include <stdexcept>
#include <string>

#include "store/RuntimeError.h"

namespace gantrix {

int ParameterImage::GetParamWord(int index) const {
    if (index < 0 || index > kImageSize - 2) {
        throw std::out_of_range("parameter word index " + std::to_string(index));
    }
    return bytes_[index] + 256 * bytes_[index + 1];
}

void ParameterImage::SetParamWord(long long value, int index) {
    if (index < 0 || index > kImageSize - 2) {
        throw std::out_of_range("parameter word index " + std::to_string(index));
    }
    if (value < 0 || value > 65535) {
        throw OverflowError("the value " + std::to_string(value) + " for the word at " +
                            std::to_string(index) + " is outside 0..65535");
    }
    bytes_[index] = static_cast<uint8_t>(value % 256);
    bytes_[index + 1] = static_cast<uint8_t>(value / 256);
}

int32_t KToNumber(long long k) {
    const long long n = k * 1024;
    if (n < INT32_MIN || n > INT32_MAX) throw OverflowError("K value " + std::to_string(k));
    return static_cast<int32_t>(n);
}

int16_t NumberToK(long long n) {
    const long long k = n / 1024;
    if (k < INT16_MIN || k > INT16_MAX) throw OverflowError("number " + std::to_string(n));
    return static_cast<int16_t>(k);
}

}  // namespace gantrix
