#include <gtest/gtest.h>

#include <QApplication>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QToolButton>
#include <QVBoxLayout>

#include "common/ControlNumbers.h"
#include "common/ErrorTables.h"
#include "common/qt/DialogBase.h"
#include "common/qt/FormControls.h"
#include "common/qt/QtMessagePresenter.h"
#include "common/qt/SpinButton.h"
#include "platform/user32/user32.h"
#include "store/RuntimeError.h"
#include "support/ModalDriver.h"
#include "support/core/TestSupport.h"

namespace gantrix {
namespace {

using test::PressKey;
using test::ScriptedMessages;
using test::TypeKeys;

// A dialog with the shared flows and three fields, named like the memory dialog's controls so
// that they carry global control numbers (0, 1 and 6).
class TestDialog : public DialogBase {
  public:
    explicit TestDialog(ModuleState& state) : DialogBase(state, "frmMemory") {
        auto* layout = new QVBoxLayout(this);
        for (const char* name : {"Text1(0)", "Text1(1)", "Text2"}) {
            auto* edit = new QLineEdit(this);
            edit->setObjectName(name);
            layout->addWidget(edit);
            fields.push_back(edit);
            connect(edit, &QLineEdit::textChanged, this, [this] { State().DataChanged = true; });
            OnKeyPress(edit, [this, edit](int& key) {
                if (key == 13) {
                    key = 0;
                    FocusNextField(edit);
                }
            });
        }
        for (const char* name : {"OK", "Cancel", "Clear"}) {
            auto* button = new QPushButton(name, this);
            button->setObjectName(name);
            layout->addWidget(button);
            buttons.push_back(button);
        }
        SetButtons(buttons[0], buttons[1], buttons[2]);
        spin = new SpinButton(this);  // belongs to Text1(1) by its name
        spin->setObjectName("VScroll1(1)");
        layout->addWidget(spin);
        other = new QPushButton("Other", this);  // made last, tabbed to before OK
        other->setObjectName("Other");
        layout->addWidget(other);
        SetFieldOrder({fields[0], fields[1], fields[2]});
        fields[0]->setText(QString::number(State().image[300]));
        FinishLoad();
    }

    bool CheckSettings() override {
        ErrorTables errors;
        for (QLineEdit* field : fields) ResetErrorColor(field);
        if (fields[0]->text().isEmpty()) errors.Record(2, 0);
        if (fields[2]->text() == "x") errors.Record(3, 6);
        if (fields[1]->text() == "x") errors.Record(3, 1);
        return ReportErrors(State(), errors, SetErrorColor);
    }
    void SaveSettings() override {
        State().image[300] = static_cast<uint8_t>(fields[0]->text().toInt());
        // A value that does not fit fails after the first byte was written.
        State().image.SetParamWord(fields[1]->text().toLongLong(), 301);
    }
    void SetDefaults() override { fields[0]->setText("5"); }

    std::vector<QLineEdit*> fields;
    std::vector<QPushButton*> buttons;
    QPushButton* other = nullptr;
    SpinButton* spin = nullptr;
};

struct Fixture {
    ModuleState state = test::StateFor("A3 ");
    ScriptedMessages messages;
    std::unique_ptr<TestDialog> dialog;
    ParameterImage before;

