// The remote stations dialog reached as a user reaches it: the menu's Supplementary
// Functions, then its follow-on button, checked in the saved "param.tmp".

#include <gtest/gtest.h>

#include <QWidget>

#include "support/ParameterModeRun.h"

namespace gantrix {
namespace {

using test::Child;
using test::PressKey;

TEST(RemoteEndToEnd, AnEntryTypedThroughSupplementaryFunctionsReachesParamTmp) {
    test::TempProject project("A2C");
    ParameterImage expected = project.ParamTmp();
    test::ModalDriver driver;
    driver
        .On("frmMenu", [](QWidget* menu) { PressKey(Child(menu, "MenuItem(4)"), Qt::Key_Return); })
        .On("frmAssistance",
            [](QWidget* assist) {
                Child(assist, "AssistMenuItem")->setFocus();
                PressKey(Child(assist, "AssistMenuItem"), Qt::Key_Return);
            })
        .On("frmRemote",
            [](QWidget* remote) {
                test::TypeKeys(Child(remote, "Text2(8)"), "21");  // entry 9 at station 21
                test::TypeKeys(Child(remote, "Text2(22)"), "1");  // non-procedure protocol
                PressKey(Child(remote, "Text2(22)"), Qt::Key_End);
            })
        .On("frmAssistance", [](QWidget* assist) { PressKey(assist, Qt::Key_End); })
        .On("frmMenu", [](QWidget* menu) { PressKey(menu, Qt::Key_End); });
    EXPECT_EQ(test::RunParameterMode(project, driver).result, 1);
    expected[143 + 8] = 21;
    expected[158] = 1;  // entry 9's protocol bit
    EXPECT_EQ(test::DifferingBytes(project.ParamTmp(), test::SavedWith(expected, "A2C", {})),
              std::vector<int>{});
}

}  // namespace
}  // namespace gantrix
