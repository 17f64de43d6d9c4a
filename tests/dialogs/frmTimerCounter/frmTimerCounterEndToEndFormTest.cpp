// The timer/counter dialog and the dialogs it shares bytes with, driven from the parameter
// menu through the C interface, checked in the saved "param.tmp".

#include <gtest/gtest.h>

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
using test::SavedWith;
using test::TempProject;

void Retype(QWidget* window, const QString& box, const QString& text) {
    auto* edit = test::ChildAs<QLineEdit>(window, box);
    edit->setFocus();
    edit->selectAll();
    QTest::keyClicks(edit, text);
}

// Latch T0-199 low speed and T200-255 high speed, on a default "A3 " project.
ParameterImage WithTimerLatches(const TempProject& project) {
    ParameterImage image = project.ParamTmp();
    for (const auto& [index, value] : {std::pair{24, 0}, {26, 199}, {28, 200}, {30, 255}}) {
        image.SetParamWord(value, index);
    }
    project.SetParamTmp(image);
    return image;
}

void NewPartition(QWidget* dialog) {
    Retype(dialog, "Text1(2)", "160");
    Retype(dialog, "Text1(3)", "240");
    PressKey(Child(dialog, "Text1(3)"), Qt::Key_End);
}

TEST(TimerCounterEndToEnd, NewPartitionRefitsTheTimerLatchesInParamTmp) {
    TempProject project("A3 ");
    const ParameterImage image = WithTimerLatches(project);
    ModalDriver driver;
    driver
        .On("frmMenu", [](QWidget* menu) { PressKey(Child(menu, "MenuItem(2)"), Qt::Key_Return); })
        .On("frmTimerCounter", NewPartition)
        .On("frmMenu", [](QWidget* menu) { PressKey(menu, Qt::Key_End); });
    EXPECT_EQ(RunParameterMode(project, driver).result, 1);
    EXPECT_EQ(
        test::DifferingBytes(project.ParamTmp(),
                             SavedWith(image, project.Cpu(),
                                       {{194, 160}, {196, 240}, {26, 159}, {28, 200}, {30, 239}})),
        std::vector<int>{});
}

// The latch dialog opened after the change shows the refitted rows.
TEST(TimerCounterEndToEnd, LatchDialogShowsTheRefittedRows) {
    if (!IsDialogRegistered("frmLatch")) GTEST_SKIP() << "built without the latch dialog";
    TempProject project("A3 ");
    WithTimerLatches(project);
    std::vector<QString> rows;
    ModalDriver driver;
    driver
        .On("frmMenu", [](QWidget* menu) { PressKey(Child(menu, "MenuItem(2)"), Qt::Key_Return); })
        .On("frmTimerCounter", NewPartition)
        .On("frmMenu", [](QWidget* menu) { PressKey(Child(menu, "MenuItem(1)"), Qt::Key_Return); })
        .On("frmLatch",
            [&rows](QWidget* latch) {
                for (int i = 4; i <= 9; ++i) {
                    rows.push_back(
                        test::ChildAs<QLineEdit>(latch, QString("Text1(%1)").arg(i))->text());
                }
                test::ChildAs<QPushButton>(latch, "Cancel")->click();
            })
        .On("frmMenu", [](QWidget* menu) { test::ChildAs<QPushButton>(menu, "Cancel")->click(); })
        .Message(1, "Yes");
    EXPECT_EQ(RunParameterMode(project, driver).result, 0);
    EXPECT_EQ(rows, (std::vector<QString>{"0", "159", "200", "239", "", ""}));
}

}  // namespace
}  // namespace gantrix
