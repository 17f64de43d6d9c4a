#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTableWidgetItem>

#include "menus/NetworkMenuRules.h"
#include "spreadsheet/NetworkWindow.h"
#include "support/ParameterModeRun.h"

namespace gantrix {
namespace {

using spreadsheet::NetworkWindow;
using test::ModalDriver;
using test::PressKey;

// The network workbook window of the run whose template is file.
NetworkWindow* Book(const QString& file) {
    for (QWidget* window : QApplication::topLevelWidgets())
        if (auto* book = qobject_cast<NetworkWindow*>(window);
            book && book->isVisible() && book->windowTitle().endsWith(file))
            return book;
    ADD_FAILURE() << "no workbook " << file.toStdString();
    return nullptr;
}

void Click(QWidget* window, const char* name) {
    test::ChildAs<QAbstractButton>(window, name)->click();
}

// Network data of MORNET mode (1024 = 1, mode bits 63) stored in the project's "param.tmp".
ParameterImage StoreMornetData(const test::TempProject& project) {
    ParameterImage stored = project.ParamTmp();
    stored[1024] = 1;
    stored[1030] = 0x11;
    stored[2560] = 63;
    SetCheckSum(stored, project.Cpu(), true);
    project.SetParamTmp(stored);
    return stored;
}

// Typed bytes, Save, Close, the menu's OK: "param.tmp" holds them with the sum of the block.
TEST(NetworkWorkbook, SavedBytesReachParamTmpWithTheBlocksSum) {
    test::TempProject project("A3 ");
    ParameterImage expected = project.ParamTmp();
    ModalDriver driver;
    driver.On("frmMenu", [](QWidget* menu) { Click(menu, "MenuItem(5)"); })
        .Message(24, "Yes")
        .On("frmMenu", [](QWidget* menu) {
            NetworkWindow* book = Book("MORNET.xls");
            book->CellOf(1024)->setText("01");
            book->CellOf(1030)->setText("5A");
            book->Save->click();
            book->Close->click();
            PressKey(menu, Qt::Key_End);
        });
    EXPECT_EQ(test::RunParameterMode(project, driver).result, 1);
    expected[1024] = 1;
    expected[1030] = 0x5A;
    SetCheckSum(expected, "A3 ", true);
    EXPECT_EQ(test::DifferingBytes(project.ParamTmp(), expected), std::vector<int>{});
}

// Cleared for MORNET II, edited in its workbook and saved: MORNET II is its mode from then on.
TEST(NetworkWorkbook, DataSavedInTheMornetIIWorkbookAreOfThatMode) {
    const test::TempProject project("A3A");
    StoreMornetData(project);
    const auto askForMornetII = [](QWidget* menu) {
        Click(menu, "MenuItem(2)");
        Click(menu, "OK");
    };
    ModalDriver driver;
    driver.On("frmMenu", [](QWidget* menu) { Click(menu, "MenuItem(5)"); })
        .On("frmNetworkMenu", askForMornetII)
        .Message(25, "Yes")
        .Message(10, "OK")
        .Message(24, "Yes")
        .On("frmNetworkMenu",
            [&](QWidget* menu) {
                NetworkWindow* book = Book("MORNET2.xls");
                book->CellOf(1024)->setText("01");
                book->Save->click();
                book->Close->click();
                askForMornetII(menu);
            })
        .Message(24, "No")
        .On("frmNetworkMenu", [](QWidget* menu) { Click(menu, "Cancel"); })
        .On("frmMenu", [](QWidget* menu) { PressKey(menu, Qt::Key_End); });
    EXPECT_EQ(test::RunParameterMode(project, driver).result, 1);
    EXPECT_EQ(driver.messages, (std::vector<int>{25, 10, 24, 24}));
    EXPECT_EQ(project.ParamTmp()[2560], 0xC2);
}

// A workbook left open while the network menu clears the area: its Save asks about the edit
// made before the clearing, and dropping it brings none of the old bytes back.
TEST(NetworkWorkbook, AWorkbookOpenDuringTheClearingDoesNotSaveTheOldBytes) {
    const test::TempProject project("A3A");
    ParameterImage stored = StoreMornetData(project);
    ModalDriver driver;
    driver.On("frmMenu", [](QWidget* menu) { Click(menu, "MenuItem(5)"); })
        .On("frmNetworkMenu", [](QWidget* menu) { Click(menu, "OK"); })
        .Message(24, "Yes")
        .On("frmNetworkMenu",
            [](QWidget* menu) {
                Book("MORNET.xls")->CellOf(1030)->setText("5A");
                Click(menu, "MenuItem(2)");
                Click(menu, "OK");
            })
        .Message(25, "Yes")
        .Message(10, "OK")
        .Message(24, "Yes")
        .On("frmNetworkMenu", [](QWidget*) { Book("MORNET.xls")->Save->click(); })
        .On("FileChanged", [](QWidget* box) { Click(box, "Discard"); })
        .On("frmNetworkMenu",
            [](QWidget* menu) {
                Book("MORNET.xls")->Close->click();
                Book("MORNET2.xls")->Close->click();
                Click(menu, "Cancel");
            })
        .On("frmMenu", [](QWidget* menu) { PressKey(menu, Qt::Key_End); });
    EXPECT_EQ(test::RunParameterMode(project, driver).result, 1);
    EXPECT_EQ(driver.messages, (std::vector<int>{24, 25, 10, 24}));
    ClearLink(stored);
    SetCheckSum(stored, "A3A", false);
    EXPECT_EQ(test::DifferingBytes(project.ParamTmp(), stored), std::vector<int>{});
}

}  // namespace
}  // namespace gantrix
