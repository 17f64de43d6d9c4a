// SPDX-License-Identifier: Apache-2.0
#include "start/RecentProjects.h"

#include <gtest/gtest.h>

namespace gantrix {
namespace {

std::string Listed(const RecentProjects& recent) {
    std::string text;
    for (const RecentProject& entry : recent.Entries())
        text += entry.folder + ":" + entry.cpu + " ";
    return text;
}

// The window lists a relative folder as the command line takes it, from the working directory.
TEST(ListedFolder, RelativeFromTheBaseWithoutDotsAndTrailingSlashes) {
    EXPECT_EQ(ListedFolder("a/./b/", "/w"), "/w/a/b");
    EXPECT_EQ(ListedFolder("../x", "/w/v"), "/w/x");
    EXPECT_EQ(ListedFolder("", "/w"), "");
}

// Newest first, each folder once however it is spelled, ten at most: the stored list too.
TEST(RecentProjects, NewestFirstEachFolderOnceTenAtMost) {
    RecentProjects recent({{"/p/b", "A3U"}, {"", "A1 "}, {"/p//b/", "A2C"}, {"/p/a/./x/..", ""}});
    EXPECT_EQ(Listed(recent), "/p/b:A3U /p/a: ");
    recent.Add("/p/a/", "A1 ");
    EXPECT_EQ(Listed(recent), "/p/a:A1  /p/b:A3U ");
    for (char c = '0'; c <= '8'; ++c) recent.Add(std::string("/q/") + c, "A0J");
    EXPECT_EQ(recent.Entries().size(), RecentProjects::kLimit);
    EXPECT_EQ(recent.Entries().back().folder, "/p/a");
    recent.Remove("/q/8/");
    recent.Add("/q/0", "A2C");
    EXPECT_EQ(Listed(recent).substr(0, 22), "/q/0:A2C /q/7:A0J /q/6");
    EXPECT_EQ(recent.Entries().size(), 9u);
    ASSERT_NE(recent.Find("/q//7"), nullptr);
    EXPECT_EQ(recent.Find("/q//7")->cpu, "A0J");
    EXPECT_EQ(recent.Find("/q/8"), nullptr);
}

}  // namespace
}  // namespace gantrix
