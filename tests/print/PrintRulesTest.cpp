#include "print/PrintRules.h"

#include <gtest/gtest.h>

#include "print/RecordingExcel.h"

namespace gantrix {
namespace {

using Entries = std::vector<std::string>;

TEST(MakeBookName, FirstLetterThenTheFourthAndFifthLevels) {
    const struct {
        const char *dir, *name;
    } cases[] = {
        {"/home/ann/plc/Line1/", "hline1MORNET.xls"},
        {"/Data/a/b/Cell/Two/deeper/", "dcelltwoMORNET.xls"},
        {"/srv/a/b/", "sMORNET.xls"},
        {"project/x/", "pMORNET.xls"},
        {"/\xC3\x9Cnits/a/b/C/",
         "\xC3\x9C"
         "cMORNET.xls"},  // a two-byte first letter stays whole
        {"/", "MORNET.xls"},
    };
    for (const auto& c : cases) EXPECT_EQ(MakeBookName(c.dir, "MORNET.xls"), c.name) << c.dir;
}

// An "A3U" project with its working file, stand-in templates in a directory of their own,
// and the recording spreadsheet whose log also records the message boxes.
struct HandOver {
    test::TempProject project{"A3U"};
    test::TempDir templates;
    std::string dir = project.Path(), app = templates.Path();
    ModuleState state = test::StateFor("A3U", dir);
    test::RecordingExcel excel;
    test::LoggingMessages messages{excel.log};

