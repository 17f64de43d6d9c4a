#include <gtest/gtest.h>

#include "common/ControlNumbers.h"
#include "common/ErrorTables.h"
#include "common/Messages.h"
#include "common/ModuleState.h"
#include "platform/user32/user32.h"
#include "support/core/TestSupport.h"

namespace gantrix {
namespace {

using test::ScriptedMessages;

TEST(Messages, TextsCaptionsAndStyles) {
    struct Case {
        int number;
        int style;
        const char* start;
    };
    const Case cases[] = {
        {1, 292, "Changed data will be lost."}, {2, 48, "Input a value."},
        {3, 48, "Setting out of range"},        {10, 64, "Completed."},
        {12, 292, "Set parameters back"},       {16, 48, "Number of I/O points"},
        {23, 48, "Over the total memory"},      {24, 36, "Start the MS-EXCEL."},
        {25, 292, "It is different from"},
    };
    for (const Case& c : cases) {
        const auto box = MessageBoxOf(c.number, "");
        ASSERT_TRUE(box) << c.number;
        EXPECT_EQ(box->style, c.style) << c.number;
        EXPECT_EQ(box->text.rfind(c.start, 0), 0u) << box->text;
        EXPECT_EQ(box->caption, c.number == 23 ? "MorvaneR" : "Morvane");
    }
    for (int n = 0; n <= 25; ++n) {
        if (n == 6) continue;
        EXPECT_TRUE(MessageBoxOf(n, "x")) << n;
    }
    EXPECT_FALSE(MessageBoxOf(6, ""));
    EXPECT_FALSE(MessageBoxOf(26, ""));
    EXPECT_FALSE(MessageBoxOf(-1, ""));
}

TEST(Messages, ThreeLineMessagesJoinWithLineFeedCarriageReturn) {
    const std::string tail =
        "\n\rEND instruction will be deleted if the setting is ended now.\n\r"
        "Please check the memory capacity setting.";
    EXPECT_EQ(MessageBoxOf(9, "")->text,
              "END instruction position of sequence has exceeded the memory capacity setting "
              "value." +
                  tail);
    EXPECT_EQ(MessageBoxOf(21, "")->text.substr(0, 5), "Sub2 ");
    EXPECT_EQ(MessageBoxOf(22, "")->text.substr(MessageBoxOf(22, "")->text.size() - tail.size()),
              tail);
    const auto error = MessageBoxOf(0, "Cannot write \"x\": No space left on device");
    EXPECT_EQ(error->text, "Cannot write \"x\": No space left on device");
    EXPECT_EQ(error->style, kStyleStopOk);
}

struct HostLog {
    std::vector<std::string> events;
};

void HostProc(intptr_t, uint32_t msg, uintptr_t wParam, intptr_t lParam, void* context) {
    auto* log = static_cast<HostLog*>(context);
    std::string what = msg == WM_COMMAND && wParam == 60000 ? "cmd" : "other";
    if (lParam == 0) {
        what += " posted";
    } else {
        what += " sent " + std::to_string(*reinterpret_cast<const int32_t*>(lParam));
    }
    log->events.push_back(what);
}

class LoggingPresenter : public ScriptedMessages {
  public:
    explicit LoggingPresenter(HostLog& log) : log_(log) {}
    MessageButton Present(const MessageBoxLook& box) override {
        // Posted messages reach the host while the box is up.
        User32DispatchPosted();
        log_.events.push_back("box " + std::to_string(box.number));
        return ScriptedMessages::Present(box);
    }

  private:
    HostLog& log_;
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
    EXPECT_EQ(ShowMessage(state, 99), "");
    User32DispatchPosted();
    User32RegisterWindow(4242, nullptr, nullptr);

