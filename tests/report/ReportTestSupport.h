#pragma once
// A project whose parameters differ from the defaults in every sheet of the report, set
// through the dialogs' own Write functions as the dialogs' OK would.

#include "dialogs/frmAssistance/AssistanceFields.h"
#include "dialogs/frmIOLayout/IOLayoutFields.h"
#include "dialogs/frmInterruptCounter/InterruptCounterFields.h"
#include "dialogs/frmLatch/LatchFields.h"
#include "dialogs/frmMINI/MINIFields.h"
#include "dialogs/frmMemory/MemoryFields.h"

namespace gantrix::test {

// For a U-type CPU: sub program 2 K steps, comment 8 K bytes, D100-D199 latched, I3 counted
// by C227, slots 0 and 1 X16 "AX41" and Y32, RUN contact X1F, one M-NET/MINI module.
inline ParameterImage EditedImage(ParameterImage image, const DialogContext& context) {
    MemoryFields memory = ReadMemory(image, context);
    memory.Text1[kSub1] = "2";
    memory.Text2 = "8";
    WriteMemory(memory, image, context);

    LatchFields latch = ReadLatch(image, context);
    latch.Text1[12] = "100";
    latch.Text1[13] = "199";
    WriteLatch(latch, image, context);

    InterruptCounterFields interrupts;
    interrupts.PointerFlag[3] = true;
    WriteInterruptCounter(interrupts, image);

    IOLayoutFields io = ReadIOLayout(image, context);
    io.codes[0] = "X16";
    io.codes[1] = "Y32";
    io.names[0] = "AX41";
    io.namesEdited = true;
    WriteIOLayout(io, image, context);

    AssistanceFields assistance = ReadAssistance(image, context);
    assistance.Text2[0] = "1F";
    WriteAssistance(assistance, image, context);

    MINIFields mini;
    mini.Text1 = "1";
    const std::array<const char*, kMiniFieldsPerRow> row = {
        "1A0", "MINI", "12", "X100", "Y100", "5", "CPU", "Hold", "M9016", "D9010", "OFF"};
    std::copy(row.begin(), row.end(), mini.Text2.begin());
    WriteMINI(mini, image, context);
    return image;
}

}  // namespace gantrix::test
