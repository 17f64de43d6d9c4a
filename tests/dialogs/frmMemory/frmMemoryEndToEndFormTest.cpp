// A host raises a memory capacity through the whole parameter mode: menu, dialog, OK, OK.

#include <gtest/gtest.h>

#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include "entry/GantrixA0J.h"
#include "store/CheckSum.h"
#include "support/ModalDriver.h"
#include "support/core/TestSupport.h"

namespace gantrix {
namespace {

using test::ModalDriver;
using test::PressKey;
using test::TempProject;

TEST(frmMemoryEndToEnd, TypedCapacityReachesParamTmpWithFreshCheckBytes) {
    struct Case {
        const char* cpu;
        const char* control;
        const char* typed;
        int word;
        int value;
    };
    const Case cases[] = {
        {"A3 ", "Text1(0)", "12", 64, 12 * 1024},  // main program
        {"A4U", "Text4", "3", 68, 3 * 1024},       // file register of a U type
    };
    for (const Case& c : cases) {
        TempProject project(c.cpu);
        ParameterImage stale = project.ParamTmp();
        stale[525] ^= 0x5A;  // the check bytes must be recomputed
        project.SetParamTmp(stale);

        ::RKParam* object = RKParam_Create();
        RKParam_Let_szPcName(object, c.cpu);
        RKParam_Let_ProjectName(object, project.Path().c_str());

        ModalDriver driver;
        driver
            .On("frmMenu",
                [](QWidget* menu) { PressKey(test::Child(menu, "MenuItem(0)"), Qt::Key_Return); })
            .On("frmMemory",
                [&c](QWidget* dialog) {
                    auto* box = test::ChildAs<QLineEdit>(dialog, c.control);
                    box->setFocus();
                    box->setCursorPosition(box->text().size());
                    while (!box->text().isEmpty()) PressKey(box, Qt::Key_Backspace);
                    QTest::keyClicks(box, c.typed);
                    PressKey(box, Qt::Key_End);  // OK of the dialog
                })
            .On("frmMenu", [](QWidget* menu) { PressKey(menu, Qt::Key_End); });
        int16_t result = -1;
        int status = -1;
        driver.Run([&] { status = RKParam_Param_main(object, &result); });

        EXPECT_EQ(status, 0) << c.cpu << ": " << RKParam_ErrorDescription(object);
        EXPECT_EQ(result, 1) << c.cpu;
        EXPECT_EQ(RKParam_Get_ContentChangeFlag(object), 1) << c.cpu;
        ParameterImage expected = stale;
        expected.SetParamWord(c.value, c.word);
        SetCheckSum(expected, c.cpu, false);
        EXPECT_EQ(test::DifferingBytes(project.ParamTmp(), expected), std::vector<int>{}) << c.cpu;
        EXPECT_NE(project.ParamTmp()[525], stale[525]) << c.cpu;
        EXPECT_FALSE(project.Exists("param.$$$")) << c.cpu;
        RKParam_Release(object);
    }
}

// Once a dialog was left with OK, leaving the menu with Cancel asks before the change is lost.
TEST(frmMemoryEndToEnd, CancelAfterADialogsOkAsksAndYesLeavesWithoutSaving) {
    TempProject project("A2 ");
    const auto before = project.Read("param.tmp");
    ::RKParam* object = RKParam_Create();
    RKParam_Let_szPcName(object, "A2 ");
    RKParam_Let_ProjectName(object, project.Path().c_str());
    ModalDriver driver;
    driver
        .On("frmMenu",
            [](QWidget* menu) { test::ChildAs<QPushButton>(menu, "MenuItem(0)")->click(); })
        .On("frmMemory",
            [](QWidget* dialog) {
                auto* main = test::ChildAs<QLineEdit>(dialog, "Text1(0)");
                main->selectAll();
                QTest::keyClicks(main, "8");
                PressKey(test::Child(dialog, "OK"), Qt::Key_Return);
            })
        .On("frmMenu", [](QWidget* menu) { PressKey(test::Child(menu, "Cancel"), Qt::Key_Return); })
        .Message(1, "No")
        .On("frmMenu", [](QWidget* menu) { PressKey(menu, Qt::Key_Escape); })
        .Message(1, "Yes");
    int16_t result = -1;
    driver.Run([&] { EXPECT_EQ(RKParam_Param_main(object, &result), 0); });
    EXPECT_EQ(result, 0);
    EXPECT_EQ(driver.messages, (std::vector<int>{1, 1}));
    EXPECT_EQ(project.Read("param.tmp"), before);
    RKParam_Release(object);
}

}  // namespace
}  // namespace gantrix
