// SPDX-License-Identifier: Apache-2.0
#include "dialogs/frmTimerCounter/TimerCounterFields.h"

#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <utility>
#include <vector>

#include "support/core/TestSupport.h"

namespace gantrix {
namespace {

// Applies edits written as "Text1(0)=512 Combo1=D Text1(7)=" (an empty value empties).
void Edit(TimerCounterFields& f, const std::string& edits) {
    std::map<std::string, std::string*> named = {
        {"Text3", &f.Text3}, {"Combo1", &f.Combo1}, {"Combo2", &f.Combo2}};
    for (int i = 0; i < 8; ++i) named["Text1(" + std::to_string(i) + ")"] = &f.Text1[i];
    for (int i = 0; i < 2; ++i) named["Text2(" + std::to_string(i) + ")"] = &f.Text2[i];
    std::istringstream in(edits);
    for (std::string token; in >> token;) {
        const auto eq = token.find('=');
        *named.at(token.substr(0, eq)) = token.substr(eq + 1);
    }
}

// The fields of the default image of cpu with edits applied.
TimerCounterFields Edited(const std::string& cpu, const std::string& edits) {
    TimerCounterFields f = ReadTimerCounter(test::DefaultImage(cpu), test::ContextFor(cpu));
    Edit(f, edits);
    return f;
}

ParameterImage Erased() {
    ParameterImage image;
    image.bytes().fill(255);
    return image;
}

// clang-format off
TEST(TimerCounterDevices, StoredAsCodesWithTheBasesOfTheirGroup) {
    const struct { const char* cpu; int code; const char* shown; } cases[] = {
        {"A2U", 13312, "D 0"},    {"A3A", 13312, "D 5120"}, {"A3A", 4096, "W 0"},
        {"A3A", 8191, "W FFF"},   {"A3A", 8192, "D 0"},     {"A3A", 14335, "D 6143"},
        {"A3A", 16384, "R 0"},    {"A3A", 24575, "R 8191"}, {"A3A", 4095, " "},
        {"A3A", 14336, " "},      {"A3A", 65535, " "},      {"A3U", 5120, "W 0"},
        {"A3U", 13311, "W 1FFF"}, {"A3U", 21503, "D 8191"}, {"A3U", 21504, " "},
        {"A3U", 32767, " "},      {"A3U", 32768, "R 0"},    {"A3U", 4096, " "},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.cpu) + " " + std::to_string(c.code));
        const int word = TimerGroupOf(c.cpu) == TimerGroup::ExtendedU ? 2306 : 212;
        ParameterImage image = test::DefaultImage(c.cpu);
        image.SetParamWord(c.code, word);
        const TimerCounterFields f = ReadTimerCounter(image, test::ContextFor(c.cpu));
        EXPECT_EQ(f.Combo1 + " " + f.Text1[7], c.shown);
        WriteTimerCounter(f, image, test::ContextFor(c.cpu));
        EXPECT_EQ(image.GetParamWord(word), c.shown == std::string(" ") ? 65535 : c.code);
    }
    ParameterImage image = test::DefaultImage("A3U");
    WriteTimerCounter(Edited("A3U", "Combo1=W Text1(7)=1f"), image, test::ContextFor("A3U"));
    EXPECT_EQ(image.GetParamWord(2306), 5120 + 31);
}
// clang-format on

