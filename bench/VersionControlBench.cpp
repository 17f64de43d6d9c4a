// SPDX-License-Identifier: Apache-2.0
// A pipeline's check of a whole plant, as `rkparam check --recursive DIR` makes it in one
// process: a generated tree of 10,000 projects of all thirteen CPU types (100 areas of 100
// lines, every tenth with a byte outside the fields, every seventh with programs), found, read
// and checked. And the merge driver's work: three-way merges of two branches that changed
// different dialogs, in triples per second.

#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "headless/Merge.h"
#include "headless/Page.h"
#include "headless/ProjectCheck.h"
#include "platform/rkcmnt/DeviceTable.h"
#include "store/ProjectAccess.h"
#include "support/core/TestSupport.h"

namespace {

using namespace gantrix;

constexpr int kAreas = 100;
constexpr int kLines = 100;

const test::TempDir& Plant() {
    static const test::TempDir plant;
    static const bool made = [] {
        for (int n = 0; n < kAreas * kLines; ++n) {
            const std::string cpu(platform::kCpuTypes[n % std::size(platform::kCpuTypes)]);
            const std::string dir = plant.Path() + "area" + std::to_string(n / kLines) + "/line" +
                                    std::to_string(n % kLines) + "/";
            std::filesystem::create_directories(dir);
            ParameterImage image = test::DefaultImage(cpu);
            if (n % 10 == 0) image[3000] = 0x42;
            std::ofstream(dir + "param.tmp", std::ios::binary)
                .write(reinterpret_cast<const char*>(image.data()), kImageSize);
            std::ofstream(dir + "rkparam.cpu") << cpu << "\n";
            if (n % 7 == 0) std::ofstream(dir + "program.end") << "100 0 0 0\n";
        }
        return true;
    }();
    (void)made;
    return plant;
}

void BM_CheckPlantOfTenThousandProjects(benchmark::State& state) {
    const std::string root = Plant().Path();
    size_t projects = 0, findings = 0;
    for (auto _ : state) {
        headless::ProjectChecker checker([](const std::string& dir) {
            const std::string note = ReadProjectNote(dir, "rkparam.cpu").value_or("");
            return note.substr(0, note.find('\n'));
        });
        for (const ProjectPath& path : FindProjects(root).projects) {
            findings += checker.Check(path).findings.size();
            ++projects;
        }
    }
    if (findings != 0) state.SkipWithError("the generated projects should pass");
    state.SetItemsProcessed(static_cast<int64_t>(projects));
}
BENCHMARK(BM_CheckPlantOfTenThousandProjects)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_MergeTriples(benchmark::State& state) {
    struct Triple {
        DialogContext context;
        ParameterImage base, ours, theirs;
    };
    std::vector<Triple> triples;
    for (std::string_view code : platform::kCpuTypes) {
        const std::string cpu(code);
        Triple t{headless::HeadlessContext(cpu), test::DefaultImage(cpu), {}, {}};
        t.ours = headless::Set(t.base, t.context, {{"memory.comment", "2"}}).image;
        t.theirs = headless::Set(t.base, t.context, {{"latch.L.start", "1024"}}).image;
        t.theirs[3000] = 0x42;
        triples.push_back(t);
    }
    size_t merged = 0;
    for (auto _ : state) {
        for (const Triple& t : triples) {
            merged += headless::Merge(t.base, t.ours, t.theirs, t.context).image ? 1 : 0;
        }
    }
    if (merged != state.iterations() * triples.size()) state.SkipWithError("a merge conflicted");
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * triples.size()));
}
BENCHMARK(BM_MergeTriples)->Unit(benchmark::kMillisecond);

}  // namespace
