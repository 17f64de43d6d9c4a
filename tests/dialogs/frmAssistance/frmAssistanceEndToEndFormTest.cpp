// The supplementary functions dialog opened from the parameter menu through the C interface,
// driven by key presses, checked in the saved "param.tmp" and in the latch dialog.

#include <gtest/gtest.h>

#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include "common/qt/DialogRegistry.h"
#include "support/ParameterModeRun.h"

namespace gantrix {
namespace {

using test::Child;
using test::ModalDriver;
using test::PressKey;
using test::RunParameterMode;
using test::TempProject;

void OpenItem(ModalDriver& driver, int item) {
    driver.On("frmMenu", [item](QWidget* menu) {
        PressKey(Child(menu, QString("MenuItem(%1)").arg(item)), Qt::Key_Return);
    });
}

TEST(AssistanceEndToEnd, StepRelaysOfAnA2EndTheLatchRowL) {
    if (!IsDialogRegistered("frmLatch")) GTEST_SKIP() << "built without the latch dialog";
    TempProject project("A2 ");
    ParameterImage expected = project.ParamTmp();
    QString latchEnd;
    ModalDriver driver;
    OpenItem(driver, 4);
    driver.On("frmAssistance", [](QWidget* dialog) {
        PressKey(Child(dialog, "StepRelayFlag"), Qt::Key_Space);
        PressKey(Child(dialog, "StepRelayFlag"), Qt::Key_Return);
        QTest::keyClicks(QApplication::focusWidget(), "1536");
        PressKey(QApplication::focusWidget(), Qt::Key_End);
    });
    OpenItem(driver, 1);
    driver.On("frmLatch", [&latchEnd](QWidget* latch) {
        latchEnd = test::ChildAs<QLineEdit>(latch, "Text1(1)")->text();
        PressKey(Child(latch, "Cancel"), Qt::Key_Return);
    });
    driver.On("frmMenu", [](QWidget* menu) { PressKey(menu, Qt::Key_End); });
    EXPECT_EQ(RunParameterMode(project, driver).result, 1);
    EXPECT_EQ(latchEnd, "1535");
    EXPECT_EQ(test::DifferingBytes(project.ParamTmp(),
                                   test::SavedWith(expected, project.Cpu(), {{18, 1535}})),
              std::vector<int>{});
}

TEST(AssistanceEndToEnd, WatchdogAndIoControlOfAnA2UAreFixed) {
    TempProject project("A2U");
    const ParameterImage fresh = project.ParamTmp();
    ParameterImage image = fresh;
    image[160] = 50;
    image[161] = 1;
    image[181] = 0;
    project.SetParamTmp(image);
    ModalDriver driver;
    OpenItem(driver, 4);
    driver.On("frmAssistance", [](QWidget* dialog) { PressKey(dialog, Qt::Key_End); });
    driver.On("frmMenu", [](QWidget* menu) { PressKey(menu, Qt::Key_End); });
    EXPECT_EQ(RunParameterMode(project, driver).result, 1);
    // Watchdog 20 x 10 ms and direct I/O, as a new project has them, check bytes included.
    EXPECT_EQ(test::DifferingBytes(project.ParamTmp(), fresh), std::vector<int>{});
}

}  // namespace
}  // namespace gantrix