    const std::vector<std::string> expected = {
        "cmd posted", "box 1",      "cmd sent 0", "cmd posted", "box 12", "cmd sent 0",
        "cmd posted", "box 3",      "cmd sent 0", "cmd posted", "box 3",  "cmd sent 0",
        "cmd sent 0", "cmd sent 0", "cmd posted", "cmd posted"};
    EXPECT_EQ(log.events, expected);
    EXPECT_EQ(presenter.Numbers(), (std::vector<int>{1, 12, 3, 3}));
}

TEST(ShowMessage, MessageZeroShowsThePendingError) {
    ModuleState state;
    ScriptedMessages presenter;
    state.Presenter = &presenter;
    state.PendingErrorDescription = "Overflow: the value 70000";
    EXPECT_EQ(ShowMessage(state, 0), "OK");
    ASSERT_EQ(presenter.shown.size(), 1u);
    EXPECT_EQ(presenter.shown[0].text, "Overflow: the value 70000");
}

TEST(ControlNumbers, EveryNumberedControlBothWays) {
    EXPECT_EQ(GetControlNo("frmMemory", "Text1(0)"), 0);
    EXPECT_EQ(GetControlNo("frmMemory", "Text1(5)"), 5);
    EXPECT_EQ(GetControlNo("frmMemory", "Text4"), 8);
    EXPECT_EQ(GetControlNo("frmLatch", "Text1(23)"), 32);
    EXPECT_EQ(GetControlNo("frmTimerCounter", "Text2(1)"), 42);
    EXPECT_EQ(GetControlNo("frmTimerCounter", "Combo2"), 45);
    EXPECT_EQ(GetControlNo("frmAssistance", "Text3"), 50);
    EXPECT_EQ(GetControlNo("frmRemote", "Text2(27)"), 79);
    EXPECT_EQ(GetControlNo("frmMINI", "Text2(87)"), 168);
    // Unlisted controls and forms, and indices past an array, give 0.
    EXPECT_EQ(GetControlNo("frmMemory", "Text1(6)"), 0);
    EXPECT_EQ(GetControlNo("frmMemory", "Text5"), 0);
    EXPECT_EQ(GetControlNo("frmIOLayout", "Text1(3)"), 0);
    EXPECT_EQ(GetControlNo("frmMemory", "Text2(0)"), 0);
    EXPECT_EQ(GetControlNo("frmLatch", "Text1"), 0);
    for (int n = 0; n <= 168; ++n) {
        const ControlName name = ControlNameOf(n);
        ASSERT_FALSE(name.form.empty()) << n;
        EXPECT_EQ(GetControlNo(name.form, name.control), n) << name.form << " " << name.control;
    }
    EXPECT_TRUE(ControlNameOf(169).form.empty());
}

TEST(ReportErrors, OneBoxPerMessageAscendingPaintingOnOk) {
    ModuleState state;
    ScriptedMessages presenter;
    state.Presenter = &presenter;
    ErrorTables errors;
    errors.Record(11, 1);
    errors.Record(3, 6);
    errors.Record(11, 0);
    errors.Record(3, 7);
    errors.Record(2, 8);
    std::vector<int> painted;
    // The first box is answered Cancel: its controls stay unpainted.
    presenter.Then(MessageButton::Cancel);
    EXPECT_FALSE(ReportErrors(state, errors, [&](int c) { painted.push_back(c); }));
    EXPECT_EQ(presenter.Numbers(), (std::vector<int>{2, 3, 11}));
    EXPECT_EQ(painted, (std::vector<int>{6, 7, 0, 1}));

    presenter.shown.clear();
    EXPECT_TRUE(ReportErrors(state, ErrorTables{}, [&](int) { FAIL(); }));
    EXPECT_TRUE(presenter.shown.empty());
}

TEST(ErrorTables, RecordsMessagesPerControl) {
    ErrorTables t;
    EXPECT_FALSE(t.Any());
    t.Record(8, -1);
    EXPECT_TRUE(t.HasMessage(8));
    EXPECT_FALSE(t.ControlHasError(0));
    t.Record(7, 20);
    EXPECT_TRUE(t.ControlHasError(20));
    EXPECT_TRUE(t.ControlHasMessage(20, 7));
    EXPECT_FALSE(t.ControlHasMessage(20, 8));
    t.Clear();
    EXPECT_FALSE(t.Any());
    EXPECT_FALSE(t.ControlHasError(20));
}

TEST(DeviceMaxSizes, IndexedByLetter) {
    DeviceMaxSizes sizes;
    sizes['M'] = 2048;
    sizes['R'] = 8192;
    EXPECT_EQ(sizes['M'], 2048);
    EXPECT_EQ(sizes.points[2], 2048);
    EXPECT_EQ(sizes.points[8], 8192);
    EXPECT_THROW(sizes['Q'], std::out_of_range);
}

}  // namespace
}  // namespace gantrix
