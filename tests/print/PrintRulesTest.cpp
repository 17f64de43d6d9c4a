// SPDX-License-Identifier: Apache-2.0
#include "print/PrintRules.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "print/RecordingExcel.h"

namespace gantrix {
namespace {

using Entries = std::vector<std::string>;

TEST(MakeBookName, FirstLetterThenTheFourthAndFifthLevels) {
    const std::pair<const char*, const char*> cases[] = {
        {"/home/ann/plc/Line1/", "hline1MORNET.xls"},
        {"/Data/a/b/Cell/Two/deeper/", "dcelltwoMORNET.xls"},
        {"/srv/a/b/", "sMORNET.xls"},
        {"project/x/", "pMORNET.xls"},
        {"/\303\234nits/a/b/C/", "\303\234cMORNET.xls"},  // a two-byte first letter
        {"/", "MORNET.xls"},
    };
    for (const auto& [dir, name] : cases) EXPECT_EQ(MakeBookName(dir, "MORNET.xls"), name) << dir;
}

// The templates of an installed component, found from its directory, win over those of a
// build tree; where neither is, the installed place is named.
TEST(GetTemplatePath, TheInstalledOnesThenTheBuildTreesElseWhereTheyBelong) {
    for (const std::string present : {"installed build", "installed", "build", ""}) {
        test::TempDir root;
        const std::string app = root.Path() + "x/y/z/";
        const std::filesystem::path relative = app + kTemplatesFromLibrary;
        const std::string installed = relative.lexically_normal().string() + "/";
        const std::string buildTree = app + "share/gantrixa0j/templates/";
        if (present.starts_with("installed")) std::filesystem::create_directories(installed);
        if (present.ends_with("build")) std::filesystem::create_directories(buildTree);
        EXPECT_EQ(GetTemplatePath(app), present == "build" ? buildTree : installed) << present;
    }
}

// An "A3U" project with its working file, stand-in templates, and the recording spreadsheet.
struct HandOver {
    test::TempProject project{"A3U"};
    test::TempDir component, templates;
    std::string dir = project.Path(), app = component.Path(), from = templates.Path();
    ModuleState state = test::StateFor("A3U", dir);
    test::RecordingExcel excel;
    test::LoggingMessages messages{excel.log};
    explicit HandOver(bool running = false, bool creatable = true) : excel(running, creatable) {
        state.Presenter = &messages;
        CopyWorkFiles(state);
        for (const char* name : {"MORNET.xls", "MORNET10.xls", "Parameter mode.xls"})
            templates.WriteText(name, name);
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
    PrintNetworkSettings(f.state, 3, f.app, f.from);
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
    PrintParameterSettings(f.state, f.app, f.from);
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

// Calls that hand nothing over leave the files alone: a second call while the workbook is
// open only brings it to the front; "No" to the question, or no application to start, lets go.
TEST(PrintNetworkSettings, NothingNewHandedOver) {
    const std::pair<std::string, Entries> cases[] = {
        {"open", {"GetObject", "Activate", "WindowState -4143", "Visible 1"}},
        {"no", {"GetObject", "message 24"}},
        {"none", {"GetObject", "message 24", "GetObject", "Create", "message 4"}}};
    for (const auto& [name, expected] : cases) {
        SCOPED_TRACE(name);
        const bool open = name == "open";
        HandOver f(false, name != "none");
        if (open) PrintNetworkSettings(f.state, 0, f.app, f.from);
        if (name == "no") f.messages.Then(MessageButton::No);
        const auto files = f.project.List();
        const auto working = f.project.Read(kParamWork);
        f.state.image[1600] ^= 0xFF;
        f.excel.app->windowState = excel::kWindowMinimized;
        f.excel.log.entries.clear();
        PrintNetworkSettings(f.state, 0, f.app, f.from);
        Entries log = expected;
        if (open) log[1] += " " + MakeBookName(f.dir, "MORNET.xls");
        EXPECT_EQ(f.excel.log.entries, log);
        EXPECT_EQ(f.project.List(), files);
        EXPECT_EQ(f.project.Read(kParamWork), working);
        EXPECT_EQ(f.state.NetEditActive, open);
        EXPECT_EQ(f.state.ExcelApp, open ? f.excel.app : nullptr);
    }
}

TEST(PrintNetworkSettings, EachFailingStepIsSkippedAndTheNextOneRuns) {
    HandOver f;
    f.excel.log.failing = {"Activate", "Cell TEMP!A29", "Run"};
    PrintNetworkSettings(f.state, 0, f.app, f.from);
    const Entries& log = f.excel.log.entries;
    ASSERT_EQ(log.size(), 13u);
    EXPECT_EQ(log[10], "Cell TEMP!B32 0");
    EXPECT_EQ(log[12], "Visible 1");
    // No template and no working file: the working file is written, the application shown.
    HandOver g;
    std::remove(g.project.File(kParamWork).c_str());
    PrintNetworkSettings(g.state, 0, g.app, g.dir + "none/");
    EXPECT_EQ(g.project.Read(kParamWork), g.Image());
    EXPECT_FALSE(g.project.Exists(MakeBookName(g.dir, "MORNET.xls")));
    EXPECT_EQ(g.excel.log.entries.back(), "Visible 1");
    EXPECT_TRUE(g.state.NetEditActive);
}

}  // namespace
}  // namespace gantrix
