// SPDX-License-Identifier: Apache-2.0
#include "dialogs/frmRemote/RemoteFields.h"

#include <gtest/gtest.h>

#include <map>

#include "common/ControlNumbers.h"
#include "support/core/TestSupport.h"

namespace gantrix {
namespace {

const std::string kNonProc = "Non-procedure";

// Fields with the given entries (index e -> start) set, each with the MINI protocol.
RemoteFields WithStarts(const std::string& total, const std::map<int, std::string>& starts) {
    RemoteFields f = DefaultsRemote();
    f.Text1 = total;
    for (const auto& [e, start] : starts) {
        f.Text2[e] = start;
        f.Text2[e + kRemoteEntries] = "MINI Standard";
    }
    return f;
}

TEST(RemoteCheck, TotalStartsOverlapsAndProtocols) {
    RemoteFields protocols = WithStarts("64", {{0, "1"}, {1, "9"}});
    protocols.Text2[14] = "";        // a start without protocol
    protocols.Text2[15] = "Serial";  // an unknown protocol
    protocols.Text2[20] = kNonProc;  // a protocol without start
    // clang-format off
    const struct { const char* what; RemoteFields fields; std::vector<std::string> recorded; }
    cases[] = {
        {"defaults", DefaultsRemote(), {}}, {"total 0", WithStarts("0", {}), {"Text1:3"}},
        {"empty total rejects every start", WithStarts("", {{0, "1"}}), {"Text1:2", "Text2(0):11"}},
        {"total 1", WithStarts("1", {}), {}}, {"total 65", WithStarts("65", {}), {"Text1:3"}},
        {"61 of 64 and 1 of 4 fit", WithStarts("64", {{0, "61"}, {5, "1"}}), {}},
        {"62 of 64", WithStarts("64", {{0, "62"}}), {"Text2(0):11"}},
        {"start 0", WithStarts("64", {{3, "0"}}), {"Text2(3):11"}},
        {"1 and 4 share station 4", WithStarts("64", {{0, "1"}, {1, "4"}}), {"Text2(1):11"}},
        {"1 and 5 do not", WithStarts("64", {{0, "1"}, {1, "5"}}), {}},
        {"the later entry is marked", WithStarts("64", {{0, "20"}, {9, "17"}}), {"Text2(9):11"}},
        {"a marked entry is compared no more", WithStarts("64", {{0, "5"}, {1, "8"}, {2, "11"},
         {3, "5"}}), {"Text2(1):11", "Text2(3):11"}},
        {"out of range is no overlap", WithStarts("64", {{0, "62"}, {1, "60"}}), {"Text2(0):11"}},
        {"protocols", protocols, {"Text2(14):11", "Text2(15):11", "Text2(20):11"}}};
    // clang-format on
    for (const auto& c : cases) {
        const ErrorTables errors = ValidateRemote(c.fields);
        std::vector<std::string> recorded;  // "control:message"
        for (int control = 0; control <= kMaxControlNo; ++control)
            for (int n = 0; n <= kMaxMessageNo; ++n)
                if (errors.ControlHasMessage(control, n))
                    recorded.push_back(ControlNameOf(control).control + ":" + std::to_string(n));
        EXPECT_EQ(recorded, c.recorded) << c.what;
    }
}

TEST(RemoteBytes, ReadAndWriteBothWays) {
    ParameterImage image = test::DefaultImage("A2C");
    for (int i = 141; i <= 159; ++i) image[i] = 255;  // a fresh remote table
    const ParameterImage fresh = image;
    EXPECT_EQ(ReadRemote(image), DefaultsRemote());
    image[142] = 2;
    image[159] = 200;  // shown whole, for the check to reject
    image[144] = 10;   // set beside erased start bytes: kept
    image[156] = 61;
    image.SetParamWord(0x2001, kRemoteProtocolWord);  // entries 1 and 14 non-procedure
    RemoteFields expected = WithStarts("200", {{1, "10"}, {13, "61"}});
    expected.Text2[27] = kNonProc;
    expected.OnlineMode = 2;
    EXPECT_EQ(ReadRemote(image), expected);
    image[142] = 7;
    EXPECT_EQ(ReadRemote(image).OnlineMode, -1);  // no option selected
    image = fresh;
    RemoteFields f = WithStarts("40", {{0, "1"}, {8, "9"}, {13, "30"}});
    f.Text2[8 + kRemoteEntries] = kNonProc;  // entry 9: bit 0 of byte 158
    f.Text2[3 + kRemoteEntries] = kNonProc;  // no start: no bit
    f.OnlineMode = -1;                       // none selected: byte 142 kept
    WriteRemote(f, image);
    EXPECT_EQ(std::vector<int>(image.data() + 141, image.data() + 160),
              (std::vector<int>{0, 255, 1, 0, 0, 0, 0, 0, 0, 0, 9, 0, 0, 0, 0, 30, 0, 1, 40}));
    for (int index : test::DifferingBytes(fresh, image)) {
        EXPECT_TRUE(index >= 141 && index <= 159) << index;
    }
}

}  // namespace
}  // namespace gantrix
