// SPDX-License-Identifier: Apache-2.0
#include "platform/excel/Excel.h"

#include <algorithm>
#include <cctype>
#include <map>

namespace gantrix::excel {
namespace {

// Program identifiers are not case sensitive.
std::string Key(std::string progId) {
    std::transform(progId.begin(), progId.end(), progId.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return progId;
}

std::map<std::string, ApplicationClass>& Classes() {
    static std::map<std::string, ApplicationClass> classes;
    return classes;
}

}  // namespace

ApplicationClass RegisterApplicationClass(const std::string& progId,
                                          ApplicationClass implementation) {
    ApplicationClass previous;
    const auto it = Classes().find(Key(progId));
    if (it != Classes().end()) {
        previous = std::move(it->second);
        Classes().erase(it);
    }
    if (implementation.getRunning || implementation.create) {
        Classes()[Key(progId)] = std::move(implementation);
    }
    return previous;
}

std::shared_ptr<Application> GetObject(const std::string& progId) {
    const auto it = Classes().find(Key(progId));
    if (it == Classes().end() || !it->second.getRunning) return nullptr;
    return it->second.getRunning();
}

std::shared_ptr<Application> CreateObject(const std::string& progId) {
    if (auto running = GetObject(progId)) return running;
    const auto it = Classes().find(Key(progId));
    if (it == Classes().end() || !it->second.create) return nullptr;
    return it->second.create();
}

}  // namespace gantrix::excel
