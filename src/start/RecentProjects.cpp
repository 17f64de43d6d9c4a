// SPDX-License-Identifier: Apache-2.0
#include "start/RecentProjects.h"

#include <algorithm>
#include <filesystem>

namespace gantrix {

std::string ListedFolder(const std::string& folder, const std::string& base) {
    if (folder.empty()) return {};
    std::string listed = (std::filesystem::path(base) / folder).lexically_normal().string();
    while (listed.size() > 1 && listed.back() == '/') listed.pop_back();
    return listed;
}

RecentProjects::RecentProjects(const std::vector<RecentProject>& stored) {
    // Oldest first, so that the newest spelling of a folder listed twice wins.
    for (auto entry = stored.rbegin(); entry != stored.rend(); ++entry)
        Add(entry->folder, entry->cpu);
}

void RecentProjects::Add(const std::string& folder, const std::string& cpu) {
    const std::string listed = ListedFolder(folder);
    if (listed.empty()) return;
    Remove(listed);
    entries_.insert(entries_.begin(), RecentProject{listed, cpu});
    if (entries_.size() > kLimit) entries_.resize(kLimit);
}

void RecentProjects::Remove(const std::string& folder) {
    const std::string listed = ListedFolder(folder);
    std::erase_if(entries_, [&](const RecentProject& entry) { return entry.folder == listed; });
}

const RecentProject* RecentProjects::Find(const std::string& folder) const {
    const std::string listed = ListedFolder(folder);
    const auto found =
        std::find_if(entries_.begin(), entries_.end(),
                     [&](const RecentProject& entry) { return entry.folder == listed; });
    return found == entries_.end() ? nullptr : &*found;
}

}  // namespace gantrix
