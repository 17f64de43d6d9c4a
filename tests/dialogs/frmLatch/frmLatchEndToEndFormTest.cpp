#include <gtest/gtest.h>

#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include "entry/GantrixA0J.h"
#include "store/CheckSum.h"
#include "support/ModalDriver.h"
#include "support/core/TestSupport.h"

namespace gantrix {
namespace {

using test::ChildAs;
using test::ModalDriver;
using test::PressKey;
using test::TempProject;
using test::TypeKeys;

// The host's view: one call of the parameter mode on a project, the latch ranges typed in
// the dialog the menu opens, End in the dialog and End in the menu.
TEST(frmLatchEndToEnd, RangesTypedThroughTheMenuReachParamTmp) {
    TempProject project("A2U");
    const ParameterImage before = project.ParamTmp();
    ::RKParam* object = RKParam_Create();
    RKParam_Let_szPcName(object, project.Cpu().c_str());
    RKParam_Let_ProjectName(object, project.Path().c_str());

    ModalDriver driver;
    driver.On("frmMenu", [](QWidget* menu) {
        PressKey(ChildAs<QPushButton>(menu, "MenuItem(1)"), Qt::Key_Return);
    });
    driver.On("frmLatch", [](QWidget* latch) {
        auto* bStart = ChildAs<QLineEdit>(latch, "Text1(2)");
        TypeKeys(bStart, "1a0");
        PressKey(bStart, Qt::Key_Return);  // Enter moves on to the B end
        QTest::keyClicks(QApplication::focusWidget(), "1fff");
        TypeKeys(ChildAs<QLineEdit>(latch, "Text1(12)"), "100");
        TypeKeys(ChildAs<QLineEdit>(latch, "Text1(13)"), "199");
        PressKey(ChildAs<QLineEdit>(latch, "Text1(13)"), Qt::Key_End);
    });
    driver.On("frmMenu", [](QWidget* menu) { PressKey(menu, Qt::Key_End); });
    int16_t result = -1;
    int status = -1;
    driver.Run([&] { status = RKParam_Param_main(object, &result); });
    EXPECT_EQ(status, 0) << RKParam_ErrorDescription(object);
    EXPECT_EQ(result, 1);
    RKParam_Release(object);

    ParameterImage expected = before;
    expected.SetParamWord(0x1A0, 20);
    expected.SetParamWord(0x1FFF, 22);
    expected.SetParamWord(100, 40);
    expected.SetParamWord(199, 42);
    SetCheckSum(expected, "A2U", false);
    const ParameterImage saved = project.ParamTmp();
    EXPECT_EQ(test::DifferingBytes(expected, saved), std::vector<int>{});
    // Besides the check bytes, only the two typed rows changed.
    std::vector<int> changed;
    for (int i : test::DifferingBytes(before, saved)) {
        if (i < 525 || i > 527) changed.push_back(i);
    }
    // Byte 22, the low byte of 1FFF, was FF before too.
    EXPECT_EQ(changed, (std::vector<int>{20, 21, 23, 40, 41, 42, 43}));
    EXPECT_NE(saved[525], before[525]);
}

}  // namespace
}  // namespace gantrix
