#include "dialogs/frmStepRelay/frmStepRelay.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QPushButton>
#include <QTest>

#include "support/ParameterModeRun.h"

namespace gantrix {
namespace {

using test::PressKey;

struct Open {
    ModuleState state = test::StateFor("A0J");
    test::ScriptedMessages messages;
    std::unique_ptr<frmStepRelay> form;

    explicit Open(int word18) {
        state.Presenter = &messages;
        state.image.SetParamWord(word18, 18);
        form = std::make_unique<frmStepRelay>(state);
        form->show();
        form->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(form.get()));
    }
};

// The default image's word 18 is 2047: OK without an edit leaves it so.
TEST(StepRelayForm, OpensCheckedOnlyFor1535AndOkStoresItOrTheLastRelay) {
    const struct {
        int word;
        bool checked;
        int saved;
    } cases[] = {
        {1535, true, 1535}, {2047, false, 2047}, {65535, false, 2047}, {1000, false, 2047}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.word);
        Open open(c.word);
        EXPECT_EQ(open.form->StepRelayFlag->isChecked(), c.checked);
        EXPECT_EQ(open.form->windowTitle(), "Supplementary Functions");
        const ParameterImage before = open.state.image;
        PressKey(open.form->StepRelayFlag, Qt::Key_End);
        EXPECT_FALSE(open.form->isVisible());
        EXPECT_EQ(open.state.image.GetParamWord(18), c.saved);
        for (int index : test::DifferingBytes(before, open.state.image)) {
            EXPECT_TRUE(index == 18 || index == 19) << index;
        }
    }
    EXPECT_EQ(Open(2047).form->findChild<QPushButton*>("Clear"), nullptr);
}

TEST(StepRelayForm, SpaceTogglesEnterMovesToOkWhichSaves) {
    Open open(2047);
    frmStepRelay& f = *open.form;
    EXPECT_EQ(QApplication::focusWidget(), f.StepRelayFlag);
    PressKey(f.StepRelayFlag, Qt::Key_Space);
    EXPECT_TRUE(f.StepRelayFlag->isChecked());
    EXPECT_TRUE(open.state.DataChanged);
    PressKey(f.StepRelayFlag, Qt::Key_Return);
    EXPECT_TRUE(f.StepRelayFlag->isChecked());
    EXPECT_EQ(QApplication::focusWidget(), f.OK);
    PressKey(f.OK, Qt::Key_Return);
    EXPECT_FALSE(f.isVisible());
    EXPECT_EQ(open.state.image[18], 255);
    EXPECT_EQ(open.state.image[19], 5);
    EXPECT_FALSE(open.state.DataChanged);
    EXPECT_TRUE(open.state.ParamChanged);
}

TEST(StepRelayForm, CancelAsksAfterAToggleAndKeepsTheImage) {
    Open open(1535);
    frmStepRelay& f = *open.form;
    const ParameterImage before = open.state.image;
    // On the box itself: the check box is wider than its caption.
    QTest::mouseClick(f.StepRelayFlag, Qt::LeftButton, {},
                      QPoint(8, f.StepRelayFlag->height() / 2));
    EXPECT_FALSE(f.StepRelayFlag->isChecked());
    f.Cancel->click();  // No
    EXPECT_TRUE(f.isVisible());
    EXPECT_FALSE(f.StepRelayFlag->isChecked());
    open.messages.Then(MessageButton::Yes);
    PressKey(f.Cancel, Qt::Key_Return);
    EXPECT_FALSE(f.isVisible());
    EXPECT_EQ(open.messages.Numbers(), (std::vector<int>{1, 1}));
    EXPECT_EQ(open.state.image, before);
}

// The menu's "Supplementary Functions" opens this dialog for the smallest CPU, and the
// step relays chosen there reach "param.tmp".
TEST(StepRelayForm, FromTheMenuToParamTmp) {
    test::TempProject project("A0J");
    const ParameterImage image = project.ParamTmp();
    test::ModalDriver driver;
    driver
        .On("frmMenu",
            [](QWidget* menu) { PressKey(test::Child(menu, "MenuItem(4)"), Qt::Key_Return); })
        .On("frmStepRelay",
            [](QWidget* dialog) {
                PressKey(test::Child(dialog, "StepRelayFlag"), Qt::Key_Space);
                PressKey(dialog, Qt::Key_End);
            })
        .On("frmMenu", [](QWidget* menu) { PressKey(menu, Qt::Key_End); });
    EXPECT_EQ(test::RunParameterMode(project, driver).result, 1);
    EXPECT_EQ(test::DifferingBytes(project.ParamTmp(), test::SavedWith(image, "A0J", {{18, 1535}})),
              std::vector<int>{});
}

}  // namespace
}  // namespace gantrix
