// SPDX-License-Identifier: Apache-2.0
#include "common/qt/DialogBase.h"

#include <QKeyEvent>
#include <QMessageBox>

#include "common/qt/QtMessagePresenter.h"
#include "dialogs/frmAssistance/frmAssistance.h"
#include "dialogs/frmIOLayout/frmIOLayout.h"
#include "dialogs/frmLatch/frmLatch.h"
#include "dialogs/frmMINI/frmMINI.h"
#include "dialogs/frmMemory/frmMemory.h"
#include "dialogs/frmTimerCounter/frmTimerCounter.h"
#include "dialogs/frmTypeNameSet/frmTypeNameSet.h"
#include "support/FormFixture.h"

namespace gantrix {
namespace {

using test::PressKey;

// Its load rewrites byte 301, then fails when failLoad; its save writes byte 300, then fails.
class Failing : public DialogBase {
  public:
    Failing(ModuleState& state, bool failLoad) : DialogBase(state, "frmMemory") {
        MakeStandardButtons(ok, cancel, nullptr);
        Guard([&] {
            State().image[301] = 0;
            if (failLoad) State().image.SetParamWord(-1, 302);
        });
        if (!Unloaded()) FinishLoad();
    }
    bool CheckSettings() override { return true; }
    void SaveSettings() override {
        State().image[300] = 9;
        State().image.SetParamWord(70000, 301);
    }
    QPushButton* ok = nullptr;
    QPushButton* cancel = nullptr;
};

TEST(DialogBase, ARuntimeErrorShowsItsDescriptionAndPutsTheImageBack) {
    ModuleState state = test::StateFor("A3 ");
    test::ScriptedMessages messages;
    state.Presenter = &messages;
    state.image[301] = 7;
    const ParameterImage opened = state.image;
    Failing loadFails(state, true);
    EXPECT_EQ(loadFails.exec(), QDialog::Rejected);  // returns at once: nothing to show
    EXPECT_EQ(state.image, opened);  // as opened: what the load rewrote is taken back
    Failing saveFails(state, false);
    const ParameterImage loaded = state.image;
    saveFails.show();
    saveFails.ok->click();
    EXPECT_EQ(saveFails.result(), QDialog::Rejected);
    EXPECT_EQ(state.image, loaded);  // as loaded: byte 300 was written, then taken back
    ASSERT_EQ(messages.Numbers(), (std::vector<int>{0, 0}));
    EXPECT_NE(messages.shown[1].text.find("70000"), std::string::npos);
    EXPECT_FALSE(state.ParamChanged);
}

TEST(QtMessagePresenter, EnterAnswersTheDefaultButton) {
    ModuleState state;
    state.Presenter = &QtMessagePresenter::Instance();
    test::ModalDriver driver;
    QString caption23, text9;
    driver.Message(1, "Enter").Message(12, "Enter").Message(24, "Enter").Message(12, "Yes");
    driver.On("MessageBox", [&](QWidget* box) {
        caption23 = box->windowTitle();
        static_cast<QMessageBox*>(box)->button(QMessageBox::Ok)->click();
    });
    driver.On("MessageBox", [&](QWidget* box) {
        text9 = static_cast<QMessageBox*>(box)->text();
        PressKey(box, Qt::Key_Return);
    });
    std::vector<std::string> answers;
    driver.Run([&] {
        for (int n : {1, 12, 24, 12, 23, 9}) answers.push_back(ShowMessage(state, n));
    });
    EXPECT_EQ(answers, (std::vector<std::string>{"No", "No", "YES", "YES", "OK", "OK"}));
    EXPECT_EQ(caption23, "MorvaneR");
    EXPECT_FALSE(text9.contains('\r'));
    EXPECT_EQ(text9.count('\n'), 2);
}

// A letter outside ASCII neither reaches a filtered box nor wipes what it holds.
void ExpectForeignKeysDiscarded(QWidget* dialog, std::initializer_list<const char*> boxes) {
    for (const char* name : boxes) {
        auto* box = dialog->findChild<QWidget*>(name);
        ASSERT_NE(box, nullptr) << name;
        auto* combo = qobject_cast<QComboBox*>(box);
        const auto text = [&] {
            return combo ? combo->currentText() : static_cast<QLineEdit*>(box)->text();
        };
        const QString before = text();
        box->setFocus();
        for (const char* key : {"ä", "ß", "°", "😀"}) {
            QKeyEvent press(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier,
                            QString::fromUtf8(key));
            QApplication::sendEvent(QApplication::focusWidget(), &press);
        }
        EXPECT_EQ(text(), before) << dialog->objectName().toStdString() << " " << name;
    }
}

TEST(FilteredKeys, LettersOutsideAsciiAreDiscardedByEveryFilteredBox) {
    ExpectForeignKeysDiscarded(test::Opened<frmMemory>("A3 ").form.get(), {"Text1(0)", "Text4"});
    ExpectForeignKeysDiscarded(test::Opened<frmLatch>("A3 ").form.get(), {"Text1(0)", "Text1(2)"});
    ExpectForeignKeysDiscarded(test::Opened<frmTimerCounter>("A3A").form.get(),
                               {"Text1(0)", "Combo1", "Text1(1)"});
    test::Opened<frmIOLayout> io("A3 ");
    ExpectForeignKeysDiscarded(io.form.get(), {"Text1(0)"});
    IOLayoutFields assignment;
    assignment.codes[0] = "X16";
    assignment.names[0] = "AX10";
    frmTypeNameSet names(io.state, assignment);
    names.show();
    names.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&names));
    ExpectForeignKeysDiscarded(&names, {"Text1(0)", "Combo1(0)"});
    EXPECT_TRUE(io.messages.shown.empty());
    ExpectForeignKeysDiscarded(test::Opened<frmAssistance>("A3 ").form.get(),
                               {"Text2(0)", "Text3"});
    test::Opened<frmMINI> mini("A3U",
                               [](auto& opened) { opened.state.image.SetParamWord(1, 2312); });
    ExpectForeignKeysDiscarded(mini.form.get(), {"Text1", "Text2(0)", "Text2(4)"});  // one module
}

}  // namespace
}  // namespace gantrix
