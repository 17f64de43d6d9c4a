#include "print/PrintRules.h"

#include <gtest/gtest.h>

#include "print/RecordingExcel.h"
#include "store/ParameterFiles.h"

namespace gantrix {
namespace {

using test::RecordingExcel;
using Entries = std::vector<std::string>;

TEST(MakeBookName, DriveLetterThenTheFourthAndFifthLevels) {
    const struct {
        const char* dir;
        const char* name;
    } cases[] = {
        {"/home/ann/plc/Line1/", "hline1MORNET.xls"},
        {"/Data/a/b/Cell/Two/deeper/", "dcelltwoMORNET.xls"},
        {"/srv/plc/", "sMORNET.xls"},
        {"/srv/a/b/", "sMORNET.xls"},
        {"project/x/", "pMORNET.xls"},
        {"/Ünits/a/b/C/",
         "\xC3\x9C"
         "cMORNET.xls"},  // a first letter of two bytes stays whole
        {"/", "MORNET.xls"},
    };
    for (const auto& c : cases) EXPECT_EQ(MakeBookName(c.dir, "MORNET.xls"), c.name) << c.dir;
}

// A project with its working file, stand-in templates in a directory of their own, and the
// recording spreadsheet answering message boxes into its log.
struct HandOverFixture {
    test::TempProject project{"A3U"};
    test::TempDir templates;
    ModuleState state = test::StateFor("A3U", project.Path());
    RecordingExcel excel;
    test::LoggingMessages messages{excel.log};

