// Parameter printing as a user meets it: the menu's item 6, the question before the
// spreadsheet starts, the report window beside the menu, and the menu waiting for it.

#include <gtest/gtest.h>

#include <QApplication>
#include <QPushButton>
#include <QTabWidget>
#include <QWidget>

#include "support/ParameterModeRun.h"

namespace gantrix {
namespace {

using test::Child;
using test::PressKey;

QWidget* ReportWindow() {
    for (QWidget* w : QApplication::topLevelWidgets()) {
        if (w->objectName() == "frmSpreadsheet" && w->isVisible()) return w;
    }
    return nullptr;
}

TEST(SpreadsheetEndToEnd, TheMenuWaitsForTheReportWindowThenSaves) {
    test::TempProject project("A3 ");
    int sheets = 0;
    test::ModalDriver driver;
    driver
        .On("frmMenu", [](QWidget* menu) { PressKey(Child(menu, "MenuItem(6)"), Qt::Key_Return); })
        .Message(24, "Yes")
        .On("frmMenu",
            [&sheets](QWidget* menu) {
                QWidget* report = ReportWindow();
                ASSERT_NE(report, nullptr);
                sheets = test::ChildAs<QTabWidget>(report, "Sheets")->count();
                PressKey(menu, Qt::Key_End);  // refused while the workbook is open
            })
        .Message(15, "OK")
        .On("frmMenu", [](QWidget* menu) {
            QWidget* report = ReportWindow();
            ASSERT_NE(report, nullptr);
            test::ChildAs<QPushButton>(report, "Close")->click();
            EXPECT_EQ(ReportWindow(), nullptr);
            PressKey(menu, Qt::Key_End);
        });
    const test::RunOutcome run = test::RunParameterMode(project, driver);
    EXPECT_EQ(run.result, 1) << run.error;
    EXPECT_EQ(driver.messages, (std::vector<int>{24, 15}));
    EXPECT_GE(sheets, 5);  // one sheet a dialog of the "A3 "
    // The copied workbook stays in the project; the hand-over file goes with the run.
    EXPECT_FALSE(project.Exists("param.$$p"));
}

}  // namespace
}  // namespace gantrix
