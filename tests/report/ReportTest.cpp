// The pure half of the spreadsheet application: workbook files, the report's sheets per CPU
// type, the .xlsx export read back, and the network workbooks' byte edits.

#include <gtest/gtest.h>

#include <cstdio>
#include <map>
#include <regex>

#include "report/NetworkBytes.h"
#include "report/ParameterReport.h"
#include "report/ReportTestSupport.h"
#include "report/WorkbookTemplate.h"
#include "report/XlsxExport.h"
#include "store/ParameterFiles.h"
#include "store/RuntimeError.h"
#include "support/core/TestSupport.h"

namespace gantrix {
namespace {

TEST(WorkbookTemplate, KindAndSheetsOrNothing) {
    using Sheets = std::vector<std::string>;
    const struct {
        const char* text;
        bool valid;
        WorkbookKind kind;
        Sheets sheets;
    } cases[] = {
        {"gantrix-workbook parameter\nsheet Capacity/Latch Range Setting\nsheet TEMP\n",
         true,
         WorkbookKind::Parameter,
         {"Capacity/Latch Range Setting", "TEMP"}},
        // Comments, blank lines, CR LF; TEMP is added when not listed.
        {"# ours\r\n\r\ngantrix-workbook network\r\n  sheet   MORNET mode  \r\n",
         true,
         WorkbookKind::Network,
         {"MORNET mode", "TEMP"}},
        {"sheet TEMP\ngantrix-workbook parameter\n", false, {}, {}},
        {"gantrix-workbook chart\n", false, {}, {}},
        {"gantrix-workbook network\nsheet\n", false, {}, {}},
        {"gantrix-workbook network\nsheet A\nsheet A\n", false, {}, {}},
        {"gantrix-workbook network\nmacro auto_open\n", false, {}, {}},
        {"\xD0\xCF\x11\xE0 a binary workbook", false, {}, {}},
        {"", false, {}, {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        const auto parsed = ParseWorkbookTemplate(c.text);
        ASSERT_EQ(parsed.has_value(), c.valid);
        if (!parsed) continue;
        EXPECT_EQ(parsed->kind, c.kind);
        EXPECT_EQ(parsed->sheets, c.sheets);
    }
}

// The templates are installed beside the component, where the printing finds them.
TEST(WorkbookTemplate, ShippedTemplatesBesideTheComponent) {
    const struct {
        const char* file;
        WorkbookKind kind;
        const char* sheet;
    } cases[] = {
        {"MORNET.xls", WorkbookKind::Network, "MORNET mode"},
        {"MORNET(II) combination.xls", WorkbookKind::Network, "MORNET(II) combination mode"},
        {"MORNET2.xls", WorkbookKind::Network, "MORNET(II) mode"},
        {"MORNET10.xls", WorkbookKind::Network, "Network Setting"},
        {"Parameter mode.xls", WorkbookKind::Parameter, "Capacity/Latch Range Setting"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.file);
        const std::vector<uint8_t> bytes = ReadWholeFile(GetAppPath() + c.file);
        const auto parsed = ParseWorkbookTemplate(std::string(bytes.begin(), bytes.end()));
        ASSERT_TRUE(parsed.has_value());
        EXPECT_EQ(parsed->kind, c.kind);
        EXPECT_EQ(parsed->sheets, (std::vector<std::string>{c.sheet, "TEMP"}));
    }
}

std::vector<std::string> SheetNames(const std::vector<Sheet>& sheets) {
    std::vector<std::string> names;
    for (const Sheet& sheet : sheets) names.push_back(sheet.name);
    return names;
}

// One sheet per dialog the menu offers the CPU type.
TEST(ParameterReport, SheetsFollowTheDialogsOfTheCpuType) {
    const std::string memory = "Memory Capacity Setting", latch = "Latch Range Setting",
                      timer = "Timer/Counter Setting", io = "I/O Assignment",
                      supplementary = "Supplementary Functions",
                      remote = "Remote I/O, Remote Terminal Setting",
                      mini = "M-NET/MINI Auto-refresh Setting";
    const std::map<std::string, std::vector<std::string>> cases = {
        {"A0J", {memory, latch, io, supplementary}},
        {"A1 ", {memory, latch, timer, io, supplementary}},
        {"A2C", {memory, latch, timer, io, supplementary, remote}},
        {"A3H", {memory, latch, timer, io, supplementary}},
        {"A2A", {memory, latch, timer, io, supplementary, mini}},
        {"A4U", {memory, latch, timer, io, supplementary, mini}},
        // A code outside the thirteen shows what the image holds, without a failure.
        {"A4 ", {memory, latch, io, supplementary}}};
    test::TempDir dir;
    for (const auto& [cpu, names] : cases) {
        SCOPED_TRACE(cpu);
        const ParameterImage image = test::DefaultImage(cpu == "A4 " ? "A3 " : cpu);
        EXPECT_EQ(SheetNames(BuildParameterReport(image, ReportContext(cpu, dir.Path()))), names);
    }
}

TEST(ParameterReport, ParameterFileMustBeWhole) {
    test::TempDir dir;
    dir.Write("param.$$p", std::vector<uint8_t>(kImageSize - 1, 0));
    EXPECT_THROW(ReadParameterFile(dir.File("param.$$p")), RuntimeError);
    EXPECT_THROW(ReadParameterFile(dir.File("missing")), RuntimeError);
    dir.Write("param.$$p", std::vector<uint8_t>(kImageSize, 7));
    EXPECT_EQ(ReadParameterFile(dir.File("param.$$p"))[3071], 7);
}

std::string Unzipped(const std::string& archive, const std::string& member) {
    std::string text;
    FILE* pipe = ::popen(("unzip -p '" + archive + "' '" + member + "'").c_str(), "r");
    if (pipe == nullptr) return text;
    char buffer[4096];
    for (std::size_t n; (n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;)
        text.append(buffer, n);
    ::pclose(pipe);
    return text;
}

std::string XmlText(std::string text) {
    const std::pair<const char*, const char*> entities[] = {
        {"&lt;", "<"}, {"&gt;", ">"}, {"&quot;", "\""}, {"&apos;", "'"}, {"&amp;", "&"}};
    for (const auto& [entity, character] : entities) {
        for (std::size_t at; (at = text.find(entity)) != std::string::npos;) {
            text.replace(at, std::string(entity).size(), character);
        }
    }
    return text;
}

// A reader of the files the export writes: the sheets' names and their cells by (row, column).
struct XlsxContent {
    std::vector<std::string> names;
    std::vector<std::map<std::pair<int, int>, std::string>> cells;
};

XlsxContent ReadXlsx(const std::string& path) {
    XlsxContent content;
    std::vector<std::string> shared;
    const std::string strings = Unzipped(path, "xl/sharedStrings.xml");
    const std::regex si("<si><t[^>]*>([^<]*)</t></si>");
    for (std::sregex_iterator it(strings.begin(), strings.end(), si), end; it != end; ++it) {
        shared.push_back(XmlText((*it)[1]));
    }
    const std::string workbook = Unzipped(path, "xl/workbook.xml");
    const std::regex sheet("<sheet name=\"([^\"]*)\"");
    for (std::sregex_iterator it(workbook.begin(), workbook.end(), sheet), end; it != end; ++it) {
        content.names.push_back(XmlText((*it)[1]));
    }
    const std::regex cell("<c r=\"([A-Z]+)([0-9]+)\"([^>]*)><v>([^<]*)</v></c>");
    for (std::size_t n = 1; n <= content.names.size(); ++n) {
        const std::string xml = Unzipped(path, "xl/worksheets/sheet" + std::to_string(n) + ".xml");
        auto& cells = content.cells.emplace_back();
        for (std::sregex_iterator it(xml.begin(), xml.end(), cell), end; it != end; ++it) {
            int column = 0;
            for (char letter : (*it)[1].str()) column = column * 26 + (letter - 'A' + 1);
            const std::string value = (*it)[4];
            const bool isShared = (*it)[3].str().find("t=\"s\"") != std::string::npos;
            cells[{std::stoi((*it)[2]), column}] =
                isShared ? shared.at(static_cast<std::size_t>(std::stoi(value))) : value;
        }
    }
    return content;
}

// Every cell of every sheet is in the file, under a sheet name a spreadsheet accepts.
TEST(XlsxExport, ReadBackHoldsEveryCell) {
    test::TempDir dir;
    const DialogContext context = ReportContext("A3U", dir.Path());
    const std::vector<Sheet> sheets =
        BuildParameterReport(test::EditedImage(test::DefaultImage("A3U"), context), context);
    const std::string path = dir.File("report.xlsx");
    WriteXlsx(sheets, path);

    const XlsxContent content = ReadXlsx(path);
    ASSERT_EQ(content.cells.size(), sheets.size());
    EXPECT_EQ(content.names[2], "Timer-Counter Setting");
    EXPECT_EQ(content.names[5], "M-NET-MINI Auto-refresh Setting");
    for (std::size_t s = 0; s < sheets.size(); ++s) {
        SCOPED_TRACE(sheets[s].name);
        std::map<std::pair<int, int>, std::string> expected;
        for (int r = 1; r <= static_cast<int>(sheets[s].rows.size()); ++r) {
            for (int c = 1; c <= sheets[s].ColumnCount(); ++c) {
                if (!sheets[s].CellText(r, c).empty()) expected[{r, c}] = sheets[s].CellText(r, c);
            }
        }
        EXPECT_EQ(content.cells[s], expected);
    }
    EXPECT_EQ(XlsxSheetName("Remote I/O, Remote Terminal Setting"),
              "Remote I-O, Remote Terminal Set");

    // A directory that does not exist: an error naming the file, nothing left behind.
    EXPECT_THROW(WriteXlsx(sheets, dir.File("missing/report.xlsx")), RuntimeError);
    EXPECT_EQ(dir.List(), std::vector<std::string>{"report.xlsx"});
}

TEST(NetworkBytes, ByteTextBothWays) {
    const struct {
        const char* text;
        int value;  // -1: refused
    } cases[] = {{"ff", 255}, {" 7 ", 7}, {"0A", 10}, {"00", 0},  {"100", -1},
                 {"G1", -1},  {"", -1},   {" ", -1},  {"-1", -1}, {"1 2", -1}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        const auto value = ParseByteText(c.text);
        EXPECT_EQ(value ? *value : -1, c.value);
        if (value) {
            EXPECT_EQ(ParseByteText(ByteText(*value)), value);
        }
    }
}

// Only the edited bytes change: what the component wrote into the file meanwhile stays.
TEST(NetworkBytes, SaveChangesOnlyTheEditedBytes) {
    test::TempDir dir;
    std::vector<uint8_t> file(kImageSize);
    for (int i = 0; i < kImageSize; ++i)
        file[static_cast<std::size_t>(i)] = static_cast<uint8_t>(i);
    dir.Write("param.$$$", file);
    const std::string path = dir.File("param.$$$");
    WriteNetworkBytes(path, {{1024, 1}, {2055, 0xAB}, {2560, 2}, {3042, 0x7F}});
    std::vector<uint8_t> expected = file;
    expected[1024] = 1;
    expected[2055] = 0xAB;
    expected[2560] = 2;
    expected[3042] = 0x7F;
    EXPECT_EQ(dir.Read("param.$$$"), expected);

    // The I/O-assignment flag, the network sum and the main area are not the workbook's.
    for (int index : {1071, 2056, 1023, 3043, 64}) {
        SCOPED_TRACE(index);
        EXPECT_THROW(WriteNetworkBytes(path, {{1030, 9}, {index, 0}}), RuntimeError);
        EXPECT_EQ(dir.Read("param.$$$"), expected);
    }
    dir.Write("param.$$$", std::vector<uint8_t>(100, 0));
    EXPECT_THROW(WriteNetworkBytes(path, {{1030, 9}}), RuntimeError);
}

}  // namespace
}  // namespace gantrix