    explicit HandOverFixture(bool running = false, bool creatable = true)
        : excel(running, creatable) {
        state.Presenter = &messages;
        CopyWorkFiles(state);
        for (const char* name : {"MORNET.xls", "MORNET10.xls", "Parameter mode.xls"}) {
            templates.WriteText(name, std::string("template ") + name);
        }
    }
    std::vector<uint8_t> Image() const {
        return {state.image.bytes().begin(), state.image.bytes().end()};
    }
    std::string Book(const char* templateFile) const {
        return MakeBookName(project.Path(), templateFile);
    }
};

TEST(PrintNetworkSettings, AsksStartsCopiesWritesTheWorkingFileFillsTempAndRunsTheMacro) {
    HandOverFixture f;
    ParameterImage work = f.state.image;
    work[1500] = 0x42;  // network data edited in the spreadsheet before
    f.project.Write(kParamWork, {work.bytes().begin(), work.bytes().end()});
    f.state.image[100] = 0x43;  // the run's own edit of the main area
    const std::string book = f.Book("MORNET10.xls");

    PrintNetworkSettings(f.state, 3, f.templates.Path());

    const std::string dir = f.project.Path();
    EXPECT_EQ(f.excel.log.entries,
              (Entries{"GetObject", "message 24", "GetObject", "Create", "Open " + dir + book,
                       "Activate " + book, "Cell TEMP!A29 NetParam",
                       "Cell TEMP!B29 " + f.templates.Path(), "Cell TEMP!B30 " + dir,
                       "Cell TEMP!B31 A3U", "Cell TEMP!B32 3", "Run auto_open", "Visible 1"}));
    EXPECT_EQ(f.state.NetBookName, book);
    EXPECT_EQ(f.project.Read(book), f.templates.Read("MORNET10.xls"));
    EXPECT_EQ(f.state.image[1500], 0x42);
    EXPECT_EQ(f.state.image[100], 0x43);
    EXPECT_EQ(f.project.Read(kParamWork), f.Image());
    EXPECT_TRUE(f.state.NetEditActive);
    EXPECT_TRUE(f.state.ParamChanged);
    EXPECT_EQ(f.state.ExcelApp, f.excel.app);  // held for the run
}

TEST(PrintParameterSettings, HandsTheImageOverInParamPAndFillsTemp) {
    HandOverFixture f(true);  // the application runs already
    const std::string book = f.Book("Parameter mode.xls");
    const std::string dir = f.project.Path();

    PrintParameterSettings(f.state, f.templates.Path());

    EXPECT_EQ(f.excel.log.entries,
              (Entries{"GetObject", "message 24", "GetObject", "Open " + dir + book,
                       "Activate " + book, "Cell TEMP!A1 Param", "Cell TEMP!A2 A3U",
                       "Cell TEMP!A3 " + dir + "param.$$p", "Cell TEMP!A4 " + dir + "temp.dat",
                       "Cell TEMP!A10 " + f.templates.Path(), "Run auto_open", "Visible 1"}));
    EXPECT_EQ(f.project.Read("param.$$p"), f.Image());
    EXPECT_EQ(f.project.Read(book), f.templates.Read("Parameter mode.xls"));
    EXPECT_TRUE(f.state.ParamPrintActive);
    EXPECT_FALSE(f.state.ParamChanged);
    EXPECT_FALSE(f.state.NetEditActive);
}

TEST(PrintNetworkSettings, ASecondCallOnlyBringsTheOpenWorkbookToTheFront) {
    HandOverFixture f;
    PrintNetworkSettings(f.state, 0, f.templates.Path());
    const std::string book = f.Book("MORNET.xls");
    ASSERT_NE(f.excel.Temp(book), nullptr);
    const auto working = f.project.Read(kParamWork);
    f.state.image[1600] ^= 0xFF;
    f.excel.app->windowState = excel::kWindowMinimized;
    f.excel.log.entries.clear();

    PrintNetworkSettings(f.state, 0, f.templates.Path());

    EXPECT_EQ(f.excel.log.entries,
              (Entries{"GetObject", "Activate " + book, "WindowState -4143", "Visible 1"}));
    EXPECT_EQ(f.project.Read(kParamWork), working);
}

TEST(PrintNetworkSettings, NoToTheQuestionChangesNothingAndReleasesTheApplication) {
    for (const bool network : {true, false}) {
        HandOverFixture f(true);
        f.messages.Then(MessageButton::No);
        const auto files = f.project.List();
        const auto working = f.project.Read(kParamWork);
        f.state.image[1600] ^= 0xFF;
        if (network) {
            PrintNetworkSettings(f.state, 0, f.templates.Path());
        } else {
            PrintParameterSettings(f.state, f.templates.Path());
        }
        EXPECT_EQ(f.excel.log.entries, (Entries{"GetObject", "message 24"}));
        EXPECT_EQ(f.project.List(), files);
        EXPECT_EQ(f.project.Read(kParamWork), working);
        EXPECT_FALSE(f.state.NetEditActive || f.state.ParamPrintActive || f.state.ParamChanged);
        EXPECT_EQ(f.state.ExcelApp, nullptr);
    }
}

TEST(PrintNetworkSettings, MessageFourWhenNoApplicationCanBeStarted) {
    HandOverFixture f(false, false);
    const auto files = f.project.List();
    PrintNetworkSettings(f.state, 0, f.templates.Path());
    EXPECT_EQ(f.messages.Numbers(), (std::vector<int>{24, 4}));
    EXPECT_EQ(f.project.List(), files);
    EXPECT_FALSE(f.state.NetEditActive);

    excel::RegisterApplicationClass("excel.application", {});  // none installed at all
    PrintParameterSettings(f.state, f.templates.Path());
    EXPECT_EQ(f.messages.Numbers(), (std::vector<int>{24, 4, 24, 4}));
    EXPECT_FALSE(f.project.Exists("param.$$p"));
}

TEST(PrintNetworkSettings, EachFailingStepIsSkippedAndTheNextOneRuns) {
    HandOverFixture f;
    f.excel.log.failing = {"Activate", "Cell TEMP!A29", "Run"};
    PrintNetworkSettings(f.state, 0, f.templates.Path());
    const auto& log = f.excel.log.entries;
    ASSERT_EQ(log.size(), 13u);
    EXPECT_EQ(log[9], "Cell TEMP!B31 A3U");
    EXPECT_EQ(log[10], "Cell TEMP!B32 0");
    EXPECT_EQ(log[12], "Visible 1");

    // A missing template and a missing working file: the merge, the copy and the open fail,
    // the working file is written and the application shown without the workbook.
    HandOverFixture g;
    std::remove(g.project.File(kParamWork).c_str());
    PrintNetworkSettings(g.state, 0, g.project.Path() + "none/");
    EXPECT_EQ(g.project.Read(kParamWork), g.Image());
    EXPECT_FALSE(g.project.Exists(g.Book("MORNET.xls")));
    EXPECT_EQ(g.excel.log.entries.back(), "Visible 1");
    EXPECT_EQ(g.excel.Temp(g.Book("MORNET.xls")), nullptr);
    EXPECT_TRUE(g.state.NetEditActive);
}

}  // namespace
}  // namespace gantrix
