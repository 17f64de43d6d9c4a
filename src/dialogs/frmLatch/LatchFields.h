// SPDX-License-Identifier: Apache-2.0
#pragma once
// Latch ranges: for each device group, the device numbers whose contents survive a power
// failure. Row r (0..11) keeps its start number as a word at 16 + 4r and its end number at
// 18 + 4r; a start word of 65535 means the row is not latched. Box i of the dialog (Text1(i))
// owns the word at 16 + 2i: box 2r is the start and box 2r + 1 the end of row r.
//
//   row  0 L   1 B (hex)   2 T low speed   3 T high speed   4 T integration   5 C
//        6 D   7 W (hex)   8..11 the second timer block and counter block (12-row types)

#include <array>
#include <string>

#include "common/DialogContext.h"
#include "common/ErrorTables.h"
#include "common/StringTable.h"
#include "store/ParameterImage.h"

namespace gantrix {

inline constexpr int kLatchRows = 12;
inline constexpr int kLatchBoxes = 2 * kLatchRows;

// The caption of each row: the dialog's row labels and the report's rows.
inline constexpr int kLatchRowCaptions[kLatchRows] = {ids::DeviceL,
                                                      ids::DeviceB,
                                                      ids::LowSpeedTimerRow,
                                                      ids::HighSpeedTimerRow,
                                                      ids::IntegrationTimerRow,
                                                      ids::DeviceC,
                                                      ids::DeviceD,
                                                      ids::DeviceW,
                                                      ids::LowSpeedTimerRow,
                                                      ids::HighSpeedTimerRow,
                                                      ids::IntegrationTimerRow,
                                                      ids::DeviceC};
inline constexpr int kLatchPatterns = 3;  // "No Latch", "Half Latch", "Full Latch"

// The contents of Text1(0)..Text1(23).
struct LatchFields {
    std::array<std::string, kLatchBoxes> Text1;
    bool operator==(const LatchFields&) const = default;
};

// 12 rows for the types with a second timer and counter block, 8 for the others.
int LatchRowCount(const std::string& cpuType);
// B and W are numbered in hexadecimal: rows 1 and 7, boxes 2, 3, 14 and 15.
bool IsHexLatchRow(int row);
bool IsHexLatchBox(int box);
// Global control number of Text1(box).
inline int LatchControlNo(int box) {
    return 9 + box;
}

// The permitted device numbers of one row. A device kind that the CPU type or the stored
// timer/counter partition does not provide has no limits (-1, -1) and cannot be latched.
struct LatchRowLimit {
    int low = -1;
    int high = -1;
    bool Exists() const { return low >= 0; }
    bool operator==(const LatchRowLimit&) const = default;
};

struct LatchLimits {
    int rows = 8;
    std::array<LatchRowLimit, kLatchRows> row{};
};

// The limits of every row, from the device sizes and the timer/counter partition stored in
// the image (first timer numbers 192/194/196 and 200/202/204, timer and counter points
// 210/214 or 2304/2308). Rows beyond the CPU type's count have no limits.
LatchLimits LatchRowLimits(const ParameterImage& image, const std::string& cpuType,
                           const DeviceMaxSizes& sizes);
LatchLimits LatchRowLimits(const ParameterImage& image, const DialogContext& context);

// The row's range label, " (low-high) " in the row's own radix, or " (--) " without limits.
std::string LatchRangeLabel(const LatchLimits& limits, int row);

// A box's number as text (capital hexadecimal without prefix for B and W) and back; the
// text-to-number direction reads hexadecimal through PadZero4 and HexToValue.
std::string LatchBoxText(int value, bool hex);
long LatchBoxValue(const std::string& text, bool hex);

// What the boxes show for the image (SetLatchSettings).
LatchFields ReadLatch(const ParameterImage& image, const DialogContext& context);

// Checks box against its row's limits (low = high = -1 for a row without limits) and
// records its failure, at most one per box, in errors (CheckLatchField).
void CheckLatchField(const LatchFields& fields, int box, int low, int high, ErrorTables& errors);

// Every box of every row of the CPU type, row by row, start before end (CheckLatchSettings
// without the reporting).
ErrorTables ValidateLatch(const LatchFields& fields, const LatchLimits& limits,
                          const DialogContext& context);

// The words SaveLatchSettings writes.
void WriteLatch(const LatchFields& fields, ParameterImage& image, const DialogContext& context);

// The boxes after Clear (SetDefaultOfLatch): L1000-L2047 and every other row of the type
// empty; for the smallest type, whose ranges only the fixed patterns set, nothing changes.
LatchFields DefaultsLatch(const LatchFields& current, const DialogContext& context);

// Puts fixed pattern index (0 "No Latch", 1 "Half Latch", 2 "Full Latch") into rows 0..7
// (ChangeLatchSettings).
void ApplyLatchPattern(LatchFields& fields, int index);

}  // namespace gantrix