    explicit Fixture(intptr_t hostWnd = 0) {
        state.HostWnd = hostWnd;
        state.Presenter = &messages;
        state.image[300] = 7;
        before = state.image;
        dialog = std::make_unique<TestDialog>(state);
        dialog->show();
        dialog->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(dialog.get()));
    }
    QLineEdit* Field(int i) const { return dialog->fields[i]; }
    QPushButton* Button(int i) const { return dialog->buttons[i]; }
};

TEST(DialogBase, OkChecksReportsAndPaintsThenSaves) {
    Fixture f;
    EXPECT_FALSE(f.state.DataChanged);  // loading is not an edit
    f.Field(0)->clear();
    f.Field(1)->setText("x");
    f.Field(2)->setText("x");
    PressKey(f.Field(2), Qt::Key_End);
    EXPECT_EQ(f.messages.Numbers(), (std::vector<int>{2, 3}));
    EXPECT_TRUE(f.dialog->isVisible());
    EXPECT_TRUE(HasErrorColor(f.Field(0)));
    EXPECT_TRUE(HasErrorColor(f.Field(1)));
    EXPECT_TRUE(HasErrorColor(f.Field(2)));
    EXPECT_EQ(f.state.image, f.before);

    f.Field(0)->setText("9");
    f.Field(1)->setText("513");
    f.Field(2)->setText("");
    PressKey(f.Button(0), Qt::Key_Return);
    EXPECT_FALSE(f.dialog->isVisible());
    EXPECT_EQ(f.dialog->result(), QDialog::Accepted);
    EXPECT_EQ(f.state.image[300], 9);
    EXPECT_EQ(f.state.image.GetParamWord(301), 513);
    EXPECT_TRUE(f.state.ParamChanged);
    EXPECT_FALSE(f.state.DataChanged);
    EXPECT_FALSE(HasErrorColor(f.Field(0)));  // the colours were reset before the check
}

TEST(DialogBase, CancelAsksOnlyAfterAnEdit) {
    Fixture clean;
    clean.Button(1)->click();
    EXPECT_FALSE(clean.dialog->isVisible());
    EXPECT_TRUE(clean.messages.shown.empty());

    Fixture f;
    f.Field(0)->deselect();
    f.Field(0)->end(false);
    TypeKeys(f.Field(0), "3");
    f.messages.Then(MessageButton::No);
    PressKey(f.Button(1), Qt::Key_Return);
    EXPECT_TRUE(f.dialog->isVisible());
    EXPECT_EQ(f.Field(0)->text(), "73");
    f.messages.Then(MessageButton::Yes);
    PressKey(f.Field(0), Qt::Key_Escape);  // Escape is Cancel
    EXPECT_FALSE(f.dialog->isVisible());
    EXPECT_EQ(f.messages.Numbers(), (std::vector<int>{1, 1}));
    EXPECT_EQ(f.state.image, f.before);
    EXPECT_FALSE(f.state.ParamChanged);
    EXPECT_FALSE(f.state.DataChanged);
}

TEST(DialogBase, ClearThenCancelLeavesTheImage) {
    Fixture f;
    f.Button(2)->click();  // message 12 answered No by default
    EXPECT_EQ(f.Field(0)->text(), "7");
    f.messages.Then(MessageButton::Yes);
    PressKey(f.Button(2), Qt::Key_Return);
    EXPECT_EQ(f.Field(0)->text(), "5");
    EXPECT_EQ(f.messages.Numbers(), (std::vector<int>{12, 12, 10}));
    f.messages.Then(MessageButton::Yes);
    f.dialog->close();  // the close box is Cancel too
    EXPECT_FALSE(f.dialog->isVisible());
    EXPECT_EQ(f.state.image, f.before);
}

TEST(DialogBase, EnterAndArrowsFollowTheFieldOrderSkippingHiddenFields) {
    Fixture f;
    EXPECT_EQ(f.dialog->focusWidget(), f.Field(0));  // the first field has the focus
    f.Field(1)->hide();
    PressKey(f.Field(0), Qt::Key_Return);
    EXPECT_EQ(f.dialog->focusWidget(), f.Field(2));
    PressKey(f.Field(2), Qt::Key_Return);
    EXPECT_EQ(f.dialog->focusWidget(), f.Button(0));  // after the last field: OK
    PressKey(f.Field(2), Qt::Key_Up);
    EXPECT_EQ(f.dialog->focusWidget(), f.Field(0));
    PressKey(f.Field(0), Qt::Key_Left);  // nothing before the first field
    EXPECT_EQ(f.dialog->focusWidget(), f.Field(0));
    PressKey(f.Field(0), Qt::Key_Right);
    EXPECT_EQ(f.dialog->focusWidget(), f.Field(2));
}

TEST(DialogBase, TabFollowsTheFieldOrderThenTheOtherButtonsThenOkCancelClear) {
    Fixture f;
    std::vector<QWidget*> seen;
    for (int i = 0; i < 7; ++i) {
        seen.push_back(QApplication::focusWidget());
        PressKey(QApplication::focusWidget(), Qt::Key_Tab);
    }
    EXPECT_EQ(seen, (std::vector<QWidget*>{f.Field(0), f.Field(1), f.Field(2), f.dialog->other,
                                           f.Button(0), f.Button(1), f.Button(2)}));
}

TEST(DialogBase, ARuntimeErrorShowsItsDescriptionAndPutsTheImageBack) {
    Fixture f;
    f.Field(0)->setText("9");
    f.Field(1)->setText("70000");
    f.Button(0)->click();
    EXPECT_FALSE(f.dialog->isVisible());
    EXPECT_EQ(f.dialog->result(), QDialog::Rejected);
    ASSERT_EQ(f.messages.Numbers(), std::vector<int>{0});
    EXPECT_NE(f.messages.shown[0].text.find("70000"), std::string::npos);
    EXPECT_EQ(f.messages.shown[0].style, kStyleStopOk);
    EXPECT_EQ(f.state.image, f.before);  // byte 300 was written, then taken back
    EXPECT_FALSE(f.state.ParamChanged);
}

// A dialog whose load rewrites a byte and then fails.
class FailingLoad : public DialogBase {
  public:
    explicit FailingLoad(ModuleState& state) : DialogBase(state, "frmMemory") {
        Guard([this] {
            State().image[301] = 0;
            State().image.SetParamWord(-1, 302);
        });
        if (!Unloaded()) FinishLoad();
    }
    bool CheckSettings() override { return true; }
    void SaveSettings() override {}
};

TEST(DialogBase, AnErrorWhileLoadingPutsBackTheImageAsOpenedAndShowsNothing) {
    ModuleState state = test::StateFor("A3 ");
    ScriptedMessages messages;
    state.Presenter = &messages;
    state.image[301] = 9;
    const ParameterImage before = state.image;
    FailingLoad dialog(state);
    EXPECT_EQ(dialog.exec(), QDialog::Rejected);  // returns at once: nothing to show
    EXPECT_EQ(messages.Numbers(), std::vector<int>{0});
    EXPECT_EQ(state.image, before);
}

struct Notifications {
    int count = 0;
    static void Proc(intptr_t, uint32_t msg, uintptr_t wParam, intptr_t lParam, void* context) {
        if (msg == WM_COMMAND && wParam == 60000 && lParam != 0 &&
            *reinterpret_cast<const int32_t*>(lParam) == 0) {
            ++static_cast<Notifications*>(context)->count;
        }
    }
};

TEST(DialogBase, ASpinArrowPassesTheFocusToItsTextBox) {
    Fixture f;
    EXPECT_EQ(QApplication::focusWidget(), f.Field(0));
    QTest::mouseClick(f.dialog->spin->DownButton(), Qt::LeftButton);
    EXPECT_EQ(QApplication::focusWidget(), f.Field(1));
    PressKey(f.Field(1), Qt::Key_Return);  // Enter goes on from the spin button's box
    EXPECT_EQ(QApplication::focusWidget(), f.Field(2));
}

TEST(DialogBase, EveryActivationNotifiesTheHost) {
    Notifications host;
    User32RegisterWindow(515, Notifications::Proc, &host);
    Fixture f(515);
    EXPECT_GE(host.count, 1);
    User32RegisterWindow(515, nullptr, nullptr);
}

TEST(SpinButton, MinAboveMaxMakesTheUpArrowRaiseTheValue) {
    SpinButton spin;
    std::vector<int> changes;
    QObject::connect(&spin, &SpinButton::Change, [&](int v) { changes.push_back(v); });
    spin.SetRange(99, 0);
    spin.SetValue(98);
    spin.StepUp();
    spin.StepUp();  // stops at the top value
    EXPECT_EQ(spin.Value(), 99);
    spin.StepDown();
    EXPECT_EQ(changes, (std::vector<int>{98, 99, 98}));
    spin.SetValue(500);  // beyond the range: at the end, without an event for the text box
    EXPECT_EQ(spin.Value(), 99);
    spin.SetValue(99);  // no change, no event
    EXPECT_EQ(changes.size(), 3u);
    QTest::mouseClick(spin.DownButton(), Qt::LeftButton);
    EXPECT_EQ(spin.Value(), 98);

    spin.SetRange(0, 9);  // the other way round: up lowers
    spin.SetValue(5);
    spin.StepUp();
    EXPECT_EQ(spin.Value(), 4);
    spin.SetMax(3);  // a new range brings the value in
    EXPECT_EQ(spin.Value(), 3);
    EXPECT_EQ(spin.focusPolicy(), Qt::NoFocus);
}

TEST(QtMessagePresenter, EnterAnswersTheDefaultButton) {
    ModuleState state;
    state.Presenter = &QtMessagePresenter::Instance();
    test::ModalDriver driver;
    QString caption23, text9;
    driver.Message(1, "Enter")
        .Message(12, "Enter")
        .Message(24, "Enter")
        .Message(12, "Yes")
        .On("MessageBox",
            [&](QWidget* box) {
                caption23 = box->windowTitle();
                static_cast<QMessageBox*>(box)->button(QMessageBox::Ok)->click();
            })
        .On("MessageBox", [&](QWidget* box) {
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

}  // namespace
}  // namespace gantrix
