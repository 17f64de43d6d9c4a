#include <gtest/gtest.h>

#include "common/InputRoutines.h"

namespace gantrix {
namespace {

TEST(InputRoutines, CheckDecimalKeyClassifiesKeys) {
    EXPECT_EQ(CheckDecimalKey(13), 2);
    for (int key : {int('0'), int('5'), int('9'), 8, 3, 22, 0})
        EXPECT_EQ(CheckDecimalKey(key), 1) << key;
    for (int key : {int('a'), int(' '), int('-'), int('.'), int('F'), 127})
        EXPECT_EQ(CheckDecimalKey(key), 0) << key;
}

TEST(InputRoutines, CutLeadingZero) {
    EXPECT_EQ(CutLeadingZero("0012"), "12");
    EXPECT_EQ(CutLeadingZero("0"), "0");
    EXPECT_EQ(CutLeadingZero("100"), "100");
    EXPECT_EQ(CutLeadingZero("00"), "");
    EXPECT_EQ(CutLeadingZero("000"), "");
    EXPECT_EQ(CutLeadingZero(""), "");
    EXPECT_EQ(CutLeadingZero("0 7"), " 7");
}

TEST(InputRoutines, CheckDecimalTextCleansInPlaceAndKeepsTheCaret) {
    struct Case {
        const char* in;
        int caret;
        const char* out;
        int outCaret;
    };
    const Case cases[] = {
        {" 0 7 ", 2, " 7", 2},  // inner blanks stay, outer ones and the leading zero go
        {"12a", 3, "", 0},      // one wrong character empties the field
        {"007", 1, "7", 1},    {"0", 1, "0", 1},  {"", 0, "", 0},
        {"42", 1, "42", 1},    {"4-2", 2, "", 0},
    };
    for (const Case& c : cases) {
        TextBoxState box{c.in, c.caret};
        CheckDecimalText(box);
        EXPECT_EQ(box.text, c.out) << '"' << c.in << '"';
        EXPECT_EQ(box.caret, c.outCaret) << '"' << c.in << '"';
    }
}

TEST(InputRoutines, CheckHexTextUpperCasesAndRejects) {
    TextBoxState box{" 1f ", 2};
    CheckHexText(box);
    EXPECT_EQ(box.text, "1F");
    EXPECT_EQ(box.caret, 2);
    box = {"1G", 2};
    CheckHexText(box);
    EXPECT_EQ(box.text, "");
    box = {"00ab", 4};
    CheckHexText(box);
    EXPECT_EQ(box.text, "00AB");  // hexadecimal fields keep their zeros
}

TEST(InputRoutines, PadZero4AndHexToValue) {
    EXPECT_EQ(PadZero4("7"), "0007");
    EXPECT_EQ(PadZero4("1F"), "001F");
    EXPECT_EQ(PadZero4("3FF"), "03FF");
    EXPECT_EQ(PadZero4("FFFF"), "FFFF");
    EXPECT_EQ(PadZero4("12345"), "");
    EXPECT_EQ(PadZero4(""), "");
    EXPECT_EQ(HexToValue("00FF"), 255);
    EXPECT_EQ(HexToValue("FFFF"), 65535);
    EXPECT_EQ(HexToValue("1F"), 7936);
    EXPECT_EQ(HexToValue("03FF"), 1023);
    EXPECT_EQ(HexToValue("0G0A"), 10);
    EXPECT_EQ(HexToValue(""), 0);
}

TEST(InputRoutines, ValueOfReadsLikeVal) {
    EXPECT_EQ(ValueOf(""), 0);
    EXPECT_EQ(ValueOf(" 7"), 7);
    EXPECT_EQ(ValueOf("1 2"), 12);
    EXPECT_EQ(ValueOf("64"), 64);
    EXPECT_EQ(ValueOf("12a3"), 12);
    EXPECT_EQ(Trim("  a b "), "a b");
}

}  // namespace
}  // namespace gantrix
