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
        {"A1 ", "Memory Latch Timer/Counter I/O Supplementary "},
        {"A2C", "Memory Latch Timer/Counter I/O Supplementary Remote "},
        {"A3H", "Memory Latch Timer/Counter I/O Supplementary "},
        {"A2A", "Memory Latch Timer/Counter I/O Supplementary M-NET/MINI "},
        {"A4U", "Memory Latch Timer/Counter I/O Supplementary M-NET/MINI "},
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
    const Names shown[2][6] = {{{"CPU type A3U", "Main", "6 K steps"},
                                {"1000", "2047", "not latched"},
                                {"T0-255", "No counter counts interrupts."},
                                {"No slot is assigned."},
                                {"Before operation", "Fuse blown", "Stop"},
                                {"Number of Modules", "No module is set."}},
                               {{"2 K steps", "8 K bytes (448Points)"},
                                {"100", "199"},
                                {"I3", "C227"},
                                {"X16", "Input module", "AX41", "Y32", "Output module"},
                                {"RUN", "X1F"},
                                {"1A0", "X100", "M9016", "D9010", "OFF"}}};
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
    assistance.Text2[0] = "1F";
    WriteAssistance(assistance, image, context);
    MINIFields mini;
    mini.Text1 = "1";
    mini.Text2 = {"1A0", "MINI", "12", "X100", "Y100", "5", "CPU", "Hold", "M9016", "D9010", "OFF"};
    WriteMINI(mini, image, context);
    for (const bool edit : {false, true}) {
        const auto sheets = BuildParameterReport(edit ? image : test::DefaultImage("A3U"), context);
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
          R"(<si><t>Title</t></si><si><t>Head</t></si><si><t>012</t></si><si><t>x&amp;y</t></si>)",
          R"(<sheetData><row r="1" spans="1:2"><c r="A1" s="1" t="s"><v>0</v></c></row>)"
          R"(<row r="2" spans="1:2"><c r="B2" s="2" t="s"><v>1</v></c></row>)"
          R"(<row r="3" spans="1:2"><c r="A3"><v>12</v></c><c r="B3" t="s"><v>2</v></c></row>)"
          R"(<row r="4" spans="1:2"><c r="B4" t="s"><v>3</v></c></row></sheetData>)"}) {
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

// The edited bytes change, the others stay as the file holds them; bytes outside the
// network ranges, and the I/O-assignment flag, are refused and the file left alone.
TEST(NetworkBytes, SaveChangesOnlyTheEditedBytes) {
    test::TempDir dir;
    std::vector<uint8_t> file(kImageSize);
    for (int i = 0; i < kImageSize; ++i) file[i] = static_cast<uint8_t>(i);
    dir.Write("param.$$$", file);
    const std::string path = dir.File("param.$$$");
    const std::map<int, uint8_t> edits = {{1024, 1}, {2055, 0xAB}, {2560, 2}, {3042, 0x7F}};
    WriteNetworkBytes(path, edits);
    for (const auto& [index, value] : edits) file[index] = value;
    EXPECT_EQ(dir.Read("param.$$$"), file);
    for (int index : {1071, 2056, 1023, 3043, 64}) {
        EXPECT_THROW(WriteNetworkBytes(path, {{1030, 9}, {index, 0}}), RuntimeError) << index;
        EXPECT_EQ(dir.Read("param.$$$"), file) << index;
    }
    dir.Write("param.$$$", std::vector<uint8_t>(100, 0));
    EXPECT_THROW(WriteNetworkBytes(path, {{1030, 9}}), RuntimeError);
}

}  // namespace
}  // namespace gantrix
