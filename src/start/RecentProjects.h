// SPDX-License-Identifier: Apache-2.0
#pragma once
// The projects the start window lists: the folders opened last, newest first.

#include <cstddef>
#include <string>
#include <vector>

namespace gantrix {

struct RecentProject {
    std::string folder;  // absolute, spelled as ListedFolder spells it
    std::string cpu;     // the CPU type of its last run; "" when not known
    bool operator==(const RecentProject&) const = default;
};

// At most ten entries, newest first, each folder once however it was spelled. A list read
// back from the settings passes the same rules, so that a file edited by hand can neither
// list a folder twice nor list more than ten.
class RecentProjects {
  public:
    static constexpr size_t kLimit = 10;

    RecentProjects() = default;
    // Entries as stored, newest first; empty folders are dropped.
    explicit RecentProjects(const std::vector<RecentProject>& stored);

    // Puts folder at the top with cpu, replacing its older entry; the oldest entry past ten
    // goes. An empty folder is ignored.
    void Add(const std::string& folder, const std::string& cpu);
    void Remove(const std::string& folder);
    // The entry of folder, nullptr when it is not listed.
    const RecentProject* Find(const std::string& folder) const;

    const std::vector<RecentProject>& Entries() const { return entries_; }

  private:
    std::vector<RecentProject> entries_;
};

// The spelling under which a folder is listed and compared: absolute (a relative one taken
// from base), with ".", "..", doubled and trailing "/" taken out. Symbolic links are kept as
// the user named them. "" for "".
std::string ListedFolder(const std::string& folder, const std::string& base = "/");

}  // namespace gantrix
