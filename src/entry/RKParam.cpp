// SPDX-License-Identifier: Apache-2.0
#include "entry/RKParam.h"

#include <QApplication>
#include <QMetaObject>
#include <QPushButton>
#include <memory>
#include <optional>

#include "common/ModuleState.h"
#include "common/qt/QtMessagePresenter.h"
#include "menus/frmMenu.h"
#include "platform/rkcmnt/rkcmnt.h"
#include "platform/user32/user32.h"
#include "store/ParameterFiles.h"
#include "store/ProjectAccess.h"
#include "store/RuntimeError.h"

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

std::string Lines(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) text += (text.empty() ? "" : "\n") + line;
    return text;
}

}  // namespace

int16_t RKParam::Refuse(const std::string& reason) {
    notice_ = reason + "\nThe parameter menu was not opened and no file was changed.";
    // A box of its own state: a refused run changes nothing of the process's module state,
    // which may belong to a run still open.
    ModuleState box;
    box.HostWnd = hParentWnd;
    box.Presenter = ProcessModuleState().Presenter;
    box.PendingErrorDescription = notice_;
    ShowMessage(box, 0);
    return 0;
}

int16_t RKParam::Param_main() {
    notice_.clear();
    EnsureApplication();
    ModuleState& s = ProcessModuleState();
    if (s.Presenter == nullptr) s.Presenter = &QtMessagePresenter::Instance();

    // 4: the project directory always ends in its separator. An empty name would make that
    // the root directory, where the run would look for and delete working files.
    if (ProjectName.empty()) {
        throw RuntimeError(kErrPathNotFound, "No project directory: ProjectName is empty");
    }
    if (ProjectName.back() != '/') ProjectName += '/';

    // The run holds its project to the end, and the directory its "param.tmp" leads to; what
    // killed writers left half-written there goes once it is held.
    std::optional<ProjectHold> hold;
    try {
        hold.emplace(LocateProject(ProjectName));
        // END positions from a file the library would hang on or misread would let a memory
        // size through that the programs do not fit.
        CheckProgramEnd(ProjectName);
    } catch (const ProjectInUse& error) {
        return Refuse(error.Description() + ".");
    } catch (const RuntimeError& error) {
        return Refuse(error.Description());
    }

    // 5: the image and the END positions of the programs. A "param.tmp" that cannot be
    // loaded whole ends the run here, so that nothing is saved over it.
    const ParamLoad load = LoadParamTmp(ProjectName, s.image);
    if (!load.refusal.empty()) return Refuse(load.refusal);
    if (load.loaded) {
        auto cpuText = Buffer(std::string(10, ' '));
        int16_t value = 0;
        int16_t endPosition[4] = {0, 0, 0, 0};
        RkGetFileParameter(cpuText.data(), &value, endPosition);
        s.CpuType = cpuText.data();
        for (int i = 0; i < 4; ++i) s.EndPosition[i] = endPosition[i];
    }

    // 1-3: the menu, with its captions; it centres itself when shown.
    auto menu = std::make_unique<frmMenu>(s);
    s.HostWnd = hParentWnd;

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

    // 10-14: working copies, the menu until it is closed, the change flag back to the host,
    // save or not; the working files go on every way out.
    s.SaveRequested = false;
    struct EndOfRun {  // 15, on every way out
        ModuleState& state;
        std::unique_ptr<frmMenu>& form;
        ~EndOfRun() {
            form.reset();
            state.SaveRequested = false;
            state.ExcelApp = nullptr;  // the spreadsheet application is let go
        }
    } endOfRun{s, menu};
    try {
        CopyWorkFiles(s);
        menu->exec();
    } catch (const RuntimeError& error) {
        const std::vector<std::string> failures = DeleteWorkFiles(s);
        if (failures.empty()) throw;
        throw RuntimeError(error.Number(), error.Description() + "\n" + Lines(failures));
    } catch (...) {
        DeleteWorkFiles(s);
        throw;
    }
    ContentChangeFlag = s.ContentChangeFlag;
    const bool save = s.SaveRequested;
    const std::vector<std::string> warnings = FinishRunFiles(s, save);

    if (!warnings.empty()) {
        notice_ = (save ? "The parameters were saved, but:\n" : "") + Lines(warnings);
        s.PendingErrorDescription = notice_;
        ShowMessage(s, 0);
        s.PendingErrorDescription.clear();
    }
    return save ? 1 : 0;
}

}  // namespace gantrix
