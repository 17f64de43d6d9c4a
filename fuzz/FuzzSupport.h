// SPDX-License-Identifier: Apache-2.0
#pragma once
// What the fuzz targets share: the CPU type an input picks, its default image, and the
// oracle every saved image must pass.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>

#include "headless/Headless.h"
#include "headless/Page.h"
#include "platform/rkcmnt/DefaultImage.h"
#include "platform/rkcmnt/DeviceTable.h"
#include "store/CheckSum.h"

namespace gantrix::fuzz {

struct Project {
    std::string cpu;
    DialogContext context;
    ParameterImage image;  // the default image with its check bytes: it passes every check
};

// The project of the CPU type the first byte picks; contexts are made once per type.
inline const Project& ProjectFor(uint8_t pick) {
    static std::map<size_t, Project> projects;
    const size_t index = pick % std::size(platform::kCpuTypes);
    auto found = projects.find(index);
    if (found == projects.end()) {
        Project p;
        p.cpu = std::string(platform::kCpuTypes[index]);
        p.context = headless::HeadlessContext(p.cpu);
        platform::BuildDefaultImage(p.cpu, p.image.data());
        found = projects.emplace(index, std::move(p)).first;
    }
    return found->second;
}

[[noreturn]] inline void Fail(const std::string& what, const std::string& input) {
    std::fprintf(stderr, "fuzz oracle: %s\ninput:\n%s\n", what.c_str(), input.c_str());
    std::abort();
}

// A change taken from a project that passes every check must pass every check too, and its
// text form must read back to the same image.
inline void ExpectSaveable(const Project& p, const ParameterImage& saved,
                           const std::string& input) {
    const auto found = headless::Check(saved, p.context);
    if (!found.empty()) {
        Fail("a saved image fails the check: " + headless::Describe(found.front()), input);
    }
    const headless::ImportOutcome back =
        headless::ImportText(headless::ExportText(saved, p.context), saved, p.context);
    if (!back.image || *back.image != saved) {
        Fail("the text form of a saved image does not read back" +
                 (back.refusals.empty() ? "" : ": " + headless::Describe(back.refusals.front())),
             input);
    }
}

}  // namespace gantrix::fuzz
