// SPDX-License-Identifier: Apache-2.0
// rkparam check in one process: every dialog's check, the menu's OK and the check bytes, over
// 10,000 images of all thirteen CPU types (default images with random changes in the settings
// words, most of which some dialog refuses).

#include <benchmark/benchmark.h>

#include <random>
#include <string>
#include <vector>

#include "headless/Headless.h"
#include "headless/Page.h"
#include "platform/rkcmnt/DeviceTable.h"
#include "support/core/TestSupport.h"

namespace {

using namespace gantrix;

struct Corpus {
    std::vector<DialogContext> contexts;
    std::vector<std::pair<size_t, ParameterImage>> images;  // context index, image
};

const Corpus& TheCorpus() {
    static const Corpus corpus = [] {
        Corpus c;
        std::mt19937 random(5);
        for (std::string_view cpu : platform::kCpuTypes) {
            c.contexts.push_back(headless::HeadlessContext(std::string(cpu)));
        }
        for (int n = 0; n < 10000; ++n) {
            const size_t k = n % c.contexts.size();
            ParameterImage image = test::DefaultImage(c.contexts[k].CpuType);
            for (int m = static_cast<int>(random() % 4); m > 0; --m) {
                image.SetParamWord(random() % 2200, 14 + 2 * static_cast<int>(random() % 300));
            }
            c.images.emplace_back(k, image);
        }
        return c;
    }();
    return corpus;
}

void BM_CheckTenThousandImages(benchmark::State& state) {
    const Corpus& corpus = TheCorpus();
    size_t findings = 0;
    for (auto _ : state) {
        for (const auto& [k, image] : corpus.images) {
            findings += headless::Check(image, corpus.contexts[k]).size();
        }
    }
    benchmark::DoNotOptimize(findings);
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * corpus.images.size()));
    state.counters["findings/image"] =
        benchmark::Counter(static_cast<double>(findings) /
                           static_cast<double>(state.iterations() * corpus.images.size()));
}
BENCHMARK(BM_CheckTenThousandImages)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace
