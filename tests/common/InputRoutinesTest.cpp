#include "common/InputRoutines.h"

#include <gtest/gtest.h>

namespace gantrix {
namespace {

TEST(InputRoutines, KeysAndTextsOfTheNumberBoxes) {
    for (int key : {int('0'), int('9'), 8, 22, 0}) EXPECT_EQ(CheckDecimalKey(key), 1) << key;
    for (int key : {int('a'), int(' '), int('/'), int(':'), 127})
        EXPECT_EQ(CheckDecimalKey(key), 0);
    EXPECT_EQ(CheckDecimalKey(13), 2);

    const struct {
        bool hex;
        const char* in;
        int caret;
        const char* out;
        int outCaret;
    } boxes[] = {
        {false, " 0 7 ", 2, " 7", 2},  // inner blanks stay, outer ones and the leading zero go
        {false, "12a", 3, "", 0},      // one wrong character empties the box
        {false, "007", 1, "7", 1},    {false, "0", 1, "0", 1},    {false, "00", 2, "", 0},
        {false, "100", 3, "100", 3},  {true, " 1f ", 2, "1F", 2}, {true, "1G", 2, "", 0},
        {true, "00ab", 4, "00AB", 4},  // hexadecimal boxes keep their zeros
    };
    for (const auto& b : boxes) {
        TextBoxState box{b.in, b.caret};
        b.hex ? CheckHexText(box) : CheckDecimalText(box);
        EXPECT_EQ(box.text, b.out) << '"' << b.in << '"';
        EXPECT_EQ(box.caret, b.outCaret) << '"' << b.in << '"';
    }
}

TEST(InputRoutines, ValuesOfDecimalAndHexadecimalTexts) {
    for (const auto& [text, value] : std::initializer_list<std::pair<const char*, long>>{
             {"", 0}, {" 7", 7}, {"1 2", 12}, {"10", 10}, {"12a3", 12}, {"9/", 9}}) {
        EXPECT_EQ(ValueOf(text), value) << text;
    }
    EXPECT_EQ(PadZero4("1F"), "001F");
    EXPECT_EQ(PadZero4("FFFF"), "FFFF");
    EXPECT_EQ(PadZero4("12345"), "");
    EXPECT_EQ(PadZero4(""), "");
    for (const auto& [text, value] : std::initializer_list<std::pair<const char*, long>>{
             {"00FF", 255}, {"FFFF", 65535}, {"1F", 7936}, {"0A0A", 2570}, {"0G0A", 10}}) {
        EXPECT_EQ(HexToValue(text), value) << text;
    }
    EXPECT_EQ(Trim("  a b "), "a b");
}

}  // namespace
}  // namespace gantrix
