#include <gtest/gtest.h>

#include "menus/MenuRules.h"
#include "platform/excel/Excel.h"
#include "support/core/TestSupport.h"

namespace gantrix {
namespace {

using test::ScriptedMessages;
using test::StateFor;

TEST(CheckEndPlace, MainProgramAgainstItsCapacityRoundedUp) {
    struct Case {
        const char* cpu;
        std::array<int16_t, 4> end;
        int capacityK;  // main program
        int flagged;
    };
    const Case cases[] = {
        {"A3 ", {2049, 0, 0, 0}, 2, 0},   // 3 K > 2 K
        {"A3 ", {2048, 0, 0, 0}, 2, -1},  // an exact multiple is not rounded up
        {"A3 ", {1, 0, 0, 0}, 0, -1},     // positions of 1 and below are not checked
        {"A0J", {7000, 0, 0, 0}, 6, 0},
        {"A2 ", {0, 9000, 9000, 9000}, 6, -1},  // sub programs do not count on an A2
        {"A3 ", {0, 1025, 0, 0}, 6, 1},         // sub program 1, capacity word 66 = 0
        {"A4U", {0, 0, 0, 2}, 6, 3},
        {"A3H", {7000, 0, 9000, 0}, 6, 0},  // the first flagged entry is reported
    };
    for (const Case& c : cases) {
        ParameterImage image = test::DefaultImage(c.cpu);
        image.SetParamWord(c.capacityK * 1024, 64);
        EXPECT_EQ(FirstExceededEndPosition(image, c.cpu, c.end), c.flagged)
            << c.cpu << " " << c.end[0];
    }
}

TEST(CheckEndPlace, ShowsMessageNineForAnyProgram) {
    ModuleState state = StateFor("A3U");
    ScriptedMessages presenter;
    state.Presenter = &presenter;
    state.EndPosition = {0, 0, 2000, 0};  // sub program 2, capacity 0
    EXPECT_TRUE(CheckEndPlace(state));
    EXPECT_EQ(presenter.Numbers(), std::vector<int>{9});
    state.EndPosition = {6144, 0, 0, 0};
    EXPECT_FALSE(CheckEndPlace(state));
    EXPECT_EQ(presenter.Numbers().size(), 1u);
}

TEST(SetValue, FixedBytesPerFamily) {
    const uint8_t fixed[8] = {2, 104, 0, 16, 3, 72, 1, 16};
    struct Case {
        const char* cpu;
        int b524;  // -1: kept
        bool u;
        bool b182;
    };
    const Case cases[] = {{"A0J", 255, false, true}, {"A3H", 255, false, true},
                          {"A2C", 255, false, true}, {"A2A", 0, false, false},
                          {"A3A", 0, false, false},  {"A4U", 15, true, false},
                          {"A2U", 15, true, false},  {"A5 ", -1, false, false}};
    for (const Case& c : cases) {
        ParameterImage image;
        image.bytes().fill(0x77);
        SetValue(image, c.cpu);
        EXPECT_EQ(image[524], c.b524 < 0 ? 0x77 : c.b524) << c.cpu;
        EXPECT_EQ(image[182], c.b182 ? 255 : 0x77) << c.cpu;
        for (int i = 0; i < 8; ++i) {
            EXPECT_EQ(image[536 + i], fixed[i]) << c.cpu;
            EXPECT_EQ(image[2314 + i], c.u ? fixed[i] : 0x77) << c.cpu;
        }
        EXPECT_EQ(image[535], 0x77);
        EXPECT_EQ(image[544], 0x77);
    }
}

TEST(CheckTotalMemory, UTypesStayBelowThirtyOneK) {
    ModuleState state = StateFor("A3U");
    ScriptedMessages presenter;
    state.Presenter = &presenter;
    // 30 K main + micro 1 K as typed / 2 (= 0) + reserved 0: 30
    state.image.SetParamWord(30 * 1024, 64);
    state.image.SetParamWord(1024, 2434);
    state.image.SetParamWord(100, 2432);
    EXPECT_TRUE(CheckTotalMemory(state));
    EXPECT_EQ(state.image.GetParamWord(72), 1024 + 200);
    EXPECT_TRUE(presenter.shown.empty());

    // A reserved area of 1 byte rounds up to 1 K: 31.
    state.image.SetParamWord(1, 138);
    EXPECT_FALSE(CheckTotalMemory(state));
    EXPECT_EQ(presenter.Numbers(), std::vector<int>{23});
    EXPECT_EQ(presenter.shown[0].caption, "MorvaneR");

    // 138..139 erased read as 0 and are written so.
    state.image[138] = 0xFF;
    state.image[139] = 0xFF;
    EXPECT_TRUE(CheckTotalMemory(state));
    EXPECT_EQ(state.image.GetParamWord(138), 0);

    ModuleState a3 = StateFor("A3 ");
    a3.image.SetParamWord(65535, 64);
    a3.image[72] = 0x12;
    EXPECT_TRUE(CheckTotalMemory(a3));
    EXPECT_EQ(a3.image[72], 0x12);
}

// A spreadsheet application with one workbook whose "TEMP" sheet holds given cells.
class FakeSheet : public excel::Worksheet {
  public:
    std::string Name() const override { return name; }
    std::string CellText(int row, int column) const override {
        const auto it = cells.find({row, column});
        return it == cells.end() ? "" : it->second;
    }
    void SetCell(int row, int column, const std::string& value) override {
        cells[{row, column}] = value;
    }
    std::string name = "TEMP";
    std::map<std::pair<int, int>, std::string> cells;
};

class FakeBook : public excel::Workbook {
  public:
    std::string Name() const override { return name; }
    std::vector<excel::Worksheet*> Worksheets() override { return {&other, &temp}; }
    std::string name;
    FakeSheet other, temp;
};

class FakeApplication : public excel::Application {
  public:
    std::vector<excel::Workbook*> Workbooks() override { return {&book}; }
    excel::Workbook* Open(const std::string&) override { return nullptr; }
    void Run(const std::string&) override {}
    void SetVisible(bool) override {}
    FakeBook book;
};

TEST(CheckExcel, BusyWhileAWorkbookOfTheRunIsOpen) {
    auto app = std::make_shared<FakeApplication>();
    app->book.name = "dline1parameter mode.xls";
    app->book.other.name = "Capacity";
    app->book.temp.SetCell(1, 1, "Param");
    excel::RegisterApplicationClass("excel.application", {[app] { return app; }, nullptr});

    ModuleState state = StateFor("A3 ");
    ScriptedMessages presenter;
    state.Presenter = &presenter;
    EXPECT_FALSE(CheckExcel(state));  // nothing started in this run
    state.ParamPrintActive = true;
    state.ParamBookName = "dline1parameter mode.xls";
    EXPECT_TRUE(CheckExcel(state));
    EXPECT_EQ(presenter.Numbers(), std::vector<int>{15});

    app->book.temp.SetCell(1, 1, "");
    EXPECT_FALSE(CheckExcel(state));
    EXPECT_FALSE(state.ParamPrintActive);
    EXPECT_EQ(state.ExcelApp, nullptr);  // nothing of the run open: released

    state.NetEditActive = true;
    state.NetBookName = app->book.name;
    app->book.temp.SetCell(29, 1, "NetParam");
    EXPECT_TRUE(CheckExcel(state));
    EXPECT_EQ(presenter.Numbers(), (std::vector<int>{15, 5}));

    excel::RegisterApplicationClass("excel.application", {});
    EXPECT_FALSE(CheckExcel(state));  // the application is gone
    EXPECT_FALSE(state.NetEditActive);
}

}  // namespace
}  // namespace gantrix
