// SPDX-License-Identifier: Apache-2.0
#include "dialogs/frmTypeNameSet/TypeNameSetFields.h"

#include <algorithm>
#include <map>

namespace gantrix {
namespace {

constexpr int kBlank = 36;
constexpr int kDash = 37;

char SymbolChar(int code) {
    if (code >= 0 && code <= 9) return static_cast<char>('0' + code);
    if (code >= 10 && code <= 35) return static_cast<char>(code + 55);
    if (code == kDash) return '-';
    // 36 is the blank; 38..40 are never packed and are read as blanks too, so that a foreign
    // record still loads as a name the box accepts and packs back.
    return ' ';
}

char Upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

}  // namespace

int ModelNameSymbol(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'Z') return c - 55;
    if (c == ' ') return kBlank;
    if (c == '-') return kDash;
    return -1;
}

ModelNameRecord PackModelName(const std::string& name) {
    std::array<int, kModelNameLength> codes;
    codes.fill(kBlank);
    // Letters past the ninth are not packed.
    const size_t packed = std::min(name.size(), codes.size());
    for (size_t i = 0; i < packed; ++i) {
        const int code = ModelNameSymbol(Upper(name[i]));
        codes[i] = code < 0 ? kBlank : code;
    }
    ModelNameRecord record{};
    for (int w = 0; w < 3; ++w) {
        const int value = (codes[3 * w] * 40 + codes[3 * w + 1]) * 40 + codes[3 * w + 2];
        // w1 (the first three symbols) goes last: bytes 4..5, w2 at 2..3, w3 at 0..1.
        const int at = 4 - 2 * w;
        record[at] = static_cast<uint8_t>(value & 0xFF);
        record[at + 1] = static_cast<uint8_t>(value >> 8);
    }
    return record;
}

std::string UnpackModelName(const ModelNameRecord& record) {
    if (record[0] == 255 && record[2] == 255 && record[4] == 255) return "";
    std::string name;
    for (int at : {4, 2, 0}) {
        const int w = record[at] + 256 * record[at + 1];
        name += SymbolChar(w / 1600);
        name += SymbolChar(w % 1600 / 40);
        name += SymbolChar(w % 40);
    }
    return Trim(name);
}

const std::vector<std::string>& ModelNamesFor(const std::string& slotCode) {
    static const std::map<std::string, std::vector<std::string>> lists = {
        {"X16", {"AX10", "AX20", "AX40", "AX50", "AX60", "AX60-S", "AX70", "AX80", "AX80E"}},
        {"X32", {"AX11", "AX21", "AX41", "AX71", "AX81", "AX81-S"}},
        {"X64", {"AX42", "AX82"}},
        {"Y16",
         {"AY10", "AY10A", "AY11", "AY11A", "AY11E", "AY22", "AY40", "AY40A", "AY50", "AY60",
          "AY60S", "AY70", "AY80"}},
        {"Y32", {"AY13", "AY13E", "AY23", "AY41", "AY51", "AY71", "AY81"}},
        {"Y64", {"AY42", "AY72"}},
        {"F32", {"AD51S3", "AD59",   "AD61",    "AD70",  "AD71",  "AD71S2", "AD72",
                 "AD51H",  "AD51FD", "AD57G",   "C21",   "C22",   "C24",    "C24S3",
                 "P41",    "PT32S3", "AD62DAS", "A68AD", "A60MX", "A60MXT"}},
        {"F48", {"PT32S3"}},
        {"F64", {"A81CPU", "AD57", "AD57S1", "AD58"}},
    };
    static const std::vector<std::string> none;
    const auto it = lists.find(slotCode);
    return it == lists.end() ? none : it->second;
}

bool IsModelNameKey(int keyAscii) {
    if (keyAscii >= 0 && keyAscii < 32) return true;
    if (keyAscii < 0 || keyAscii > 127) return false;
    return ModelNameSymbol(Upper(static_cast<char>(keyAscii))) >= 0;
}

void FilterModelName(TextBoxState& box) {
    std::string kept;
    int caret = 0;
    for (size_t i = 0; i < box.text.size(); ++i) {
        const char c = Upper(box.text[i]);
        // Blanks at the start are dropped too: a stored name reads back without them, so a
        // name kept with them would pack shifted on every save.
        if (ModelNameSymbol(c) < 0 || (c == ' ' && kept.empty())) continue;
        kept += c;
        if (static_cast<int>(i) < box.caret) caret = static_cast<int>(kept.size());
    }
    if (kept.size() > static_cast<size_t>(kModelNameLength)) kept.resize(kModelNameLength);
    box.text = kept;
    box.caret = std::min(caret, static_cast<int>(kept.size()));
}

int NextNamePageStart(int start, bool forward) {
    const int next = start + (forward ? kNamesPerPage : -kNamesPerPage);
    return std::clamp(next, 0, kLastNamePageStart);
}

}  // namespace gantrix
