// SPDX-License-Identifier: Apache-2.0
// set: the first byte picks the CPU type, each further line is one KEY=VALUE typed into a
// new project of that type. Whatever is typed, set either refuses it or gives an image that
// passes every check and whose text form reads back to it.

#include <vector>

#include "fuzz/FuzzSupport.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    using namespace gantrix;
    const fuzz::Project& p = fuzz::ProjectFor(data[0]);
    const std::string input(reinterpret_cast<const char*>(data) + 1, size - 1);
    std::vector<headless::Assignment> assignments;
    size_t at = 0;
    while (at <= input.size() && assignments.size() < 64) {
        size_t end = input.find('\n', at);
        if (end == std::string::npos) end = input.size();
        const std::string line = input.substr(at, end - at);
        at = end + 1;
        const size_t eq = line.find('=');
        if (eq != std::string::npos)
            assignments.push_back({line.substr(0, eq), line.substr(eq + 1)});
    }
    const headless::SetOutcome outcome = headless::Set(p.image, p.context, assignments);
    if (outcome.refusals.empty()) fuzz::ExpectSaveable(p, outcome.image, input);
    return 0;
}