// clang-format off
TEST(TimerCounterRead, ShowsTheGroupsFieldsAndErasedWordsEmpty) {
    ParameterImage image = Erased();
    for (const auto& [index, value] : {std::pair{192, 0}, {194, 160}, {196, 240}, {198, 8}, {200, 256},
             {202, 512}, {204, 1024}, {210, 1536}, {2304, 1536}, {214, 512}, {2308, 512}, {212, 8292},
             {216, 4127}, {2306, 13312 + 100}, {2310, 32768 + 40}}) {
        image.SetParamWord(value, index);
    }
    const std::string partition = "Text1(1)=0 Text1(2)=160 Text1(3)=240 ";
    const std::string second = "Text1(0)=1536 Text1(4)=256 Text1(5)=512 Text1(6)=1024 Combo1=D Text1(7)=100 Text2(0)=512 ";
    for (const auto& [cpu, fields] : {std::pair{"A3 ", partition + "Text3=8"}, {"A3H", partition},
             {"A0J", std::string()}, {"A3A", partition + second + "Combo2=W Text2(1)=1F"},
             {"A2U", partition + second + "Combo2=R Text2(1)=40"}}) {
        TimerCounterFields expected;
        Edit(expected, fields);
        EXPECT_EQ(ReadTimerCounter(image, test::ContextFor(cpu)), expected) << cpu;
    }
    // 256 points or fewer hide the T256-2047 values; no points hide the T0-255 ones too.
    for (const auto& [points, field, shown] : {std::tuple{256, 4, ""}, {257, 4, "256"}, {0, 1, ""}}) {
        image.SetParamWord(points, 210);
        EXPECT_EQ(ReadTimerCounter(image, test::ContextFor("A3A")).Text1[field], shown) << points;
    }
}
// clang-format on

TEST(TimerCounterRead, ErasedImageOpensWith256PointsAndSavesErasedWords) {
    TimerCounterFields expected;
    expected.Text1[0] = expected.Text2[0] = "256";
    for (const char* cpu : {"A3A", "A4U"}) {
        SCOPED_TRACE(cpu);
        const TimerCounterFields f = ReadTimerCounter(Erased(), test::ContextFor(cpu));
        EXPECT_EQ(f, expected);
        EXPECT_FALSE(ValidateTimerCounter(f, test::ContextFor(cpu)).Any());
        ParameterImage saved = Erased();
        WriteTimerCounter(f, saved, test::ContextFor(cpu));
        // Only the point counts (low byte 0, high byte 1) get a value; the rest stays 65535.
        const int w = TimerGroupOf(cpu) == TimerGroup::ExtendedU ? 2304 : 210;
        EXPECT_EQ(test::DifferingBytes(Erased(), saved),
                  (std::vector<int>{w, w + 1, w + 4, w + 5}));
    }
}

