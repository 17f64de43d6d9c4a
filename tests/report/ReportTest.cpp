// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <cstdlib>

#include "dialogs/frmAssistance/AssistanceFields.h"
#include "dialogs/frmIOLayout/IOLayoutFields.h"
#include "dialogs/frmInterruptCounter/InterruptCounterFields.h"
#include "dialogs/frmLatch/LatchFields.h"
#include "dialogs/frmMINI/MINIFields.h"
#include "dialogs/frmMemory/MemoryFields.h"
#include "print/PrintRules.h"
#include "report/NetworkBytes.h"
#include "report/ParameterReport.h"
#include "report/WorkbookTemplate.h"
#include "report/XlsxExport.h"
#include "store/ParameterFiles.h"
#include "store/RuntimeError.h"
#include "support/core/TestSupport.h"

namespace gantrix {
namespace {

using Names = std::vector<std::string>;
using namespace std::string_literals;

// The kind and sheets of a template, "" when it is none; "*.xls" is a template file.
TEST(WorkbookTemplate, KindAndSheetsOrNothing) {
    const std::string net = "gantrix-workbook network\n";
    const std::pair<std::string, std::string> cases[] = {
        {"# ours\r\n\r\ngantrix-workbook network\r\n  sheet   M mode  \r\n", "N M mode|TEMP|"},
        {"gantrix-workbook parameter\nsheet TEMP\nsheet B\n", "P TEMP|B|"},
        {"MORNET.xls", "N MORNET mode|TEMP|"},
        {"MORNET(II) combination.xls", "N MORNET(II) combination mode|TEMP|"},
        {"MORNET10.xls", "N Network Setting|TEMP|"}};
    for (const auto& [name, expected] : cases) {
        const auto bytes = name.ends_with(".xls") ? ReadWholeFile(GetTemplatePath() + name)
                                                  : std::vector<uint8_t>(name.begin(), name.end());
        const auto parsed = ParseWorkbookTemplate(std::string(bytes.begin(), bytes.end()));
        std::string got = parsed ? (parsed->kind == WorkbookKind::Network ? "N " : "P ") : "";
        for (const std::string& sheet : parsed ? parsed->sheets : Names{}) got += sheet + "|";
        EXPECT_EQ(got, expected) << name;
    }
    for (const std::string& text :
         {"sheet TEMP\n" + net, "gantrix-workbook chart\n"s, net + "sheet\n",
          net + "sheet A\nsheet A\n", net + "macro auto_open\n", "# nothing"s})
        EXPECT_FALSE(ParseWorkbookTemplate(text)) << text;
}

// One sheet per dialog the menu offers the CPU type, with the values the dialog shows.
TEST(ParameterReport, OneSheetPerDialogWithTheDialogsValues) {
    const std::pair<std::string, std::string> cases[] = {
        // the first word of each name
        {"A0J", "Memory Latch I/O Supplementary "},
        {"A1 ", "Memory Latch Timer/Counter I/O Supplementary Network/Link "},
        {"A2C", "Memory Latch Timer/Counter I/O Supplementary Remote Network/Link "},
        {"A3H", "Memory Latch Timer/Counter I/O Supplementary Network/Link "},
        {"A2A", "Memory Latch Timer/Counter I/O Supplementary M-NET/MINI Network/Link "},
        {"A4U", "Memory Latch Timer/Counter I/O Supplementary M-NET/MINI Network/Link "},
        {"A4 ", "Memory Latch I/O Supplementary "}};  // not a CPU type: no failure
    test::TempDir dir;
    for (const auto& [cpu, names] : cases) {
        std::string built;
        const ParameterImage image = test::DefaultImage(cpu == "A4 " ? "A3 " : cpu);
        for (const Sheet& sheet : BuildParameterReport(image, ReportContext(cpu, dir.Path())))
            built += sheet.name.substr(0, sheet.name.find(' ')) + " ";
        EXPECT_EQ(built, names) << cpu;
    }
    // The "A3U" report of the default image and of one edited through the dialogs.
    // clang-format off
    const Names shown[2][7] = {
        {{"CPU type A3U", "Main", "6 K steps"}, {"1000", "2047", "not latched"},
         {"T0-255", "No counter counts interrupts."}, {"No slot is assigned."},
         {"Before operation", "Fuse blown", "Stop"}, {"Number of Modules", "No module is set."},
         {"Empty (byte 1024 is 0)", "No network parameters", ", the sum"}},
        {{"2 K steps", "8 K bytes (448Points)"}, {"100", "199"}, {"I3", "C227"},
         {"X16", "Input module</td>", "AX41", "Y32", "Output module</td>"}, {"RUN", "X1F", "X2F"},
         {"1A0", "X100", "M9016", "D9010", "<td>OFF</td></tr>"},
         {"Holds network", "MORNET II mode (byte 2560 = 42)", ", not the sum",
          "<td>1024</td><td>01</td>", "<td>FF</td><td>5A</td>"}}};
    // clang-format on
    const DialogContext context = ReportContext("A3U", dir.Path());
    ParameterImage image = test::DefaultImage("A3U");  // edited through the dialogs' Write
    MemoryFields memory = ReadMemory(image, context);
    memory.Text1[kSub1] = "2";
    memory.Text2 = "8";
    WriteMemory(memory, image, context);
    LatchFields latch = ReadLatch(image, context);
    latch.Text1[12] = "100";
    latch.Text1[13] = "199";
    WriteLatch(latch, image, context);
    InterruptCounterFields interrupts;
    interrupts.PointerFlag[3] = true;
    WriteInterruptCounter(interrupts, image);
    IOLayoutFields io = ReadIOLayout(image, context);
    io.codes[0] = "X16";
    io.codes[1] = "Y32";
    io.names[0] = "AX41";
    io.namesEdited = true;
    WriteIOLayout(io, image, context);
    AssistanceFields assistance = ReadAssistance(image, context);
    assistance.Text2 = {"1F", "2F"};  // the RUN and PAUSE contacts
    WriteAssistance(assistance, image, context);
    MINIFields mini;
    mini.Text1 = "1";
    mini.Text2 = {"1A0", "MINI", "12", "X100", "Y100", "5", "CPU", "Hold", "M9016", "D9010", "OFF"};
    WriteMINI(mini, image, context);
    image[1024] = 1;  // as a network workbook saves them, without the sum
    image[1030] = 0x5A;
    image[2560] = 0x42;
    for (const bool edit : {false, true}) {
        const auto sheets = BuildParameterReport(edit ? image : test::DefaultImage("A3U"), context);
        ASSERT_EQ(sheets.size(), 7u);
        for (std::size_t s = 0; s < sheets.size(); ++s) {
            const std::string printed = SheetsToHtml({sheets[s]}, "", "");
            for (const std::string& value : shown[edit][s])
                EXPECT_NE(printed.find(value), std::string::npos) << sheets[s].name << value;
        }
    }
}

// Each cell where the sheet has it and empty ones left out; whole numbers of a table's body
// are numbers, all else text (titles and headings in their formats); sheet names a
// spreadsheet takes. A failed write leaves no file behind.
TEST(XlsxExport, EveryCellWhereTheSheetHasIt) {
    EXPECT_EQ(XlsxSheetName("Remote I/O, Remote Terminal Setting"),
              "Remote I-O, Remote Terminal Set");
    test::TempDir dir;
    Sheet sheet{"Timer/Counter", {}};
    sheet.AddTable("Title", {"", "Head"}, {{"12", "012"}, {"", "x&y"}});
    sheet.AddTable("", {}, {{"10"}}, true);  // a hexadecimal byte
    EXPECT_THROW(WriteXlsx({sheet}, dir.File("missing/r.xlsx")), RuntimeError);
    EXPECT_TRUE(dir.List().empty());
    WriteXlsx({sheet}, dir.File("r.xlsx"));
    ASSERT_EQ(std::system(("cd '" + dir.Path() + "' && unzip -q r.xlsx").c_str()), 0);
    std::string xml;
    for (const char* part :
         {"xl/workbook.xml", "xl/sharedStrings.xml", "xl/worksheets/sheet1.xml"}) {
        const std::vector<uint8_t> bytes = dir.Read(part);
        xml.append(bytes.begin(), bytes.end());
    }
    for (const char* part :
         {R"(<sheet name="Timer-Counter")",
          R"(<si><t>Title</t></si><si><t>Head</t></si><si><t>012</t></si><si><t>x&amp;y</t></si>)"
          R"(<si><t>10</t></si>)",
          R"(<sheetData><row r="1" spans="1:2"><c r="A1" s="1" t="s"><v>0</v></c></row>)"
          R"(<row r="2" spans="1:2"><c r="B2" s="2" t="s"><v>1</v></c></row>)"
          R"(<row r="3" spans="1:2"><c r="A3"><v>12</v></c><c r="B3" t="s"><v>2</v></c></row>)"
          R"(<row r="4" spans="1:2"><c r="B4" t="s"><v>3</v></c></row>)"
          R"(<row r="6" spans="1:2"><c r="A6" t="s"><v>4</v></c></row></sheetData>)"}) {
        EXPECT_NE(xml.find(part), std::string::npos) << part;
    }
}

TEST(NetworkBytes, ByteTextBothWays) {
    const std::pair<const char*, int> cases[] = {
        {"ff", 255}, {" 7 ", 7}, {"0A", 10}, {"100", -1},
        {"G1", -1},  {"", -1},   {"1 2", -1}};  // -1: refused
    for (const auto& [text, expected] : cases) {
        const auto value = ParseByteText(text);
        EXPECT_EQ(value ? *value : -1, expected) << text;
        EXPECT_EQ(value ? ParseByteText(ByteText(*value)) : value, value) << text;
    }
}

// Save: the edited bytes change, the others stay as the file holds them; a workbook of mode
// 0..2 puts its mode bits into 2560 (the upper two kept) while 1024 is not 0, the U types' one
// leaves it; the sum of 1024..2055 goes to 2056..2058, low byte first. Bytes outside the
// network ranges, and the I/O-assignment flag, are refused, the file left alone.
TEST(NetworkBytes, SaveWritesTheEditsTheModeBitsAndTheSum) {
    // clang-format off
    const struct { int mode, b1024, b2560, saved2560, sum; } cases[] = {
        {0, 1, 0x82, 0xBF, 0x0402FA}, {1, 1, 0xFF, 0xC1, 0x0402FA}, {2, 5, 0x3F, 0x02, 0x0402FE},
        {3, 1, 0x41, 0x41, 0x0402FA}, {2, 0, 0xFF, 0xFF, 0x0402F9}, {-1, 1, 0x41, 0x41, 0x0402FA}};
    // clang-format on
    test::TempDir dir;
    const std::string path = dir.File("param.$$$");
    for (const auto& c : cases) {
        std::vector<uint8_t> file(kImageSize, 0xFF);
        file[2560] = static_cast<uint8_t>(c.b2560);
        file[64] = 0x42;
        dir.Write("param.$$$", file);
        WriteNetworkBytes(path, {{1024, static_cast<uint8_t>(c.b1024)}, {3042, 7}}, c.mode);
        file = dir.Read("param.$$$");
        EXPECT_EQ(file[2560], c.saved2560) << c.mode;
        EXPECT_EQ(file[2056] | file[2057] << 8 | file[2058] << 16, c.sum) << c.mode;
        EXPECT_TRUE(file[64] == 0x42 && file[3042] == 7 && file[525] == 0xFF) << c.mode;
    }
    for (int index : {1071, 2056, 1023, 3043}) {
        EXPECT_THROW(WriteNetworkBytes(path, {{1030, 9}, {index, 0}}, 0), RuntimeError) << index;
        EXPECT_EQ(dir.Read("param.$$$")[1030], 0xFF) << index;
    }
    dir.Write("param.$$$", std::vector<uint8_t>(100, 0));
    EXPECT_THROW(WriteNetworkBytes(path, {{1030, 9}}, 0), RuntimeError);
}

}  // namespace
}  // namespace gantrix
