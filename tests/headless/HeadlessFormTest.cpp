#include <random>
#include <set>

#include "common/ControlNumbers.h"
#include "common/qt/DialogRegistry.h"
#include "common/qt/FormControls.h"
#include "headless/Headless.h"
#include "headless/Page.h"
#include "store/CheckSum.h"
#include "support/FormFixture.h"

namespace gantrix {
namespace {

struct Shown {
    std::set<int> messages;
    std::set<std::string> painted;  // the keys of the controls painted yellow
};

// Opens the dialog on image as the menu would and presses End (OK); Cancel if it stays open.
Shown OpenAndPressOk(const std::string& cpu, const ParameterImage& image, headless::Page& page) {
    test::TempDir project;  // the I/O assignment takes the run's working file first
    project.Write("param.$$$", {image.bytes().begin(), image.bytes().end()});
    ModuleState state = test::StateFor(cpu, project.Path());
    state.image = image;
    test::ScriptedMessages messages;
    state.Presenter = &messages;
    Shown shown;
    test::ModalDriver driver;
    driver.On(QString::fromStdString(page.Form()), [&](QWidget* dialog) {
        test::PressKey(dialog, Qt::Key_End);
        for (int c = 0; c <= kMaxControlNo; ++c) {
            QWidget* control = ControlOfNumber(c);
            if (control != nullptr && control->window() == dialog && HasErrorColor(control))
                shown.painted.insert(page.KeyOfControl(ControlNameOf(c).control));
        }
        if (dialog->isVisible()) test::PressKey(test::Child(dialog, "Cancel"), Qt::Key_Return);
    });
    driver.Run([&] { OpenDialog(page.Form(), state); });
    for (int number : messages.Numbers()) shown.messages.insert(number);
    return shown;
}

TEST(HeadlessCheckForm, EachDialogShowsWhatCheckReports) {
    static const int kWords[] = {18,  20,  22,  24,  36,  48,  64,   68,   70,   160,
                                 176, 192, 194, 196, 198, 210, 534,  2304, 2306, 2312,
                                 142, 143, 158, 384, 386, 212, 2434, 14,   56,   72};
    static const int kValues[] = {0, 1, 8, 100, 200, 256, 300, 1023, 2047, 9000, 32800};
    std::mt19937 random(7);
    int failing = 0;
    for (const char* cpu : {"A0J", "A2C", "A3 ", "A3U"}) {
        for (int n = 0; n < 3; ++n) {
            ParameterImage image = test::DefaultImage(cpu);
            for (int k = 0; k < 4; ++k)
                image.SetParamWord(kValues[random() % std::size(kValues)],
                                   kWords[random() % std::size(kWords)]);
            const DialogContext context = headless::HeadlessContext(cpu);
            const auto found = headless::Check(image, context);
            for (const auto& page : headless::PagesFor(context)) {
                SCOPED_TRACE(std::string(cpu) + " image " + std::to_string(n) + " " + page->Name());
                Shown expected;
                for (const headless::Violation& v : found) {
                    if (v.dialog != page->Name()) continue;
                    expected.messages.insert(v.message);
                    if (!v.key.empty()) expected.painted.insert(v.key);
                }
                failing += expected.messages.empty() ? 0 : 1;
                const Shown shown = OpenAndPressOk(cpu, image, *page);
                EXPECT_EQ(shown.messages, expected.messages);
                EXPECT_EQ(shown.painted, expected.painted);
            }
        }
    }
    EXPECT_GT(failing, 5);  // the corpus has dialogs that refuse as well as ones that pass
}

TEST(HeadlessSetForm, WritesTheBytesTheDialogsOkWrites) {
    // clang-format off
    const struct { const char* cpu; const char* form; const char* control; const char* typed; const char* key; } cases[] = {
        {"A3 ", "frmLatch", "Text1(0)", "1024", "latch.L.start"},
        {"A3 ", "frmAssistance", "Text3", "35", "assist.watchdog"},
        {"A3U", "frmTimerCounter", "Text1(0)", "0", "timer.points"},
        {"A2C", "frmRemote", "Text1", "12", "remote.total"},
    };
    // clang-format on
    for (const auto& c : cases) {
        SCOPED_TRACE(c.key);
        ModuleState state = test::StateFor(c.cpu);
        test::ScriptedMessages messages;
        state.Presenter = &messages;
        const ParameterImage before = state.image;
        test::ModalDriver driver;
        driver.On(c.form, [&](QWidget* dialog) {
            auto* box = test::ChildAs<QLineEdit>(dialog, c.control);
            test::Retype(box, c.typed);
            test::PressKey(box, Qt::Key_Return);  // the focus moves on, as set assumes
            test::PressKey(dialog, Qt::Key_End);
        });
        driver.Run([&] { OpenDialog(c.form, state); });
        ASSERT_EQ(messages.Numbers(), std::vector<int>{});
        SetCheckSum(state.image, c.cpu, false);
        const auto outcome =
            headless::Set(before, headless::HeadlessContext(c.cpu), {{c.key, c.typed}});
        ASSERT_TRUE(outcome.refusals.empty()) << outcome.refusals[0].text;
        EXPECT_NE(outcome.image, before);
        EXPECT_EQ(test::DifferingBytes(outcome.image, state.image), std::vector<int>{});
    }
}

}  // namespace
}  // namespace gantrix
