#include "common/StringTable.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace gantrix {
namespace {

// The ids these texts have always had, typed here apart from the table so that a slip in either
// shows.
const std::vector<std::pair<int, std::string>>& FixedTexts() {
    static const std::vector<std::pair<int, std::string>> texts = {
        {2190, "Exist"},
        {2298, "Changed data will be lost. Are you sure you want to continue?"},
        {2299,
         "END instruction position of sequence has exceeded the memory capacity setting value."},
        {2300, "END instruction will be deleted if the setting is ended now."},
        {2301, "Please check the memory capacity setting."},
        {2302,
         "Sub - END instruction position of sequence has exceeded the memory capacity setting "
         "value."},
        {2303,
         "Sub2 - END instruction position of sequence has exceeded the memory capacity setting "
         "value."},
        {2304,
         "Sub3 - END instruction position of sequence has exceeded the memory capacity setting "
         "value."},
        {2305, "Input a value."},
        {2306, "Setting out of range"},
        {2307, "MS-EXCEL has not been installed on your personal computer."},
        {2308,
         "Editing network/link setting in MS-EXCEL. Please execute it again after ending "
         "MS-EXCEL."},
        {2309,
         "Printing parameter setting data by MS-EXCEL. Please execute it again after ending "
         "MS-EXCEL."},
        {2310, "The device No. is out of range."},
        {2311, "Invalid range."},
        {2312, "Completed."},
        {2313, "Invalid setting data."},
        {2314, "Set parameters back to default value?"},
        {2315,
         "Setting subprogram capacity to [0] can be valid when the subprogram editing window is "
         "not displayed."},
        {2316, "Invalid I/O assignment data."},
        {2317, "Number of I/O points have exceeded its maximum."},
        {2318, "Mismatch with refresh parameters."},
        {2319, "I/O Assignment has not been set for MORNET remote station."},
        {2320,
         "Mismatch in module between the start of MORNET remote station and I/O assignment "
         "module."},
        {2321, "Over the total memory capacity. Please check the memory capacity setting."},
        {2322, "Start the MS-EXCEL. Are you sure you want to continue?"},
        {2323, "It is different from the current mode. Do you wan to clear the setting?"},
        {2324, "MORNET mode"},
        {2325, "MORNET(II) combination.xls"},
        {2326, "MORNET(II) combination mode"},
        {2327, "MORNET(II) mode"},
        {2328, "Network Setting"},
        {2329, "Parameter mode.xls"},
        {2330, "Capacity/Latch Range Setting"},
        {2331, "Parameter"},
        {2332, "Memory Capacity Setting"},
        {2333, "Latch Range Setting"},
        {2334, "Timer/Counter Setting"},
        {2335, "I/O Assignment"},
        {2336, "Supplementary Functions"},
        {2337, "Network/Link Setting"},
        {2338, "Parameter setting data printing (Paste to EXCEL)"},
        {2339, "Clear All"},
        {2340, "Network/Link Setting, Parameter Setting"},
        {2341, "Microsoft EXCEL is required"},
        {2342, "to execute Data Printing (Paste to EXCEL)"},
        {2343, "Cancel"},
    };
    return texts;
}

bool IsFixedId(int id) {
    return id == 2190 || (id >= 2298 && id <= 2343);
}

TEST(StringTableTest, FixedIdsHoldTheirTexts) {
    ASSERT_EQ(FixedTexts().size(), 47u);
    for (const auto& [id, text] : FixedTexts()) {
        EXPECT_EQ(LoadResString(id), text) << "id " << id;
    }
    EXPECT_EQ(LoadResString(ids::MessageBoxCaption), "Morvane");
    EXPECT_EQ(LoadResString(ids::MessageBoxCaptionR), "MorvaneR");
}

TEST(StringTableTest, EveryIdIsUniqueAscendingAndHoldsItsOwnText) {
    const std::vector<int> all = AllStringIds();
    ASSERT_FALSE(all.empty());
    std::set<std::string> texts;
    for (std::size_t i = 0; i < all.size(); ++i) {
        const int id = all[i];
        if (i > 0) {
            EXPECT_LT(all[i - 1], id);
        }
        EXPECT_GE(id, 2000);
        EXPECT_LE(id, 2343);
        if (!IsFixedId(id)) {
            EXPECT_LT(id, 2298) << id;
            // Reserved for the host product's space-key hints, whose order is unknown.
            EXPECT_FALSE((id >= 2037 && id <= 2054) || id == 2056 || id == 2119 || id == 2268)
                << id;
        }
        const std::string text = LoadResString(id);
        EXPECT_FALSE(text.empty()) << id;
        EXPECT_TRUE(texts.insert(text).second) << "second id for \"" << text << "\": " << id;
    }
}

TEST(StringTableTest, UnknownIdGivesEmptyText) {
    for (int id : {-1, 0, 1999, 2037, 2056, 2119, 2268, 2344, 65535}) {
        EXPECT_EQ(LoadResString(id), "") << id;
    }
}

TEST(StringTableTest, BlanksAndLineBreaksAreKept) {
    EXPECT_EQ(LoadResString(ids::HighSpeedTimerRow), "T  10ms high speed");
    EXPECT_EQ(LoadResString(ids::HighSpeed10ms), "High speed  10ms");
    EXPECT_EQ(LoadResString(ids::CommentRange), " (0, 2-64) ");
    EXPECT_EQ(LoadResString(ids::ModuleNamePrevious), "Previous ");
    EXPECT_EQ(LoadResString(ids::IoAssignmentPrevious), "Previous");
    EXPECT_EQ(LoadResString(ids::NoInterruptCounter), " (       ) ");
    EXPECT_EQ(LoadResString(ids::DirectRefresh), "Direct    Refresh");
    EXPECT_EQ(LoadResString(ids::LineErrorChoices),
              "0: Test message   1: Hold (send data)    2: OFF data");
    EXPECT_EQ(LoadResString(ids::EmptySlotGroup), "Empty \nslot");
    EXPECT_EQ(LoadResString(ids::FunctionModuleGroup), "Function \nModule");
}

}  // namespace
}  // namespace gantrix
