#include <gtest/gtest.h>

#include "dialogs/frmIOLayout/IoLayoutTestSupport.h"
#include "dialogs/frmTypeNameSet/TypeNameSetFields.h"
#include "entry/GantrixA0J.h"
#include "store/CheckSum.h"

namespace gantrix {
namespace {

using test::Child;
using test::PressKey;
using test::TypeInto;

TEST(frmIOLayoutEndToEnd, SlotsAndModelNamesFromTheMenuReachTheProjectFile) {
    test::TempProject project("A3 ");
    ::RKParam* object = RKParam_Create();
    RKParam_Let_szPcName(object, "A3 ");
    RKParam_Let_ProjectName(object, project.Path().c_str());

    test::ModalDriver driver;
    driver
        .On("frmMenu", [](QWidget* menu) { PressKey(Child(menu, "MenuItem(3)"), Qt::Key_Return); })
        .On("frmIOLayout",
            [](QWidget* io) {
                TypeInto(Child(io, "Text1(0)"), "6a");  // slots 0 and 1
                PressKey(Child(io, "Text1(2)"), Qt::Key_PageDown);
                TypeInto(Child(io, "Text1(0)"), "h");  // slot 64
                PressKey(Child(io, "Text1(1)"), Qt::Key_PageUp);
                Child(io, "Type")->setFocus();
                PressKey(Child(io, "Type"), Qt::Key_Return);
            })
        .On("frmTypeNameSet",
            [](QWidget* names) {
                TypeInto(Child(names, "Combo1(0)"), "ax10");
                TypeInto(Child(names, "Combo1(1)"), "ay10a");
                PressKey(Child(names, "Combo1(1)"), Qt::Key_End);
            })
        .On("frmIOLayout", [](QWidget* io) { PressKey(Child(io, "Text1(5)"), Qt::Key_End); })
        .On("frmMenu", [](QWidget* menu) { PressKey(Child(menu, "MenuItem(0)"), Qt::Key_End); });
    int16_t result = -1;
    int status = -1;
    driver.Run([&] { status = RKParam_Param_main(object, &result); });
    EXPECT_EQ(status, 0) << RKParam_ErrorDescription(object);
    EXPECT_EQ(result, 1);
    RKParam_Release(object);

    ParameterImage expected = test::DefaultImage("A3 ");
    expected[384] = 0x21;
    expected[385] = 0x31;
    expected[384 + 64] = 0x44;
    for (int slot = 0; slot < 64; ++slot) {
        const ModelNameRecord record = PackModelName(slot == 0 ? "AX10" : slot == 1 ? "AY10A" : "");
        for (int b = 0; b < 6; ++b) expected[640 + 6 * slot + b] = record[b];
    }
    expected[1071] = 1;
    SetCheckSum(expected, "A3 ", true);  // the flag changed the network block: its sum too
    EXPECT_EQ(test::DifferingBytes(expected, project.ParamTmp()), std::vector<int>{});
    EXPECT_NE(project.ParamTmp()[2056], test::DefaultImage("A3 ")[2056]);
    EXPECT_FALSE(project.Exists("param.$$$"));
}

}  // namespace
}  // namespace gantrix
