// SPDX-License-Identifier: Apache-2.0
#include "common/InputRoutines.h"

#include <algorithm>
#include <cctype>

namespace gantrix {

int CheckDecimalKey(int keyAscii) {
    if (keyAscii == 13) return 2;
    if ((keyAscii >= '0' && keyAscii <= '9') || (keyAscii >= 0 && keyAscii < 32)) return 1;
    return 0;
}

std::string Trim(const std::string& text) {
    const auto first = text.find_first_not_of(' ');
    if (first == std::string::npos) return "";
    const auto last = text.find_last_not_of(' ');
    return text.substr(first, last - first + 1);
}

bool IsBlank(const std::string& text) {
    return Trim(text).empty();
}

std::string CutLeadingZero(const std::string& text) {
    if (text.size() < 2) return text;
    const auto first = text.find_first_not_of('0');
    return first == std::string::npos ? std::string() : text.substr(first);
}

void CheckDecimalText(TextBoxState& box) {
    const int caret = box.caret;
    std::string text = Trim(box.text);
    for (char c : text) {
        if (!(c >= '0' && c <= '9') && c != ' ') {
            text.clear();
            break;
        }
    }
    box.text = CutLeadingZero(text);
    box.caret = std::clamp(caret, 0, static_cast<int>(box.text.size()));
}

void CheckHexText(TextBoxState& box) {
    const int caret = box.caret;
    std::string text = Trim(box.text);
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    for (char c : text) {
        if (!(c >= '0' && c <= '9') && !(c >= 'A' && c <= 'F') && c != ' ') {
            text.clear();
            break;
        }
    }
    box.text = text;
    box.caret = std::clamp(caret, 0, static_cast<int>(box.text.size()));
}

std::string PadZero4(const std::string& text) {
    if (text.empty() || text.size() > 4) return "";
    return std::string(4 - text.size(), '0') + text;
}

long HexToValue(const std::string& text) {
    static constexpr long kWeights[4] = {4096, 256, 16, 1};
    long value = 0;
    for (size_t i = 0; i < 4 && i < text.size(); ++i) {
        const char c = text[i];
        long digit = 0;
        if (c >= '0' && c <= '9') {
            digit = c - '0';
        } else if (c >= 'A' && c <= 'F') {
            digit = c - 'A' + 10;
        }
        value += digit * kWeights[i];
    }
    return value;
}

long ValueOf(const std::string& text) {
    long value = 0;
    for (char c : text) {
        if (c == ' ') continue;
        if (c < '0' || c > '9') break;
        if (value > 100000000L) break;  // far beyond any field; keeps the arithmetic safe
        value = value * 10 + (c - '0');
    }
    return value;
}

}  // namespace gantrix
