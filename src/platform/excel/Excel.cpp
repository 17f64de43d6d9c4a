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

void RegisterApplicationClass(const std::string& progId, ApplicationClass implementation) {
    if (!implementation.getRunning && !implementation.create) {
        Classes().erase(Key(progId));
    } else {
        Classes()[Key(progId)] = std::move(implementation);
    }
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
