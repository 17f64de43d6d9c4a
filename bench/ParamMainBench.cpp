// SPDX-License-Identifier: Apache-2.0
// One run of the parameter mode through the C interface, driven as a person would: the
// project is loaded, the menu is shown, End presses OK, the parameters are saved and the
// working files removed.

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QTest>
#include <QTimer>

#include "entry/GantrixA0J.h"
#include "entry/RKParam.h"
#include "support/core/TestSupport.h"

namespace {

// Presses End on the menu as soon as it is the active modal window.
void PressEndWhenTheMenuShows() {
    QTimer::singleShot(0, [] {
        QWidget* modal = QApplication::activeModalWidget();
        if (modal && modal->objectName() == "frmMenu" && modal->isVisible()) {
            QTest::keyClick(modal, Qt::Key_End);
        } else {
            PressEndWhenTheMenuShows();
        }
    });
}

void BM_ParamMainRunWithOk(benchmark::State& state) {
    gantrix::test::TempProject project("A3U");
    std::string dir = project.Path();
    ::RKParam* object = RKParam_Create();  // the C handle, not gantrix::RKParam
    RKParam_Let_szPcName(object, "A3U");
    RKParam_Let_ProjectName(object, dir.c_str());
    int16_t result = 0;
    for (auto _ : state) {
        PressEndWhenTheMenuShows();
        if (RKParam_Param_main(object, &result) != 0 || result != 1) {
            state.SkipWithError(RKParam_ErrorDescription(object));
            break;
        }
    }
    RKParam_Release(object);
}
BENCHMARK(BM_ParamMainRunWithOk)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(5)
    ->ReportAggregatesOnly(true);

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    gantrix::EnsureApplication();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
