#include <gtest/gtest.h>

#include <QPushButton>
#include <QRadioButton>

#include "menus/frmNetworkMenu.h"
#include "print/PrintRules.h"
#include "print/RecordingExcel.h"
#include "support/ModalDriver.h"

namespace gantrix {
namespace {

using test::PressKey;

// The menu of an "A3A" project whose working file has these bytes 1024 and 2560.
struct NetworkMenuFixture {
    test::TempProject project{"A3A"};
    ModuleState state = test::StateFor("A3A", project.Path());
    test::RecordingExcel excel{true};
    test::LoggingMessages messages{excel.log};
    std::unique_ptr<frmNetworkMenu> menu;

    NetworkMenuFixture(int b1024, int b2560) {
        state.Presenter = &messages;
        state.image[1071] = 5;  // I/O assignment present: kept by the clearing
        ParameterImage work = state.image;
        work[1024] = static_cast<uint8_t>(b1024);
        work[2560] = static_cast<uint8_t>(b2560);
        project.Write(kParamWork, {work.bytes().begin(), work.bytes().end()});
        menu = std::make_unique<frmNetworkMenu>(state);
        menu->show();
    }
    std::vector<uint8_t> Image() const {
        return {state.image.bytes().begin(), state.image.bytes().end()};
    }
    int Checked() const {
        for (int i = 0; i < 3; ++i) {
            if (menu->MenuItem[i]->isChecked()) return i;
        }
        return -1;
    }
};

TEST(frmNetworkMenu, OpensOnTheModeOfTheWorkingFile) {
    for (const auto& [b1024, b2560, option] : {std::tuple{1, 0xC2, 2}, {0, 2, 0}}) {
        NetworkMenuFixture f(b1024, b2560);
        EXPECT_EQ(f.state.image[1024], b1024);  // taken over from "param.$$$"
        EXPECT_EQ(f.Checked(), option) << b2560;
        EXPECT_EQ(f.menu->focusWidget(), f.menu->MenuItem[option]);
    }
}

TEST(frmNetworkMenu, DecliningTheModeChangeKeepsImageFileAndTheStoredOption) {
    NetworkMenuFixture f(1, 63);
    const auto image = f.Image();
    const auto work = f.project.Read(kParamWork);
    f.menu->MenuItem[1]->click();
    f.menu->OK->click();  // message 25: No is the default
    EXPECT_EQ(f.messages.Numbers(), std::vector<int>{25});
    EXPECT_EQ(f.Image(), image);
    EXPECT_EQ(f.project.Read(kParamWork), work);
    EXPECT_EQ(f.Checked(), 0);
    EXPECT_TRUE(f.menu->isVisible());
}

TEST(frmNetworkMenu, AConfirmedClearingIsSavedBeforeTheEditingStarts) {
    NetworkMenuFixture f(1, 2);
    f.menu->MenuItem[0]->click();
    f.messages.Then(MessageButton::Yes).Then(MessageButton::Ok).Then(MessageButton::No);
    f.menu->OK->click();
    EXPECT_EQ(f.messages.Numbers(), (std::vector<int>{25, 10, 24}));
    EXPECT_EQ(f.state.image[1024], 0);
    EXPECT_EQ(f.state.image[1071], 5);
    EXPECT_EQ(f.state.image[2560], 255);
    EXPECT_EQ(f.project.Read(kParamWork), f.Image());
    EXPECT_EQ(f.state.NetworkMode, 0);
    EXPECT_TRUE(f.menu->isVisible());

    // Cleared data suit every mode: the MORNET II workbook opens without a question.
    const std::string book = MakeBookName(f.project.Path(), "MORNET2.xls");
    f.project.WriteText(book, "workbook");
    f.menu->MenuItem[2]->click();
    f.menu->OK->click();
    EXPECT_EQ(f.messages.Numbers(), (std::vector<int>{25, 10, 24, 24}));
    ASSERT_NE(f.excel.app->Book(book), nullptr);
    EXPECT_EQ(f.excel.app->Book(book)->cells["B32"], "2");
}

TEST(frmNetworkMenu, EnterWalksTheOptionsToOkEndActsAsOkCancelCloses) {
    NetworkMenuFixture f(1, 63);
    for (int i = 0; i < 3; ++i) PressKey(f.menu->focusWidget(), Qt::Key_Return);
    EXPECT_EQ(f.menu->focusWidget(), f.menu->OK);
    EXPECT_TRUE(f.messages.shown.empty());
    f.messages.Then(MessageButton::No);
    PressKey(f.menu->MenuItem[1], Qt::Key_End);
    EXPECT_EQ(f.messages.Numbers(), std::vector<int>{24});
    PressKey(f.menu->Cancel, Qt::Key_Return);
    EXPECT_FALSE(f.menu->isVisible());
}

}  // namespace
}  // namespace gantrix
