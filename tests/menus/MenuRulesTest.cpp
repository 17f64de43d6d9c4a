#include "menus/MenuRules.h"

#include <gtest/gtest.h>

#include <map>

#include "platform/excel/Excel.h"
#include "support/core/TestSupport.h"

namespace gantrix {
namespace {

using test::ScriptedMessages;
using test::StateFor;

// clang-format off
TEST(CheckEndPlace, EachProgramAgainstItsCapacityRoundedUpToK) {
    const struct { const char* cpu; std::array<int16_t, 4> end; int mainK; bool refused; } cases[] = {
        {"A3 ", {2049, 0, 0, 0}, 2, true},   // 3 K > 2 K
        {"A3 ", {2048, 0, 0, 0}, 2, false},  // an exact multiple is not rounded up
        {"A3 ", {1, 0, 0, 0}, 0, false},     // positions of 1 and below are not checked
        {"A0J", {7000, 0, 0, 0}, 6, true},   {"A2 ", {0, 9000, 9000, 9000}, 6, false},  // no subs on an A2
        {"A3 ", {0, 1025, 0, 0}, 6, true},   {"A3H", {0, 2, 0, 0}, 6, true},  // word 66 = 0
        {"A3U", {0, 0, 2000, 0}, 6, true},   {"A4U", {0, 0, 0, 2}, 6, true},  {"A4U", {6144, 1, 1, 1}, 6, false},
    };
    for (const auto& c : cases) {
        ModuleState state = StateFor(c.cpu);
        ScriptedMessages shown;
        state.Presenter = &shown;
        state.image.SetParamWord(c.mainK * 1024, 64);
        state.EndPosition = c.end;
        EXPECT_EQ(CheckEndPlace(state), c.refused) << c.cpu << " " << c.end[0] << " " << c.end[1];
        EXPECT_EQ(shown.Numbers(), c.refused ? std::vector<int>{9} : std::vector<int>{});
    }
}
// clang-format on

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
    state.image.SetParamWord(1, 138);  // a reserved area of 1 byte takes 1 K: 31
    EXPECT_FALSE(CheckTotalMemory(state));
    EXPECT_EQ(presenter.Numbers(), std::vector<int>{23});
    state.image[138] = state.image[139] = 0xFF;  // erased reads as 0 and is written so
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
    explicit FakeSheet(std::string name) : name_(std::move(name)) {}
    std::string Name() const override { return name_; }
    std::string CellText(int row, int column) const override {
        const auto it = cells.find({row, column});
        return it == cells.end() ? "" : it->second;
    }
    void SetCell(int row, int column, const std::string& value) override {
        cells[{row, column}] = value;
    }
    std::map<std::pair<int, int>, std::string> cells;

  private:
    std::string name_;
};

class FakeApplication : public excel::Application, public excel::Workbook {
  public:
    std::vector<excel::Workbook*> Workbooks() override { return {this}; }
    std::string Name() const override { return "dline1parameter mode.xls"; }
    std::vector<excel::Worksheet*> Worksheets() override { return {&other, &temp}; }
    excel::Workbook* Open(const std::string&) override { return nullptr; }
    void Run(const std::string&) override {}
    void SetVisible(bool) override {}
    FakeSheet other{"Capacity"}, temp{"TEMP"};
};

TEST(CheckExcel, BusyWhileAWorkbookOfTheRunIsOpen) {
    auto app = std::make_shared<FakeApplication>();
    app->temp.SetCell(1, 1, "Param");
    excel::RegisterApplicationClass("excel.application", {[app] { return app; }, nullptr});
    ModuleState state = StateFor("A3 ");
    ScriptedMessages presenter;
    state.Presenter = &presenter;
    EXPECT_FALSE(CheckExcel(state));  // nothing started in this run
    state.ParamPrintActive = true;
    state.ParamBookName = app->Name();
    EXPECT_TRUE(CheckExcel(state));
    EXPECT_EQ(presenter.Numbers(), std::vector<int>{15});
    app->temp.SetCell(1, 1, "");
    EXPECT_FALSE(CheckExcel(state));
    EXPECT_FALSE(state.ParamPrintActive);

    state.NetEditActive = true;
    state.NetBookName = app->Name();
    app->temp.SetCell(29, 1, "NetParam");
    EXPECT_TRUE(CheckExcel(state));
    EXPECT_EQ(presenter.Numbers(), (std::vector<int>{15, 5}));
    excel::RegisterApplicationClass("excel.application", {});
    EXPECT_FALSE(CheckExcel(state));  // the application is gone
    EXPECT_FALSE(state.NetEditActive);
}

}  // namespace
}  // namespace gantrix
