// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "common/ControlNumbers.h"
#include "common/ErrorTables.h"
#include "common/InputRoutines.h"
#include "common/Messages.h"
#include "common/ModuleState.h"
#include "common/StringTable.h"
#include "platform/user32/user32.h"
#include "support/core/TestSupport.h"

namespace gantrix {
namespace {

using test::ScriptedMessages;

// clang-format off
TEST(ShowMessage, TextsCaptionsAndStylesOfTheNumberedBoxes) {
    ModuleState state;
    ScriptedMessages shown;
    state.Presenter = &shown;
    state.PendingErrorDescription = "Cannot write \"x\": No space left on device";
    const std::string exceeded = " position of sequence has exceeded the memory capacity setting value.";
    const std::string tail = "\n\rEND instruction will be deleted if the setting is ended now.\n\r"
                             "Please check the memory capacity setting.";
    const struct { int number; int style; std::string text; } boxes[] = {
        {0, 16, state.PendingErrorDescription},
        {1, 292, "Changed data will be lost. Are you sure you want to continue?"},
        {2, 48, "Input a value."},
        {9, 48, "END instruction" + exceeded + tail},
        {10, 64, "Completed."},
        {21, 48, "Sub2 - END instruction" + exceeded + tail},
        {23, 48, "Over the total memory capacity. Please check the memory capacity setting."},
        {24, 36, "Start the MS-EXCEL. Are you sure you want to continue?"},
    };
    for (const auto& box : boxes) {
        shown.shown.clear();
        ShowMessage(state, box.number);
        ASSERT_EQ(shown.shown.size(), 1u) << box.number;
        EXPECT_EQ(shown.shown[0].style, box.style) << box.number;
        EXPECT_EQ(shown.shown[0].text, box.text) << box.number;
        EXPECT_EQ(shown.shown[0].caption, box.number == 23 ? "MorvaneR" : "Morvane");
    }
    shown.shown.clear();
    for (int none : {6, 26, -1}) EXPECT_EQ(ShowMessage(state, none), "") << none;
    EXPECT_TRUE(shown.shown.empty());
    for (int id : {0, 1999, 2037, 2344}) EXPECT_EQ(LoadResString(id), "") << id;
}
// clang-format on

using HostLog = std::vector<std::string>;

void HostProc(intptr_t, uint32_t msg, uintptr_t wParam, intptr_t lParam, void* context) {
    const std::string sent =
        lParam ? " sent " + std::to_string(*reinterpret_cast<int32_t*>(lParam)) : " posted";
    static_cast<HostLog*>(context)->push_back(
        (msg == WM_COMMAND && wParam == 60000 ? "cmd" : "other") + sent);
}

// Posted messages reach the host while the box is up.
struct LoggingPresenter : ScriptedMessages {
    explicit LoggingPresenter(HostLog& to) : log(to) {}
    MessageButton Present(const MessageBoxLook& box) override {
        User32DispatchPosted();
        log.push_back("box " + std::to_string(box.number));
        return ScriptedMessages::Present(box);
    }
    HostLog& log;
};

TEST(ShowMessage, PostsBeforeAndSendsAfterEveryBoxAndMapsAnswers) {
    HostLog log;
    User32RegisterWindow(4242, HostProc, &log);
    ModuleState state;
    state.HostWnd = 4242;
    LoggingPresenter presenter(log);
    state.Presenter = &presenter;
    presenter.Then(MessageButton::Yes).Then(MessageButton::No).Then(MessageButton::Cancel);
    EXPECT_EQ(ShowMessage(state, 1), "YES");
    EXPECT_EQ(ShowMessage(state, 12), "No");
    EXPECT_EQ(ShowMessage(state, 3), "Cancel");
    EXPECT_EQ(ShowMessage(state, 3), "OK");
    EXPECT_EQ(ShowMessage(state, 6), "");  // no box, still the send after
    User32DispatchPosted();
    User32RegisterWindow(4242, nullptr, nullptr);
    EXPECT_EQ(log, (HostLog{"cmd posted", "box 1", "cmd sent 0", "cmd posted", "box 12",
                            "cmd sent 0", "cmd posted", "box 3", "cmd sent 0", "cmd posted",
                            "box 3", "cmd sent 0", "cmd sent 0", "cmd posted"}));
}

TEST(ReportErrors, OneBoxPerMessageAscendingPaintingItsControlsOnOk) {
    ModuleState state;
    ScriptedMessages presenter;
    state.Presenter = &presenter;
    ErrorTables errors;
    for (const auto& [message, control] :
         {std::pair{11, 1}, {3, 6}, {11, 0}, {3, 7}, {2, 8}, {16, -1}})
        errors.Record(message, control);
    std::vector<int> painted;
    presenter.Then(MessageButton::Cancel);  // the first box: its control stays unpainted
    EXPECT_FALSE(ReportErrors(state, errors, [&](int c) { painted.push_back(c); }));
    EXPECT_EQ(presenter.Numbers(), (std::vector<int>{2, 3, 11, 16}));
    EXPECT_EQ(painted, (std::vector<int>{6, 7, 0, 1}));
    presenter.shown.clear();
    EXPECT_TRUE(ReportErrors(state, ErrorTables{}, [&](int) { FAIL(); }));
    EXPECT_TRUE(presenter.shown.empty());
}

// clang-format off
TEST(ControlNumbers, EveryNumberedControlBothWays) {
    const std::tuple<const char*, const char*, int> named[] = {
        {"frmMemory", "Text4", 8}, {"frmLatch", "Text1(0)", 9}, {"frmTimerCounter", "Combo2", 45},
        {"frmAssistance", "Text3", 50}, {"frmRemote", "Text2(27)", 79}, {"frmMINI", "Text2(87)", 168},
        // Controls and forms without a number, and indices past an array, give 0.
        {"frmMemory", "Text1(6)", 0}, {"frmMemory", "Text5", 0}, {"frmIOLayout", "Text1(3)", 0},
        {"frmLatch", "Text1", 0}, {"frmTimerCounter", "Combo1(0)", 0}, {"frmLatch", "Text1(x)", 0},
    };
    for (const auto& [form, control, number] : named) {
        EXPECT_EQ(GetControlNo(form, control), number) << form << " " << control;
    }
    for (int n = 0; n <= 168; ++n) {
        const ControlName name = ControlNameOf(n);
        EXPECT_EQ(GetControlNo(name.form, name.control), n) << name.form << " " << name.control;
    }
    EXPECT_TRUE(ControlNameOf(169).form.empty());
}
// clang-format on

// clang-format off
TEST(InputRoutines, KeysTextsAndValuesOfTheNumberBoxes) {
    for (int key : {int('0'), int('9'), 8, 22, 0}) EXPECT_EQ(CheckDecimalKey(key), 1) << key;
    for (int key : {int('a'), int(' '), int('/'), int(':'), 127}) EXPECT_EQ(CheckDecimalKey(key), 0);
    EXPECT_EQ(CheckDecimalKey(13), 2);
    const struct { bool hex; const char* in; int caret; const char* out; int outCaret; } boxes[] = {
        {false, " 0 7 ", 2, " 7", 2},  // inner blanks stay, outer ones and the leading zero go
        {false, "12a", 3, "", 0},      // one wrong character empties the box
        {false, "007", 1, "7", 1}, {false, "0", 1, "0", 1}, {false, "00", 2, "", 0},
        {false, "100", 3, "100", 3}, {true, " 1f ", 2, "1F", 2}, {true, "1G", 2, "", 0},
        {true, "00ab", 4, "00AB", 4},  // hexadecimal boxes keep their zeros
    };
    for (const auto& b : boxes) {
        TextBoxState box{b.in, b.caret};
        b.hex ? CheckHexText(box) : CheckDecimalText(box);
        EXPECT_EQ(box.text, b.out) << '"' << b.in << '"';
        EXPECT_EQ(box.caret, b.outCaret) << '"' << b.in << '"';
    }
    using Values = std::initializer_list<std::pair<const char*, long>>;
    for (const auto& [text, value] : Values{{"", 0}, {" 7", 7}, {"1 2", 12}, {"10", 10}, {"12a3", 12}, {"9/", 9}})
        EXPECT_EQ(ValueOf(text), value) << text;
    for (const auto& [text, value] : Values{{"00FF", 255}, {"FFFF", 65535}, {"1F", 7936}, {"0A0A", 2570}, {"0G0A", 10}})
        EXPECT_EQ(HexToValue(text), value) << text;
    for (const auto& [text, padded] : {std::pair{"1F", "001F"}, {"FFFF", "FFFF"}, {"12345", ""}, {"", ""}})
        EXPECT_EQ(PadZero4(text), padded) << text;
    EXPECT_EQ(Trim("  a b "), "a b");
}
// clang-format on

}  // namespace
}  // namespace gantrix