// clang-format off
TEST(TimerCounterWrite, WritesExactlyTheGroupsWords) {
    const std::string partition = "Text1(2)=160 Text1(3)=240 Text3=8 ";
    const std::string extended = partition + "Text1(0)=1024 Text1(4)=256 Text1(5)=512 Combo1=D Text1(7)=100 "
                                             "Text2(0)=320 Combo2=W Text2(1)=1F";
    // Every word that changes, with its value.
    const struct { const char* cpu; std::string edits; std::vector<std::pair<int, int>> words; } cases[] = {
        {"A3 ", partition, {{194, 160}, {196, 240}, {198, 8}}},
        {"A2C", partition, {{194, 160}, {196, 240}}},  // Text3 is the small group's only
        {"A0J", partition, {}},
        {"A3A", extended, {{194, 160}, {196, 240}, {200, 256}, {202, 512}, {210, 1024},
                           {212, 8292}, {214, 320}, {216, 4127}}},
        // The U types leave the A types' words 210..216 alone.
        {"A3U", extended, {{194, 160}, {196, 240}, {200, 256}, {202, 512}, {2304, 1024},
                           {2306, 13412}, {2308, 320}, {2310, 5151}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.cpu);
        const ParameterImage before = test::DefaultImage(c.cpu);
        ParameterImage after = before;
        WriteTimerCounter(Edited(c.cpu, c.edits), after, test::ContextFor(c.cpu));
        ParameterImage expected = before;
        for (const auto& [index, value] : c.words) expected.SetParamWord(value, index);
        EXPECT_EQ(test::DifferingBytes(expected, after), std::vector<int>{});
    }
}
// clang-format on

// clang-format off
TEST(TimerCounterDefaults, ClearValuesPerGroup) {
    TimerCounterFields filled;
    Edit(filled, "Text1(0)=512 Text1(1)=8 Text1(2)=16 Text1(3)=24 Text1(4)=256 Text1(5)=272 Text1(6)=288 "
                 "Text1(7)=4 Text2(0)=512 Text2(1)=8 Text3=32 Combo1=D Combo2=R");
    for (const auto& [cpu, changes] : {std::pair{"A0J", ""}, {"A1S", "Text1(1)=0 Text1(2)=200 Text1(3)= Text3="},
             {"A3H", "Text1(1)=0 Text1(2)=200 Text1(3)="},
             {"A2A", "Text1(0)=256 Text1(1)=0 Text1(2)=200 Text1(3)= Text1(4)= Text1(5)= Text1(6)= Text1(7)= "
                     "Combo1= Text2(0)=256 Text2(1)= Combo2="}}) {
        TimerCounterFields expected = filled;
        Edit(expected, changes);
        EXPECT_EQ(DefaultsTimerCounter(filled, test::ContextFor(cpu)), expected) << cpu;
    }
}

// Controls: Text1(i) 33+i, Text2(0) 41, Text2(1) 42, Text3 43, Combo1 44, Combo2 45.
TEST(TimerCounterValidate, EachRuleWithItsMessageAndControl) {
    const std::string d512 = "Text1(0)=512 Combo1=D Text1(7)=0 ";
    const struct { const char* cpu; std::string edits; const char* recorded; } cases[] = {
        {"A3A", "", ""}, {"A3A", "Text1(0)=", "2:33"}, {"A3A", "Text1(0)=2064 Text1(6)=2048", "3:33 11:39"},
        {"A2U", "Text1(0)=200", "11:33"}, {"A3A", "Text2(0)=", "2:41"},
        {"A3U", "Text2(0)=1040", "3:41"}, {"A3U", "Text2(0)=24", "11:41"},
        // T0-255: each kind 8 above the one before, below the next; any may be left out, but
        // low speed holds T0-7; one message a box, past T255 first.
        {"A3 ", "Text1(3)=260", "7:36"}, {"A3 ", "Text1(2)=196", "11:35"}, {"A0H", "Text1(2)=0", "11:34 11:35"},
        {"A3 ", "Text1(3)=200", "11:35 11:36"}, {"A3 ", "Text1(1)= Text1(2)=8", ""}, {"A3 ", "Text1(1)= Text1(2)=0", "11:35"},
        {"A2C", "Text1(1)= Text1(2)= Text1(3)=", ""}, {"A3A", "Text1(0)=128", "11:35"}, {"A3A", "Text1(0)=0", "11:34 11:35"},
        {"A3 ", "Text3=300", "7:43"}, {"A1 ", "Text3=12", "11:43"}, {"A2C", "Text3=12", ""},
        // T256-2047: steps of 16 up to the last timer, from T272 without low speed.
        {"A3A", d512 + "Text1(4)=256 Text1(5)=384 Text1(6)=496", ""}, {"A3A", d512 + "Text1(4)=256 Text1(5)=264", "11:38"},
        {"A3A", d512 + "Text1(6)=2049", "7:39"}, {"A3A", d512 + "Text1(6)=512", "11:39"},
        {"A3A", d512 + "Text1(5)=256", "11:38"}, {"A3A", "Text1(4)=256", "11:37"},
        // Set-value devices; more than 256 points keep set values in one, which must hold them.
        {"A3A", "Combo1=D Text1(7)=6144", "7:40"}, {"A2A", "Combo1=W Text1(7)=1000", "7:40"},
        {"A2U", "Combo1=W Text1(7)=1FFF", ""}, {"A3A", "Combo1=W Text1(7)=FFF", ""}, {"A3A", "Combo2=R", "2:42"},
        {"A3A", "Text1(7)=8", "2:44"}, {"A3A", "Combo2=X", "11:45"}, {"A3A", "Text1(0)=512", "11:33"},
        {"A3A", "Text1(0)=512 Combo1=D Text1(7)=5888", ""}, {"A3A", "Text1(0)=512 Combo1=D Text1(7)=5889", "11:33"},
        {"A4U", "Text2(0)=1024 Combo2=R Text2(1)=7936", "11:41"}, {"A4U", "Text2(0)=1024 Combo2=R Text2(1)=8192", "7:42"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.cpu) + " " + c.edits);
        EXPECT_EQ(test::RecordedErrors(ValidateTimerCounter(Edited(c.cpu, c.edits), test::ContextFor(c.cpu))), c.recorded);
    }
}
// clang-format on

