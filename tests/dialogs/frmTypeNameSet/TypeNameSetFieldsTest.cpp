// SPDX-License-Identifier: Apache-2.0
#include "dialogs/frmTypeNameSet/TypeNameSetFields.h"

#include <gtest/gtest.h>

namespace gantrix {
namespace {

TEST(TypeNameSetFields, PackingAndUnpacking) {
    const std::pair<const char*, ModelNameRecord> packed[] = {
        {"AX10", {0xC4, 0xE6, 0xC4, 0x05, 0xA9, 0x43}},
        {"ax10", {0xC4, 0xE6, 0xC4, 0x05, 0xA9, 0x43}},
        {"", {0xC4, 0xE6, 0xC4, 0xE6, 0xC4, 0xE6}},
        {"0-Z", {0xC4, 0xE6, 0xC4, 0xE6, 0xEB, 0x05}},
        {"ZZZZZZZZZABC", {0x5B, 0xE0, 0x5B, 0xE0, 0x5B, 0xE0}},  // cut at nine
        {"AD51S3", {0xC4, 0xE6, 0xA3, 0x0A, 0x8D, 0x40}},
    };
    for (const auto& [name, bytes] : packed) EXPECT_EQ(PackModelName(name), bytes) << name;
    const std::pair<ModelNameRecord, const char*> unpacked[] = {
        {{0xC4, 0xE6, 0xC4, 0x05, 0xA9, 0x43}, "AX10"},
        {{0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}, ""},       // erased
        {{0xFF, 0x00, 0xFF, 0x00, 0xFF, 0x00}, ""},       // bytes 0, 2 and 4 decide
        {{0xC4, 0xE6, 0xC4, 0xE6, 0xB4, 0xE2}, "A"},      // " A ": outer blanks go
        {{0xC4, 0xE6, 0xC4, 0xF5, 0x7B, 0x44}, "A B C"},  // codes 38 and 39 read as blanks
    };
    for (const auto& [bytes, name] : unpacked) EXPECT_EQ(UnpackModelName(bytes), name);
}

TEST(TypeNameSetFields, TheNameBoxKeepsTheAlphabetUpperCasedAndNineCharactersAtMost) {
    const std::tuple<const char*, int, const char*, int> boxes[] = {
        {"ax60-s", 6, "AX60-S", 6}, {"A/B", 2, "AB", 1},  // the caret stays after the A
        {"ab cd", 3, "AB CD", 3},   {"AD62DAS12345", 12, "AD62DAS12", 9},
        {" 5", 2, "5", 1},  // blanks at the start go: the name reads back as it packs
        {"  ", 1, "", 0},
    };
    for (const auto& [typed, caret, text, caretAfter] : boxes) {
        TextBoxState box{typed, caret};
        FilterModelName(box);
        EXPECT_EQ(box.text, text);
        EXPECT_EQ(box.caret, caretAfter) << typed;
    }
}

}  // namespace
}  // namespace gantrix
