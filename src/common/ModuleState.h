// SPDX-License-Identifier: Apache-2.0
#pragma once
// The state of the parameter mode that lives from one call of the entry to the next. The
// entry uses one process-wide instance (hosts expect one image per process); forms get it
// by reference and tests make their own.

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "store/StoreState.h"

namespace gantrix {

namespace excel {
class Application;
}

class MessagePresenter;

// Device points per letter, read once per run from the host library.
struct DeviceMaxSizes {
    static constexpr std::string_view kLetters = "XYMBTCDWR";
    std::array<int16_t, 9> points{};

    int16_t& operator[](char letter);
    int16_t operator[](char letter) const;
};

struct ModuleState : StoreState {
    intptr_t HostWnd = 0;
    DeviceMaxSizes DeviceMaxSize;

    // Copies of the host's properties.
    bool ContentChangeFlag = false;
    bool blnSubEditing1 = false;
    bool blnSubEditing2 = false;
    bool blnSubEditing3 = false;

    bool SaveRequested = false;  // the menu was left with OK
    bool ParamChanged = false;   // a dialog was left with OK, or Clear All ran
    bool DataChanged = false;    // the open dialog has edits not yet written

    // Spreadsheet hand-over of this run.
    bool NetEditActive = false;
    bool ParamPrintActive = false;
    std::string NetBookName;
    std::string ParamBookName;
    // The spreadsheet application the hand-over attached to or started; held until the
    // entry call ends (or CheckExcel finds nothing of the run open any more).
    std::shared_ptr<excel::Application> ExcelApp;

    // The network mode the network menu derived from the image last (0 none, 1 MORNET II
    // combination, 2 MORNET II, 3 MORNET).
    int16_t NetworkMode = 0;

    // The runtime error being handled; message 0 shows its description.
    std::string PendingErrorDescription;

    // Shows the message boxes; with none, no box appears and every answer is "".
    MessagePresenter* Presenter = nullptr;
};

}  // namespace gantrix
