// The M-NET/MINI refresh dialog reached as a user reaches it: the menu's Supplementary
// Functions, then its follow-on button, checked in the saved "param.tmp".

#include <gtest/gtest.h>

#include <QApplication>
#include <QTest>
#include <QWidget>

#include "support/ParameterModeRun.h"

namespace gantrix {
namespace {

using test::Child;
using test::PressKey;

TEST(MINIEndToEnd, AModuleWithEveryDeviceLandsInBothAreasOfAUType) {
    test::TempProject project("A3U");
    ParameterImage expected = project.ParamTmp();
    test::ModalDriver driver;
    driver
        .On("frmMenu", [](QWidget* menu) { PressKey(Child(menu, "MenuItem(4)"), Qt::Key_Return); })
        .On("frmAssistance",
            [](QWidget* assist) {
                Child(assist, "AssistMenuItem")->setFocus();
                PressKey(Child(assist, "AssistMenuItem"), Qt::Key_Return);
            })
        .On("frmMINI",
            [](QWidget* mini) {
                test::TypeKeys(Child(mini, "Text1"), "1");
                PressKey(Child(mini, "Text1"), Qt::Key_Return);
                // Start I/O, model, stations, receive, send, retries, response, data clear,
                // detection, error number, line error: Enter after each.
                for (const char* keys :
                     {"1a0", "0", "12", "x100", "y100", "", "1", "0", "m9016", "d9010", "2"}) {
                    QTest::keyClicks(QApplication::focusWidget(), keys);
                    PressKey(QApplication::focusWidget(), Qt::Key_Return);
                }
                PressKey(mini, Qt::Key_End);
            })
        .On("frmAssistance", [](QWidget* assist) { PressKey(assist, Qt::Key_End); })
        .On("frmMenu", [](QWidget* menu) { PressKey(menu, Qt::Key_End); });
    EXPECT_EQ(test::RunParameterMode(project, driver).result, 1);
    const uint8_t record[12] = {0x1A, 0x7A, 0x45, 0x0C, 0x10, 0x00,
                                0x10, 0x04, 0xC1, 0x0C, 0x0A, 0x0D};
    for (int area : {544, 2322}) {
        for (int i = 0; i < 12; ++i) expected[area + i] = record[i];
    }
    EXPECT_EQ(test::DifferingBytes(project.ParamTmp(),
                                   test::SavedWith(expected, "A3U", {{534, 1}, {2312, 1}})),
              std::vector<int>{});
}

}  // namespace
}  // namespace gantrix