    explicit HandOver(bool running = false, bool creatable = true) : excel(running, creatable) {
        state.Presenter = &messages;
        CopyWorkFiles(state);
        for (const char* name : {"MORNET.xls", "MORNET10.xls", "Parameter mode.xls"}) {
            templates.WriteText(name, name);
        }
    }
    std::vector<uint8_t> Image() const {
        return {state.image.bytes().begin(), state.image.bytes().end()};
    }
};

TEST(PrintNetworkSettings, AsksStartsWritesTheWorkingFileCopiesFillsTempAndRunsTheMacro) {
    HandOver f;
    ParameterImage work = f.state.image;
    work[1500] = 0x42;  // network data the spreadsheet wrote before
    f.project.Write(kParamWork, {work.bytes().begin(), work.bytes().end()});
    f.state.image[100] = 0x43;  // the run's own edit
    const std::string book = MakeBookName(f.dir, "MORNET10.xls");
    PrintNetworkSettings(f.state, 3, f.app);
    EXPECT_EQ(f.excel.log.entries,
              (Entries{"GetObject", "message 24", "GetObject", "Create", "Open " + f.dir + book,
                       "Activate " + book, "Cell TEMP!A29 NetParam", "Cell TEMP!B29 " + f.app,
                       "Cell TEMP!B30 " + f.dir, "Cell TEMP!B31 A3U", "Cell TEMP!B32 3",
                       "Run auto_open", "Visible 1"}));
    EXPECT_EQ(f.state.NetBookName, book);
    EXPECT_EQ(f.project.Read(book), f.templates.Read("MORNET10.xls"));
    EXPECT_EQ(f.state.image[1500], 0x42);
    EXPECT_EQ(f.state.image[100], 0x43);
    EXPECT_EQ(f.project.Read(kParamWork), f.Image());
    EXPECT_TRUE(f.state.NetEditActive && f.state.ParamChanged);
    EXPECT_EQ(f.state.ExcelApp, f.excel.app);  // held for the run
}

TEST(PrintParameterSettings, HandsTheImageOverInParamPAndFillsTemp) {
    HandOver f(true);  // the application runs already
    const std::string book = MakeBookName(f.dir, "Parameter mode.xls");
    PrintParameterSettings(f.state, f.app);
    EXPECT_EQ(f.excel.log.entries,
              (Entries{"GetObject", "message 24", "GetObject", "Open " + f.dir + book,
                       "Activate " + book, "Cell TEMP!A1 Param", "Cell TEMP!A2 A3U",
                       "Cell TEMP!A3 " + f.dir + "param.$$p", "Cell TEMP!A4 " + f.dir + "temp.dat",
                       "Cell TEMP!A10 " + f.app, "Run auto_open", "Visible 1"}));
    EXPECT_EQ(f.project.Read("param.$$p"), f.Image());
    EXPECT_EQ(f.project.Read(book), f.templates.Read("Parameter mode.xls"));
    EXPECT_TRUE(f.state.ParamPrintActive);
    EXPECT_FALSE(f.state.ParamChanged || f.state.NetEditActive);
}

TEST(PrintNetworkSettings, ASecondCallOnlyBringsTheOpenWorkbookToTheFront) {
    HandOver f;
    PrintNetworkSettings(f.state, 0, f.app);
    const auto working = f.project.Read(kParamWork);
    f.state.image[1600] ^= 0xFF;
    f.excel.app->windowState = excel::kWindowMinimized;
    f.excel.log.entries.clear();
    PrintNetworkSettings(f.state, 0, f.app);
    const std::string book = MakeBookName(f.dir, "MORNET.xls");
    EXPECT_EQ(f.excel.log.entries,
              (Entries{"GetObject", "Activate " + book, "WindowState -4143", "Visible 1"}));
    EXPECT_EQ(f.project.Read(kParamWork), working);
}

TEST(PrintNetworkSettings, NoToTheQuestionChangesNothingAndLetsGoOfTheApplication) {
    HandOver f(true);
    f.messages.Then(MessageButton::No);
    const auto files = f.project.List();
    const auto working = f.project.Read(kParamWork);
    f.state.image[1600] ^= 0xFF;
    PrintNetworkSettings(f.state, 0, f.app);
    EXPECT_EQ(f.excel.log.entries, (Entries{"GetObject", "message 24"}));
    EXPECT_EQ(f.project.List(), files);
    EXPECT_EQ(f.project.Read(kParamWork), working);
    EXPECT_FALSE(f.state.NetEditActive || f.state.ParamChanged);
    EXPECT_EQ(f.state.ExcelApp, nullptr);
}

TEST(PrintNetworkSettings, MessageFourWhenNoApplicationCanBeStarted) {
    HandOver f(false, false);
    const auto files = f.project.List();
    PrintNetworkSettings(f.state, 0, f.app);
    excel::RegisterApplicationClass("excel.application", {});  // none installed at all
    PrintParameterSettings(f.state, f.app);
    EXPECT_EQ(f.messages.Numbers(), (std::vector<int>{24, 4, 24, 4}));
    EXPECT_EQ(f.project.List(), files);
    EXPECT_FALSE(f.state.NetEditActive || f.state.ParamPrintActive);
}

TEST(PrintNetworkSettings, EachFailingStepIsSkippedAndTheNextOneRuns) {
    HandOver f;
    f.excel.log.failing = {"Activate", "Cell TEMP!A29", "Run"};
    PrintNetworkSettings(f.state, 0, f.app);
    const Entries& log = f.excel.log.entries;
    ASSERT_EQ(log.size(), 13u);
    EXPECT_EQ(log[10], "Cell TEMP!B32 0");
    EXPECT_EQ(log[12], "Visible 1");

    // No template and no working file: the merge, the copy and the open fail; the working
    // file is written and the application shown without the workbook.
    HandOver g;
    std::remove(g.project.File(kParamWork).c_str());
    PrintNetworkSettings(g.state, 0, g.dir + "none/");
    EXPECT_EQ(g.project.Read(kParamWork), g.Image());
    EXPECT_FALSE(g.project.Exists(MakeBookName(g.dir, "MORNET.xls")));
    EXPECT_TRUE(g.excel.app->books.empty());
    EXPECT_EQ(g.excel.log.entries.back(), "Visible 1");
    EXPECT_TRUE(g.state.NetEditActive);
}

}  // namespace
}  // namespace gantrix
