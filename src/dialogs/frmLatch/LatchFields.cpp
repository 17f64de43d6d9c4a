// SPDX-License-Identifier: Apache-2.0
#include "dialogs/frmLatch/LatchFields.h"

#include <algorithm>
#include <cstdio>

#include "common/InputRoutines.h"

namespace gantrix {
namespace {

constexpr int kFirstStartWord = 16;  // box i owns the word at 16 + 2i
constexpr int kStepRelayWord = 14;   // first number after the step relays (12-row types)
constexpr int kLatchEndOfL = 18;     // end of L, also the end of the latch relay area
constexpr int kDefaultPoints = 256;  // what the timer/counter dialog shows for erased points

int WordOfBox(int box) {
    return kFirstStartWord + 2 * box;
}

bool IsUType(const std::string& cpu) {
    return CpuIn(cpu, {"A2U", "A3U", "A4U"});
}

// Timer or counter points of a 12-row type: an erased count is read as the 256 the
// timer/counter dialog shows for it, and no count reaches past the device itself.
int PointsOf(const ParameterImage& image, int word, int deviceSize) {
    int points = image.GetParamWord(word);
    if (points == kErased) points = kDefaultPoints;
    return std::min(points, deviceSize);
}

// The three kinds of one timer block (low speed, high speed, integration), whose first
// numbers lie in words[0..2], into rows[0..2]. A kind runs from its first number to the first
// number of the next kind that exists, less one, or to the block's end.
void TimerBlock(const ParameterImage& image, const std::array<int, 3>& words,
                const std::array<int, 3>& rows, int blockStart, int blockEnd, LatchLimits& limits) {
    for (int k = 0; k < 3; ++k) {
        const int first = image.GetParamWord(words[k]);
        if (first == kErased) continue;
        int last = blockEnd;
        // An erased following kind has no timers, so this kind reaches on to the next kind
        // that has some: the partition 0 / 200 / erased gives low speed T0-199 and high speed
        // T200-255.
        for (int j = k + 1; j < 3; ++j) {
            const int next = image.GetParamWord(words[j]);
            if (next == kErased) continue;
            last = std::min(last, next - 1);
            break;
        }
        // A first number outside the block, or at or above the next kind's, leaves the kind
        // without timers: "--" rather than a range the partition does not provide.
        if (first < blockStart || first > last) continue;
        limits.row[rows[k]] = {first, last};
    }
}

LatchRowLimit Whole(int deviceSize) {
    return deviceSize > 0 ? LatchRowLimit{0, deviceSize - 1} : LatchRowLimit{};
}

}  // namespace

int LatchRowCount(const std::string& cpuType) {
    return CpuIn(cpuType, {"A2A", "A3A", "A2U", "A3U", "A4U"}) ? 12 : 8;
}

bool IsHexLatchRow(int row) {
    return row == 1 || row == 7;
}

bool IsHexLatchBox(int box) {
    return IsHexLatchRow(box / 2);
}

LatchLimits LatchRowLimits(const ParameterImage& image, const std::string& cpuType,
                           const DeviceMaxSizes& sizes) {
    LatchLimits limits;
    limits.rows = LatchRowCount(cpuType);
    const bool twoBlocks = limits.rows == 12;
    limits.row[0] = Whole(sizes['M']);
    limits.row[1] = Whole(sizes['B']);
    limits.row[6] = Whole(sizes['D']);
    limits.row[7] = Whole(sizes['W']);

    // The 8-row types have no point counts: their whole T and C ranges are in use.
    const bool u = IsUType(cpuType);
    const int timerPoints = twoBlocks ? PointsOf(image, u ? 2304 : 210, sizes['T']) : sizes['T'];
    const int counterPoints = twoBlocks ? PointsOf(image, u ? 2308 : 214, sizes['C']) : sizes['C'];

    // First block T0-255 (or up to the last timer when there are fewer), second block from
    // T256 to the last timer; a count of 256 or less leaves the second block without timers.
    TimerBlock(image, {192, 194, 196}, {2, 3, 4}, 0, std::min(255, timerPoints - 1), limits);
    if (twoBlocks) TimerBlock(image, {200, 202, 204}, {8, 9, 10}, 256, timerPoints - 1, limits);

    // The counters are split like the timers: C0-255 in row 5, C256 to the last counter in
    // row 11.
    if (counterPoints > 0) limits.row[5] = {0, std::min(255, counterPoints - 1)};
    if (twoBlocks && counterPoints > 256) limits.row[11] = {256, counterPoints - 1};
    return limits;
}

LatchLimits LatchRowLimits(const ParameterImage& image, const DialogContext& context) {
    return LatchRowLimits(image, context.CpuType, context.DeviceMaxSize);
}

std::string LatchRangeLabel(const LatchLimits& limits, int row) {
    const LatchRowLimit& limit = limits.row.at(static_cast<size_t>(row));
    // One "--" for a group that cannot be latched; " (-----) " would read as a typo.
    if (!limit.Exists()) return " (--) ";
    const bool hex = IsHexLatchRow(row);
    return " (" + LatchBoxText(limit.low, hex) + "-" + LatchBoxText(limit.high, hex) + ") ";
}

std::string LatchBoxText(int value, bool hex) {
    char buffer[16];
    std::snprintf(buffer, sizeof buffer, hex ? "%X" : "%d", value);
    return buffer;
}

long LatchBoxValue(const std::string& text, bool hex) {
    return hex ? HexToValue(PadZero4(Trim(text))) : ValueOf(text);
}

LatchFields ReadLatch(const ParameterImage& image, const DialogContext& context) {
    LatchFields fields;
    const int rows = LatchRowCount(context.CpuType);
    for (int r = 0; r < rows; ++r) {
        const int start = image.GetParamWord(WordOfBox(2 * r));
        if (start == kErased) continue;  // not latched: its end word means nothing
        const bool hex = IsHexLatchRow(r);
        int end = image.GetParamWord(WordOfBox(2 * r + 1));
        // The smallest type latches L from its start to the end of the relay area; its end
        // word is the step relay setting, so the box shows the last M device instead.
        if (r == 0 && context.CpuType == "A0J") end = context.DeviceMaxSize['M'] - 1;
        fields.Text1[2 * r] = LatchBoxText(start, hex);
        // A latched row shows its end as stored, an erased one too: the user sees the number
        // and the check refuses it, rather than an empty box hiding what the file holds.
        fields.Text1[2 * r + 1] = LatchBoxText(end, hex);
    }
    return fields;
}

void CheckLatchField(const LatchFields& fields, int box, int low, int high, ErrorTables& errors) {
    const int control = LatchControlNo(box);
    const std::string& text = fields.Text1.at(static_cast<size_t>(box));
    const std::string& partner = fields.Text1.at(static_cast<size_t>(box ^ 1));
    const bool hex = IsHexLatchBox(box);
    // A group that cannot be latched takes no number at all.
    if (low < 0 && high < 0) {
        if (!IsBlank(text)) errors.Record(8, control);
        return;
    }
    // A range needs both ends: one number alone is an unfinished range, so the empty box is
    // the one painted, telling the user what is missing.
    if (IsBlank(text)) {
        if (!IsBlank(partner)) errors.Record(8, control);
        return;
    }
    const long value = LatchBoxValue(text, hex);
    if (value < low || value > high) {
        errors.Record(7, control);
        return;
    }
    // Order last, and only between two numbers that are each valid, so that a box carries
    // one message and the device number is fixed before the order. A start above its end is
    // the error; start = end latches a single device.
    const bool isEnd = (box % 2) == 1;
    if (isEnd && !IsBlank(partner)) {
        const long start = LatchBoxValue(partner, hex);
        if (start >= low && start <= high && start > value) errors.Record(8, control);
    }
}

ErrorTables ValidateLatch(const LatchFields& fields, const LatchLimits& limits,
                          const DialogContext& context) {
    ErrorTables errors;
    const int rows = LatchRowCount(context.CpuType);
    for (int box = 0; box < 2 * rows; ++box) {
        const LatchRowLimit& limit = limits.row.at(static_cast<size_t>(box / 2));
        CheckLatchField(fields, box, limit.low, limit.high, errors);
    }
    return errors;
}

void WriteLatch(const LatchFields& fields, ParameterImage& image, const DialogContext& context) {
    const int rows = LatchRowCount(context.CpuType);
    const bool a0j = context.CpuType == "A0J";
    for (int box = 0; box < 2 * rows; ++box) {
        const std::string& text = fields.Text1.at(static_cast<size_t>(box));
        const int word = WordOfBox(box);
        if (word == kLatchEndOfL) {
            // The end of L is also the step relay boundary (S begins after it). An empty end
            // keeps whatever boundary is stored, erased or not, so that clearing the L row
            // never drops a step relay setting. On the smallest type the box only shows the
            // last M device; its step relay dialog owns the word, and only an erased word
            // under a latched L gets the shown end, which that dialog reads as "no step
            // relays" as well.
            if (IsBlank(text)) continue;
            if (a0j && (IsBlank(fields.Text1[0]) || !image.IsErased(word))) continue;
        }
        const long value = IsBlank(text) ? kErased : LatchBoxValue(text, IsHexLatchBox(box));
        image.SetParamWord(value, word);
    }
    if (rows == 12 && image.IsErased(kStepRelayWord)) image.SetParamWord(2048, kStepRelayWord);
}

LatchFields DefaultsLatch(const LatchFields& current, const DialogContext& context) {
    if (context.CpuType == "A0J") return current;
    LatchFields fields = current;
    const int rows = LatchRowCount(context.CpuType);
    for (int box = 0; box < 2 * rows; ++box) fields.Text1[static_cast<size_t>(box)].clear();
    fields.Text1[0] = "1000";
    fields.Text1[1] = "2047";
    return fields;
}

void ApplyLatchPattern(LatchFields& fields, int index) {
    static const char* const kPatterns[kLatchPatterns][16] = {
        {"", "", "", "", "", "", "", "", "", "", "", "", "", "", "", ""},
        {"1024", "2047", "200", "3FF", "40", "79", "100", "119", "124", "127", "64", "127", "256",
         "511", "200", "3FF"},
        {"0", "2047", "0", "3FF", "0", "79", "80", "119", "120", "127", "0", "127", "0", "511", "0",
         "3FF"},
    };
    const auto& pattern = kPatterns[std::clamp(index, 0, kLatchPatterns - 1)];
    for (size_t box = 0; box < 16; ++box) fields.Text1[box] = pattern[box];
}

}  // namespace gantrix
