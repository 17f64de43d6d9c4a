// SPDX-License-Identifier: Apache-2.0
#pragma once
// Memory capacity: how the program memory of the PLC is divided (main and sub programs,
// microcomputer areas, comments, file registers, trace and status-latch work areas), the
// total it adds up to, and the bytes 64..139, 2432..2435 of the image that hold it.
//
// Image region (words little endian, capacities typed in K and stored x 1024):
//   64 main program          66 sub program 1        68 file register
//   70 comment (K x 512)     72 microcomputer (U types: + 2 x word 2432)
//   74 sub microcomputer     76 status latch 0..3    78-79 copy of 68-69 when latched
//   80 sampling trace 255/0  81..131 fixed fill of the extended types
//   132 extension comment (K x 512)    134, 136 sub programs 2 and 3
//   138 reserved area of the U types (refreshed from the working file, never written)
//   2432 doubled into 72 (U types)     2434 microcomputer as typed (U types)
// A code that is none of the thirteen CPU types leaves every byte of the region untouched.

#include <array>
#include <cstdint>
#include <string>

#include "common/DialogContext.h"
#include "common/ErrorTables.h"
#include "store/ParameterImage.h"

namespace gantrix {

// The controls' contents, indexed like the control arrays:
//   Text1(0) main sequence, (1) microcomputer, (2) sub program 1, (3) sub microcomputer,
//   (4) sub program 2, (5) sub program 3; Text2 comment; Text3 extension comment;
//   Text4 file register.
// A field the CPU type neither loads nor shows keeps its text (empty until typed).
struct MemoryFields {
    std::array<std::string, 6> Text1;
    std::string Text2;
    std::string Text3;
    std::string Text4;
    bool SanpFlag = false;        // sampling trace
    bool SlatchDataFlag = false;  // status latch of the data memory
    bool SlatchFileFlag = false;  // status latch of the file register

    bool operator==(const MemoryFields&) const = default;
};

// The form-level limits, fixed when the dialog opens.
struct MemoryLimits {
    int16_t SequenceMax = 0;  // a sub program field, K steps
    int16_t MicroMax = 0;     // a microcomputer field, K bytes
    int32_t ReservedK = 0;    // K taken by the reserved area of the U types
    int16_t MainMax = 0;      // the main program field, K steps

    bool operator==(const MemoryLimits&) const = default;
};

// The input controls in one list: Text1(0..5), Text2, Text3, Text4.
enum MemoryControl : int {
    kMain = 0,
    kMicro = 1,
    kSub1 = 2,
    kSubMicro = 3,
    kSub2 = 4,
    kSub3 = 5,
    kComment = 6,
    kExtComment = 7,
    kFileRegister = 8,
    kMemoryControlCount = 9,
};

// "Text1(3)", "Text2", ... as the form names the control.
std::string MemoryControlName(int control);
// The global control number of the control on frmMemory.
int MemoryControlNo(int control);

// Which controls the CPU type shows.
struct MemoryVisibility {
    std::array<bool, kMemoryControlCount> field{};
    bool traceAndLatch = false;  // SanpFlag, SlatchDataFlag, SlatchFileFlag and their hint
};
MemoryVisibility VisibleMemoryControls(const std::string& cpu);

// Whether cpu is one of the thirteen CPU types.
bool IsKnownMemoryCpu(const std::string& cpu);

// The highest file register capacity (K points) of cpu; -1 where it has none.
int FileRegisterMax(const std::string& cpu);

// When the dialog opens, U types only: bytes 138 and 139 are taken from offsets 138 and 139
// of the working file "param.$$$" in the project directory (a missing file, or one too short
// to hold them, leaves the image's own bytes, loaded from the same project); both 255 then
// read as 0 and are written into the image as 0. Returns the limits computed from the word.
// A file that exists but cannot be read raises the file runtime error.
MemoryLimits LoadMemoryLimits(ParameterImage& image, const DialogContext& context);

// The limits from the image alone, as LoadMemoryLimits computes them once the reserved area is
// refreshed: for U types, bytes 138 and 139 both 255 read as 0 and are written so.
MemoryLimits ImageMemoryLimits(ParameterImage& image, const std::string& cpu);

// SetMemorySettings without the labels: the fields, after the load has set the erased
// words 2434 (U types), 134 and 136 (A4U) and 132 (every CPU type) to 0 in the image.
MemoryFields ReadMemory(ParameterImage& image, const DialogContext& context);

// CalcMemory: the total memory in K bytes as decimal text.
std::string CalcMemory(const MemoryFields& fields, const std::string& cpu,
                       const MemoryLimits& limits, const ParameterImage& image);

// SetPointNumber: "(<n>Points)" for the comment (kind 0) or extension comment (kind 1),
// n = (value - 1) x 64, 0 for a value of 0; "" for any other kind.
std::string SetPointNumber(const MemoryFields& fields, int kind);

// CheckMemoryField: checks one control against min..max and records its first failure in
// errors; false when it failed.
bool CheckMemoryField(const MemoryFields& fields, int control, int min, int max,
                      const DialogContext& context, const MemoryLimits& limits,
                      const MemoryVisibility& visible, ErrorTables& errors);

// CheckMemorySettings without the boxes: every visible field checked, all failures recorded.
ErrorTables ValidateMemory(const MemoryFields& fields, const DialogContext& context,
                           const MemoryLimits& limits);

// SaveMemorySettings: the bytes of the region for the CPU type. Nothing is written when a
// value does not fit its word (the overflow error is raised).
void WriteMemory(const MemoryFields& fields, ParameterImage& image, const DialogContext& context);

// SetDefaultOfMemory: current with the defaults of the CPU type put into the fields it shows.
MemoryFields DefaultsMemory(const MemoryFields& current, const DialogContext& context);

// Whether an "A0J" project holds a microcomputer program ("Mmicro.bin" of the project, as
// the host library judges it with image words 64 and 72).
bool MicroProgramPresent(const ParameterImage& image, const DialogContext& context);

}  // namespace gantrix
