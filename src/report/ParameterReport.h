// SPDX-License-Identifier: Apache-2.0
#pragma once
// The parameter report of the parameter workbook: every setting of a parameter image as the
// settings dialogs show it, one sheet per dialog of the parameter menu. Each value comes from
// the dialog's own Read function, so the report says exactly what the dialog would show.
//
// Sheets, by CPU type: Memory Capacity Setting and Latch Range Setting (all), Timer/Counter
// Setting with the interrupt counters (all but A0J), I/O Assignment with the model names
// (all), Supplementary Functions (the step relay choice for A0J), Remote I/O, Remote Terminal
// Setting (A2C), M-NET/MINI Auto-refresh Setting (A2A A3A A2U A3U A4U), Network/Link Setting
// (all but A0J: the stored mode, whether the block is empty, its sum, and the bytes of the
// network block and the link data as the network workbooks show them).

#include <string>
#include <vector>

#include "common/DialogContext.h"
#include "report/Sheet.h"
#include "store/ParameterImage.h"

namespace gantrix {

// What the dialogs read besides the image, for a project of cpuType in projectDir (ending in
// "/"): the device sizes the host library gives for the CPU type (none for an unknown one).
DialogContext ReportContext(const std::string& cpuType, const std::string& projectDir);

// The sheets for image. The memory sheet reads the project's working files as the memory
// dialog does ("param.$$$", "Mmicro.bin"); a file that exists but cannot be read raises the
// file runtime error.
std::vector<Sheet> BuildParameterReport(const ParameterImage& image, const DialogContext& context);

}  // namespace gantrix