// Latch pairs written "24=0-199 28=E-E": pair index, first and last word (E erased).
std::vector<std::pair<int, std::pair<int, int>>> LatchPairs(const std::string& text) {
    std::vector<std::pair<int, std::pair<int, int>>> pairs;
    std::istringstream in(text);
    for (std::string token; in >> token;) {
        const auto eq = token.find('='), dash = token.find('-');
        auto word = [](const std::string& s) { return s == "E" ? kErased : std::stoi(s); };
        pairs.push_back(
            {std::stoi(token.substr(0, eq)),
             {word(token.substr(eq + 1, dash - eq - 1)), word(token.substr(dash + 1))}});
    }
    return pairs;
}

// clang-format off
TEST(TimerCounterWrite, LatchRangesFollowTheNewPartition) {
    const std::string partition = "Text1(2)=160 Text1(3)=240";
    const struct { const char* cpu; std::string edits, before, after; } cases[] = {
        // Ends past the new boundaries come back; an empty range stays unlatched.
        {"A3 ", partition, "24=0-199 28=200-255", "24=0-159 28=200-239 32=E-E"},
        // A range below its kind is raised into it; one wholly past it keeps its last timer.
        {"A3 ", partition, "28=100-180 32=248-255", "28=160-180 32=248-255"},
        {"A2 ", partition, "24=170-190", "24=159-159"},
        {"A1S", partition, "24=180-E", "24=159-E"},  // an erased end stays erased
        {"A2C", "Text1(3)=", "32=248-255", "32=E-E"},  // no first number, no latch
        {"A3A", "Text1(0)=128 Text1(2)=64", "24=0-100 28=120-255", "24=0-63 28=120-127"},
        // 256 points or fewer: the second block's low- and high-speed pairs go (bytes 48..55).
        {"A2U", "", "48=256-300 52=400-500 56=600-700", "48=E-E 52=E-E 56=600-700"},
        {"A3A", "Text1(0)=1024 Combo1=D Text1(7)=0 Text1(4)=256 Text1(5)=512 Text1(6)=768",
         "48=256-600 52=700-1100 56=800-2047", "48=256-511 52=700-767 56=800-1023"},
        // The counter rows follow the counter points.
        {"A3U", "Text2(0)=128", "36=0-255 60=256-1023", "36=0-127 60=E-E"},
        {"A3A", "Text2(0)=512 Combo2=D Text2(1)=0", "36=100-255 60=300-1023", "36=100-255 60=300-511"},
        {"A2A", "Text2(0)=0", "36=0-99", "36=E-E"},
        {"A3 ", partition, "36=0-255", "36=0-255"},  // small groups leave counters alone
        {"A0J", "Text1(1)=0 Text1(2)=8", "24=100-120", "24=100-120"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.cpu) + " " + c.edits + " / " + c.before);
        const TimerCounterFields f = Edited(c.cpu, c.edits);
        ASSERT_FALSE(ValidateTimerCounter(f, test::ContextFor(c.cpu)).Any());
        ParameterImage image = test::DefaultImage(c.cpu);
        for (const auto& [pair, range] : LatchPairs(c.before)) {
            image.SetParamWord(range.first, pair);
            image.SetParamWord(range.second, pair + 2);
        }
        WriteTimerCounter(f, image, test::ContextFor(c.cpu));
        for (const auto& [pair, range] : LatchPairs(c.after)) {
            EXPECT_EQ(std::make_pair(image.GetParamWord(pair), image.GetParamWord(pair + 2)), range)
                << "pair " << pair;
        }
    }
}
// clang-format on

}  // namespace
}  // namespace gantrix
