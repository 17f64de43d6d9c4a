#include "entry/RKParam.h"

#include <QApplication>
#include <QMetaObject>
#include <QPushButton>
#include <memory>

#include "common/ModuleState.h"
#include "common/qt/QtMessagePresenter.h"
#include "menus/frmMenu.h"
#include "platform/rkcmnt/rkcmnt.h"
#include "platform/user32/user32.h"
#include "store/ParameterFiles.h"

namespace gantrix {

ModuleState& ProcessModuleState() {
    static ModuleState state;
    return state;
}

void EnsureApplication() {
    if (QApplication::instance() == nullptr) {
        // Lives as long as the process: a host without Qt may call again.
        static int argc = 1;
        static char name[] = "GantrixA0J";
        static char* argv[] = {name, nullptr};
        new QApplication(argc, argv);
    }
    // Posted notifications are delivered from the event loop, as the host's queue would.
    User32SetPostHook([] {
        QMetaObject::invokeMethod(
            qApp, [] { User32DispatchPosted(); }, Qt::QueuedConnection);
    });
}

namespace {

std::vector<char> Buffer(const std::string& text) {
    std::vector<char> buffer(text.begin(), text.end());
    buffer.push_back('\0');
    return buffer;
}

}  // namespace

int16_t RKParam::Param_main() {
    EnsureApplication();
    ModuleState& s = ProcessModuleState();
    if (s.Presenter == nullptr) s.Presenter = &QtMessagePresenter::Instance();

    // 1-3: the menu, with its captions; it centres itself when shown.
    auto menu = std::make_unique<frmMenu>(s);
    s.HostWnd = hParentWnd;

    // 4: the project directory always ends in its separator.
    if (ProjectName.empty() || ProjectName.back() != '/') ProjectName += '/';

    // 5: the image and the END positions of the programs.
    if (LoadParameter(ProjectName + kParamTmp, s.image) == 0) {
        auto cpuText = Buffer(std::string(10, ' '));
        int16_t value = 0;
        int16_t endPosition[4] = {0, 0, 0, 0};
        RkGetFileParameter(cpuText.data(), &value, endPosition);
        s.CpuType = cpuText.data();
        for (int i = 0; i < 4; ++i) s.EndPosition[i] = endPosition[i];
    }

    // 6-8: the run's module state and the library's.
    s.CpuType = szPcName;
    s.ProjectDir = ProjectName;
    s.ContentChangeFlag = ContentChangeFlag;
    s.blnSubEditing1 = blnSubEditing1;
    s.blnSubEditing2 = blnSubEditing2;
    s.blnSubEditing3 = blnSubEditing3;
    s.CpuCode = CpuCodeOf(s.CpuType);
    auto dir = Buffer(s.ProjectDir);
    auto cpu = Buffer(s.CpuType);
    RkSetupGlobal(dir.data(), cpu.data(), s.CpuCode, s.image.data());
    for (char letter : DeviceMaxSizes::kLetters) {
        s.DeviceMaxSize[letter] = GetDeviceMaxSize(std::string(1, letter));
    }

    // 9: the smallest CPU has no timer/counter, I/O assignment or network settings.
    if (s.CpuType == "A0J") {
        for (int item : {2, 3, 5}) menu->MenuItem[item]->setEnabled(false);
    }

    // 10-11: working copies, then the menu until it is closed.
    s.SaveRequested = false;
    CopyWorkFiles(s);
    menu->exec();

    // 12-15: the change flag back to the host, save or not, clean up.
    ContentChangeFlag = s.ContentChangeFlag;
    const bool save = s.SaveRequested;
    FinishRunFiles(s, save);
    s.ExcelApp = nullptr;
    menu.reset();
    s.SaveRequested = false;
    return save ? 1 : 0;
}

}  // namespace gantrix
