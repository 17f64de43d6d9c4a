#include "common/qt/DialogBase.h"

#include <gtest/gtest.h>

#include <QMessageBox>
#include <QPushButton>
#include <QVBoxLayout>

#include "common/ErrorTables.h"
#include "common/qt/FormControls.h"
#include "common/qt/QtMessagePresenter.h"
#include "common/qt/SpinButton.h"
#include "platform/user32/user32.h"
#include "support/FormFixture.h"

namespace gantrix {
namespace {

using test::PressKey;
using test::ScriptedMessages;
using test::Yellow;

// A dialog with the shared flows and three fields named like the memory dialog's controls,
// so that they carry global control numbers (0, 1 and 6). It saves field 0 into byte 300 and
// field 1 as the word at 301, which fails for a value beyond a word after byte 300 is written.
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
                if (key != 13) return;
                key = 0;
                FocusNextField(edit);
            });
        }
        spin = new SpinButton(this);  // belongs to Text1(1) by its name
        spin->setObjectName("VScroll1(1)");
        layout->addWidget(spin);
        MakeStandardButtons(ok, cancel, &clear);
        other = new QPushButton("Other", this);  // made last, tabbed to before OK
        other->setObjectName("Other");
        layout->addWidget(other);
        layout->addLayout(StandardButtonRow());
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
        State().image.SetParamWord(fields[1]->text().toLongLong(), 301);
    }
    void SetDefaults() override { fields[0]->setText("5"); }

    std::vector<QLineEdit*> fields;
    QPushButton *ok = nullptr, *cancel = nullptr, *clear = nullptr, *other = nullptr;
    SpinButton* spin = nullptr;
};

struct Fixture : test::Opened<TestDialog> {
    explicit Fixture(intptr_t hostWnd = 0)
        : test::Opened<TestDialog>("A3 ", [hostWnd](auto& f) {
              f.state.HostWnd = hostWnd;
              f.state.image[300] = 7;
          }) {}
    QLineEdit* Field(int i) const { return form->fields[i]; }
};

TEST(DialogBase, OkChecksReportsAndPaintsThenSaves) {
    Fixture f;
    EXPECT_FALSE(f.state.DataChanged);  // loading is not an edit
    f.Field(0)->clear();
    f.Field(1)->setText("x");
    f.Field(2)->setText("x");
    PressKey(f.Field(2), Qt::Key_End);
    EXPECT_EQ(f.messages.Numbers(), (std::vector<int>{2, 3}));
    EXPECT_FALSE(f.Closed());
    EXPECT_TRUE(Yellow(f.Field(0)) && Yellow(f.Field(1)) && Yellow(f.Field(2)));
    EXPECT_EQ(f.state.image, f.loaded);

    f.Field(0)->setText("9");
    f.Field(1)->setText("513");
    f.Field(2)->setText("");
    PressKey(f.form->ok, Qt::Key_Return);
    EXPECT_TRUE(f.Closed());
    EXPECT_EQ(f.form->result(), QDialog::Accepted);
    EXPECT_EQ(f.state.image[300], 9);
    EXPECT_EQ(f.state.image.GetParamWord(301), 513);
    EXPECT_TRUE(f.state.ParamChanged);
    EXPECT_FALSE(f.state.DataChanged);
    EXPECT_FALSE(Yellow(f.Field(0)));  // the colours were reset before the check
}

TEST(DialogBase, CancelAsksOnlyAfterAnEditAndClearPutsTheDefaults) {
    Fixture clean;
    clean.form->cancel->click();
    EXPECT_TRUE(clean.Closed());
    EXPECT_TRUE(clean.messages.shown.empty());

    Fixture f;
    f.form->clear->click();  // message 12 answered No by default
    EXPECT_EQ(f.Field(0)->text(), "7");
    f.messages.Then(MessageButton::Yes);
    PressKey(f.form->clear, Qt::Key_Return);
    EXPECT_EQ(f.Field(0)->text(), "5");
    f.messages.Then(MessageButton::No);
    PressKey(f.form->cancel, Qt::Key_Return);
    EXPECT_FALSE(f.Closed());
    f.messages.Then(MessageButton::No);
    f.form->close();  // the close box is Cancel too
    EXPECT_FALSE(f.Closed());
    f.messages.Then(MessageButton::Yes);
    PressKey(f.Field(0), Qt::Key_Escape);  // and Escape
    EXPECT_TRUE(f.Closed());
    EXPECT_EQ(f.messages.Numbers(), (std::vector<int>{12, 12, 10, 1, 1, 1}));
    EXPECT_EQ(f.state.image, f.loaded);
    EXPECT_FALSE(f.state.ParamChanged || f.state.DataChanged);
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

TEST(DialogBase, FocusFollowsTheFieldOrderAndActivationNotifiesTheHost) {
    Notifications host;
    User32RegisterWindow(515, Notifications::Proc, &host);
    Fixture f(515);
    User32RegisterWindow(515, nullptr, nullptr);
    EXPECT_GE(host.count, 1);

    QStringList tabs;
    for (int i = 0; i < 7; ++i) {
        tabs << test::Focused();
        PressKey(QApplication::focusWidget(), Qt::Key_Tab);
    }
    // Fields in their order, the other buttons, then OK, Cancel and Clear.
    EXPECT_EQ(tabs,
              (QStringList{"Text1(0)", "Text1(1)", "Text2", "Other", "OK", "Cancel", "Clear"}));
    QTest::mouseClick(f.form->spin->DownButton(), Qt::LeftButton);
    EXPECT_EQ(QApplication::focusWidget(), f.Field(1));  // a spin arrow focuses its box
    PressKey(f.Field(1), Qt::Key_Return);
    EXPECT_EQ(QApplication::focusWidget(), f.Field(2));

    f.Field(1)->hide();
    const std::tuple<int, Qt::Key, QString> moves[] = {
        {0, Qt::Key_Return, "Text2"},  {2, Qt::Key_Return, "OK"},   {2, Qt::Key_Up, "Text1(0)"},
        {0, Qt::Key_Left, "Text1(0)"}, {0, Qt::Key_Right, "Text2"}, {2, Qt::Key_Down, "OK"},
    };
    for (const auto& [from, key, to] : moves) {
        f.Field(from)->setFocus();
        PressKey(f.Field(from), key);
        EXPECT_EQ(test::Focused(), to) << from << " " << key;
    }
}

TEST(DialogBase, ARuntimeErrorShowsItsDescriptionAndPutsTheImageBack) {
    Fixture f;
    f.Field(0)->setText("9");
    f.Field(1)->setText("70000");
    f.form->ok->click();
    EXPECT_TRUE(f.Closed());
    EXPECT_EQ(f.form->result(), QDialog::Rejected);
    ASSERT_EQ(f.messages.Numbers(), std::vector<int>{0});
    EXPECT_NE(f.messages.shown[0].text.find("70000"), std::string::npos);
    EXPECT_EQ(f.state.image, f.loaded);  // byte 300 was written, then taken back
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

}  // namespace
}  // namespace gantrix
