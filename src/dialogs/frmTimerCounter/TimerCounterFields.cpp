// SPDX-License-Identifier: Apache-2.0
#include "dialogs/frmTimerCounter/TimerCounterFields.h"

#include <algorithm>
#include <cstdio>

#include "common/ControlNumbers.h"
#include "common/InputRoutines.h"

namespace gantrix {
namespace {

constexpr int kDeviceNoOutOfRange = 7;

// Boundary words of the two timer blocks, low speed, high speed, integration.
constexpr int kLowBlockWords[3] = {192, 194, 196};
constexpr int kHighBlockWords[3] = {200, 202, 204};
constexpr int kText3Word = 198;

// Latch pairs (first, last) of the latch table that follow the partition.
constexpr int kLowBlockLatch[3] = {24, 28, 32};
constexpr int kHighBlockLatch[3] = {48, 52, 56};
constexpr int kCounterLatch = 36;
constexpr int kSecondCounterLatch = 60;

// Timers and counters above 255 take their set values from the set-value device.
constexpr long kPointsWithoutDevice = 256;

int ControlNo(const std::string& control) {
    return GetControlNo("frmTimerCounter", control);
}
int Text1No(int index) {
    return ControlNo("Text1(" + std::to_string(index) + ")");
}
int Text2No(int index) {
    return ControlNo("Text2(" + std::to_string(index) + ")");
}

std::string Shown(const ParameterImage& image, int index) {
    const int word = image.GetParamWord(index);
    return word == kErased ? std::string() : std::to_string(word);
}

void StoreField(const std::string& text, int index, ParameterImage& image) {
    image.SetParamWord(text.empty() ? kErased : ValueOf(text), index);
}

void ErasePair(ParameterImage& image, int first) {
    image.SetParamWord(kErased, first);
    image.SetParamWord(kErased, first + 2);
}

// Brings a latched pair into first..last. Words below the range are raised to its first
// number as words beyond it are lowered to its last, so that the latch table never holds a
// row its own dialog would reject. An erased end word stays erased; a range that cannot
// hold any device unlatches the pair.
void FitPair(ParameterImage& image, int pair, long first, long last) {
    if (last < first) {
        ErasePair(image, pair);
        return;
    }
    if (image.IsErased(pair)) return;
    for (int index : {pair, pair + 2}) {
        const int word = image.GetParamWord(index);
        if (word == kErased) continue;
        const long fitted = std::clamp<long>(word, first, last);
        if (fitted != word) image.SetParamWord(fitted, index);
    }
}

// A kind runs from its first number to the next present kind's first number less one, the
// last kind to the end of its block; a kind without a first number has no latch.
void FitBlock(const TimerCounterFields& f, ParameterImage& image, const int (&fields)[3],
              const int (&pairs)[3], long blockEnd) {
    for (int k = 0; k < 3; ++k) {
        const std::string& text = f.Text1[fields[k]];
        if (text.empty()) {
            ErasePair(image, pairs[k]);
            continue;
        }
        long last = blockEnd;
        for (int j = k + 1; j < 3; ++j) {
            if (!f.Text1[fields[j]].empty()) {
                last = ValueOf(f.Text1[fields[j]]) - 1;
                break;
            }
        }
        FitPair(image, pairs[k], ValueOf(text), last);
    }
}

// The span of boundary fields[k] within its block. The low-speed kind opens each block, so
// its first number may be the block start; the high-speed and integration kinds start at
// least one step above the block start, or above the preceding present kind. Every
// boundary may stay empty: that kind then has no timers in the block.
struct Span {
    long lowest;
    long highest;
};
Span SpanOf(const TimerCounterFields& f, const int (&fields)[3], int k, long blockStart,
            long fixedStart, long blockEnd) {
    Span span{k == 0 ? blockStart : fixedStart, blockEnd};
    for (int j = k - 1; j >= 0; --j) {
        if (!f.Text1[fields[j]].empty()) {
            span.lowest = ValueOf(f.Text1[fields[j]]) + 8;
            break;
        }
    }
    for (int j = k + 1; j < 3; ++j) {
        if (!f.Text1[fields[j]].empty()) {
            // No kind starts past the end of its block, whatever follows it.
            span.highest = std::min(ValueOf(f.Text1[fields[j]]) - 1, blockEnd);
            break;
        }
    }
    return span;
}

// Defined with the other field checks below.
bool StartNumberCheck(ErrorTables& errors, int control, long value, long lowest, long highest);
void SetLatch(const TimerCounterFields& fields, ParameterImage& image,
              const DialogContext& context);

// Checks a set-value device and its start number; true with start set when a device with a
// valid start number is chosen.
bool CheckDevice(ErrorTables& errors, const std::string& letter, const std::string& startText,
                 int comboNo, int startNo, const DialogContext& context, long& start) {
    if (!IsDeviceLetter(letter)) {
        if (!letter.empty()) {
            errors.Record(kMessageInvalidSetting, comboNo);
        } else if (!startText.empty()) {
            // A start number means nothing without its device.
            errors.Record(kMessageInputAValue, comboNo);
        }
        return false;
    }
    if (startText.empty()) {
        errors.Record(kMessageInputAValue, startNo);
        return false;
    }
    start = StartNumberOf(letter, startText);
    return StartNumberCheck(errors, startNo, start, kLowestStartNumber,
                            DeviceSizeOf(context, letter) - 1);
}

// Timers (counters) above 255 keep their set values in the set-value device, one word each
// from its start number: more than 256 points need a device, and the words must fit in it.
void CheckPointsWithDevice(ErrorTables& errors, long points, bool pointsValid,
                           const std::string& letter, bool deviceValid, long start, int pointsNo,
                           const DialogContext& context) {
    if (!pointsValid || points <= kPointsWithoutDevice) return;
    if (!IsDeviceLetter(letter)) {
        if (letter.empty()) errors.Record(kMessageInvalidSetting, pointsNo);
        return;
    }
    if (deviceValid && start + (points - kPointsWithoutDevice) > DeviceSizeOf(context, letter)) {
        errors.Record(kMessageInvalidSetting, pointsNo);
    }
}

}  // namespace

TimerGroup TimerGroupOf(const std::string& cpu) {
    if (CpuIn(cpu, {"A0H", "A1S", "A1 ", "A2 ", "A3 "})) return TimerGroup::Small;
    if (CpuIn(cpu, {"A2C", "A3H"})) return TimerGroup::SmallFixed;
    if (CpuIn(cpu, {"A2A", "A3A"})) return TimerGroup::ExtendedA;
    if (CpuIn(cpu, {"A2U", "A3U", "A4U"})) return TimerGroup::ExtendedU;
    return TimerGroup::None;
}

bool IsExtended(TimerGroup group) {
    return group == TimerGroup::ExtendedA || group == TimerGroup::ExtendedU;
}

namespace {

// The U types keep their point counts and devices only from 2304; words 210..216 belong to
// the A types' layout and are left alone for them.
PointDeviceWords PointDeviceWordsOf(TimerGroup group) {
    if (group == TimerGroup::ExtendedA) return {210, 212, 214, 216};
    if (group == TimerGroup::ExtendedU) return {2304, 2306, 2308, 2310};
    return {};
}

}  // namespace

bool IsDeviceLetter(const std::string& letter) {
    return letter == "D" || letter == "W" || letter == "R";
}

namespace {

// Device codes of the set-value devices, 65535 being no device:
//   ExtendedA: W 4096..8191, D 8192..14335, R 16384 and above
//   ExtendedU: W 5120..13311, D 13312..21503, R 32768 and above
struct SetValueRange {
    const char* letter;
    long base;
    long last;
};
constexpr SetValueRange kRangesA[] = {
    {"W", 4096, 8191}, {"D", 8192, 14335}, {"R", 16384, kErased - 1}};
constexpr SetValueRange kRangesU[] = {
    {"W", 5120, 13311}, {"D", 13312, 21503}, {"R", 32768, kErased - 1}};

const SetValueRange* RangesOf(TimerGroup group) {
    if (group == TimerGroup::ExtendedA) return kRangesA;
    if (group == TimerGroup::ExtendedU) return kRangesU;
    return nullptr;
}

// -1 for no device.
int DeviceBase(TimerGroup group, const std::string& letter) {
    const SetValueRange* ranges = RangesOf(group);
    if (ranges == nullptr) return -1;
    for (int i = 0; i < 3; ++i) {
        if (letter == ranges[i].letter) return static_cast<int>(ranges[i].base);
    }
    return -1;
}

struct DeviceStart {
    std::string letter;  // "" when the code lies in no range
    std::string start;   // W in hexadecimal capitals, D and R in decimal
};

DeviceStart DecodeDeviceCode(TimerGroup group, int code) {
    const SetValueRange* ranges = RangesOf(group);
    if (ranges == nullptr || code == kErased) return {};
    for (int i = 0; i < 3; ++i) {
        if (code >= ranges[i].base && code <= ranges[i].last) {
            return {ranges[i].letter, FormatStartNumber(ranges[i].letter, code - ranges[i].base)};
        }
    }
    return {};
}

// The code of a letter and start text; 65535 when the letter is no device.
long EncodeDeviceCode(TimerGroup group, const std::string& letter, const std::string& start) {
    const int base = DeviceBase(group, letter);
    if (base < 0 || start.empty()) return kErased;
    return base + StartNumberOf(letter, start);
}

}  // namespace

long StartNumberOf(const std::string& letter, const std::string& text) {
    if (letter == "W") {
        TextBoxState box{text, 0};
        CheckHexText(box);  // trimmed and in capitals, as the box shows it
        return HexToValue(PadZero4(box.text));
    }
    return ValueOf(text);
}

std::string FormatStartNumber(const std::string& letter, long value) {
    if (letter != "W") return std::to_string(value);
    char buffer[16];
    std::snprintf(buffer, sizeof buffer, "%lX", static_cast<unsigned long>(value));
    return buffer;
}

int DeviceSizeOf(const DialogContext& context, const std::string& letter) {
    if (!IsDeviceLetter(letter)) return 0;
    return context.DeviceMaxSize[letter[0]];
}

bool NoPoints(const std::string& pointsText) {
    return pointsText.empty() || ValueOf(pointsText) == 0;
}

std::string CleanStartNumber(const std::string& letter, const std::string& text) {
    TextBoxState box{text, 0};
    if (letter == "W") {
        CheckHexText(box);
    } else {
        CheckDecimalText(box);
    }
    return box.text;
}

void ApplyDeviceRule(TimerCounterFields& f, bool timers, TimerGroup group) {
    std::string& letter = timers ? f.Combo1 : f.Combo2;
    std::string& start = timers ? f.Text1[7] : f.Text2[1];
    const std::string& points = timers ? f.Text1[0] : f.Text2[0];
    if (letter == "d" || letter == "w" || letter == "r")
        letter[0] = static_cast<char>(letter[0] - 32);
    // No points, no set values to store.
    if (IsExtended(group) && NoPoints(points)) letter.clear();
    // A start number typed for W that is no decimal number goes with a change to D or R.
    start = IsDeviceLetter(letter) ? CleanStartNumber(letter, start) : std::string();
}

void ApplyTimerPointRule(TimerCounterFields& f) {
    if (NoPoints(f.Text1[0])) {
        for (int i = 1; i <= 7; ++i) f.Text1[i].clear();
        f.Combo1.clear();
    } else if (ValueOf(f.Text1[0]) <= kPointsWithoutDevice) {
        for (int i = 4; i <= 6; ++i) f.Text1[i].clear();
    }
}

void ApplyCounterPointRule(TimerCounterFields& f) {
    if (NoPoints(f.Text2[0])) {
        f.Combo2.clear();
        f.Text2[1].clear();
    }
}

TimerCounterFields ReadTimerCounter(const ParameterImage& image, const DialogContext& context) {
    TimerCounterFields f;
    const TimerGroup group = TimerGroupOf(context.CpuType);
    if (group == TimerGroup::None) return f;
    if (!IsExtended(group)) {
        for (int k = 0; k < 3; ++k) f.Text1[1 + k] = Shown(image, kLowBlockWords[k]);
        if (group == TimerGroup::Small) f.Text3 = Shown(image, kText3Word);
        return f;
    }
    // An erased point count is shown as 256 without being written. The defaults the load
    // gives erased boundary words (192 = 0, 196 = 256, 200 = 256, 204 = 2048) change nothing
    // shown, as an erased boundary shows empty; nothing of the load reaches the image.
    const PointDeviceWords words = PointDeviceWordsOf(group);
    int timerPoints = image.GetParamWord(words.timerPoints);
    if (timerPoints == kErased) timerPoints = 256;
    f.Text1[0] = std::to_string(timerPoints);
    if (f.Text1[0] != "0") {
        for (int k = 0; k < 3; ++k) f.Text1[1 + k] = Shown(image, kLowBlockWords[k]);
    }
    if (timerPoints >= 257) {
        for (int k = 0; k < 3; ++k) f.Text1[4 + k] = Shown(image, kHighBlockWords[k]);
    }
    const DeviceStart timerDevice = DecodeDeviceCode(group, image.GetParamWord(words.timerDevice));
    f.Combo1 = timerDevice.letter;
    f.Text1[7] = timerDevice.start;

    int counterPoints = image.GetParamWord(words.counterPoints);
    if (counterPoints == kErased) counterPoints = 256;
    f.Text2[0] = std::to_string(counterPoints);
    const DeviceStart counterDevice =
        DecodeDeviceCode(group, image.GetParamWord(words.counterDevice));
    f.Combo2 = counterDevice.letter;
    f.Text2[1] = counterDevice.start;
    return f;
}

namespace {

// The three field checks. Each marks at most one message against control and returns true
// when the value passes.
//
// Count check: point counts (boundary false) and T256-2047 boundaries (boundary true).
bool CountCheck(ErrorTables& errors, int control, long value, long lowest, long highest,
                bool boundary, long timerSize) {
    if (boundary) {
        if (value < 0 || value > timerSize) {
            errors.Record(kDeviceNoOutOfRange, control);
            return false;
        }
        if (value < lowest || value > highest) {
            errors.Record(kMessageInvalidSetting, control);
            return false;
        }
    } else if (value < lowest || value > highest) {
        errors.Record(kMessageOutOfRange, control);
        return false;
    }
    if (value % 16 != 0) {
        errors.Record(kMessageInvalidSetting, control);
        return false;
    }
    return true;
}

// Boundary check: T0-255 boundaries and Text3.
bool BoundaryCheck(ErrorTables& errors, int control, long value, long lowest, long highest,
                   long timerSize) {
    if (value < 0 || value > timerSize - 1) {
        errors.Record(kDeviceNoOutOfRange, control);
        return false;
    }
    if (value < lowest || value > highest || value % 8 != 0) {
        errors.Record(kMessageInvalidSetting, control);
        return false;
    }
    return true;
}

// Start-number check of a set-value device.
bool StartNumberCheck(ErrorTables& errors, int control, long value, long lowest, long highest) {
    if (value > highest) {
        errors.Record(kDeviceNoOutOfRange, control);
        return false;
    }
    if (value < lowest) {
        if (!errors.ControlHasError(control)) errors.Record(kDeviceNoOutOfRange, control);
        return false;
    }
    return true;
}

}  // namespace

ErrorTables ValidateTimerCounter(const TimerCounterFields& f, const DialogContext& context) {
    ErrorTables errors;
    const TimerGroup group = TimerGroupOf(context.CpuType);
    if (group == TimerGroup::None) return errors;
    const bool extended = IsExtended(group);
    const long timerSize = context.DeviceMaxSize['T'];

    // The timer points; the blocks end where the points do (when the count is usable).
    long timerPoints = 0;
    bool timerPointsValid = false;
    if (extended) {
        if (f.Text1[0].empty()) {
            errors.Record(kMessageInputAValue, Text1No(0));
        } else {
            timerPoints = ValueOf(f.Text1[0]);
            timerPointsValid =
                CountCheck(errors, Text1No(0), timerPoints, 0, timerSize, false, timerSize);
        }
    }
    const long lastTimer = timerPointsValid ? timerPoints - 1 : timerSize - 1;

    static constexpr int kLowFields[3] = {1, 2, 3};
    static constexpr int kHighFields[3] = {4, 5, 6};
    for (int k = 2; k >= 0; --k) {
        const std::string& text = f.Text1[kLowFields[k]];
        if (text.empty()) continue;
        const Span span = SpanOf(f, kLowFields, k, 0, 8, std::min<long>(255, lastTimer));
        BoundaryCheck(errors, Text1No(kLowFields[k]), ValueOf(text), span.lowest, span.highest,
                      timerSize);
    }
    if (!extended) {
        // Text3 is one more T0-255 timer number; no neighbour bounds it.
        if (group == TimerGroup::Small && !f.Text3.empty()) {
            BoundaryCheck(errors, ControlNo("Text3"), ValueOf(f.Text3), 0, timerSize - 1,
                          timerSize);
        }
        return errors;
    }
    for (int k = 2; k >= 0; --k) {
        const std::string& text = f.Text1[kHighFields[k]];
        if (text.empty()) continue;
        const Span span = SpanOf(f, kHighFields, k, 256, 272, lastTimer);
        CountCheck(errors, Text1No(kHighFields[k]), ValueOf(text), span.lowest, span.highest, true,
                   timerSize);
    }
    long timerStart = 0;
    const bool timerDeviceValid = CheckDevice(errors, f.Combo1, f.Text1[7], ControlNo("Combo1"),
                                              Text1No(7), context, timerStart);

    const long counterSize = context.DeviceMaxSize['C'];
    long counterPoints = 0;
    bool counterPointsValid = false;
    if (f.Text2[0].empty()) {
        errors.Record(kMessageInputAValue, Text2No(0));
    } else {
        counterPoints = ValueOf(f.Text2[0]);
        counterPointsValid =
            CountCheck(errors, Text2No(0), counterPoints, 0, counterSize, false, counterSize);
    }
    long counterStart = 0;
    const bool counterDeviceValid = CheckDevice(errors, f.Combo2, f.Text2[1], ControlNo("Combo2"),
                                                Text2No(1), context, counterStart);

    CheckPointsWithDevice(errors, timerPoints, timerPointsValid, f.Combo1, timerDeviceValid,
                          timerStart, Text1No(0), context);
    CheckPointsWithDevice(errors, counterPoints, counterPointsValid, f.Combo2, counterDeviceValid,
                          counterStart, Text2No(0), context);
    return errors;
}

void WriteTimerCounter(const TimerCounterFields& f, ParameterImage& image,
                       const DialogContext& context) {
    const TimerGroup group = TimerGroupOf(context.CpuType);
    if (group == TimerGroup::None) return;
    for (int k = 0; k < 3; ++k) StoreField(f.Text1[1 + k], kLowBlockWords[k], image);
    if (group == TimerGroup::Small) StoreField(f.Text3, kText3Word, image);
    if (IsExtended(group)) {
        for (int k = 0; k < 3; ++k) StoreField(f.Text1[4 + k], kHighBlockWords[k], image);
        const PointDeviceWords words = PointDeviceWordsOf(group);
        StoreField(f.Text1[0], words.timerPoints, image);
        image.SetParamWord(EncodeDeviceCode(group, f.Combo1, f.Text1[7]), words.timerDevice);
        StoreField(f.Text2[0], words.counterPoints, image);
        image.SetParamWord(EncodeDeviceCode(group, f.Combo2, f.Text2[1]), words.counterDevice);
    }
    SetLatch(f, image, context);
}

namespace {

// Fits the timer latch pairs (24..34, 48..58) and counter latch pairs (36/38, 60/62) of the
// latch table to the partition in fields.
void SetLatch(const TimerCounterFields& f, ParameterImage& image, const DialogContext& context) {
    const TimerGroup group = TimerGroupOf(context.CpuType);
    if (group == TimerGroup::None) return;
    const long timerSize = context.DeviceMaxSize['T'];
    const bool extended = IsExtended(group);
    const long timerPoints = extended ? ValueOf(f.Text1[0]) : timerSize;

    static constexpr int kLowFields[3] = {1, 2, 3};
    static constexpr int kHighFields[3] = {4, 5, 6};
    FitBlock(f, image, kLowFields, kLowBlockLatch, std::min<long>(255, timerPoints - 1));
    if (!extended) return;  // their counters do not change here
    if (timerPoints <= 256) {
        // No low-speed or high-speed timers above T255.
        for (int i = 48; i <= 55; ++i) image[i] = 255;
    } else {
        FitBlock(f, image, kHighFields, kHighBlockLatch, timerPoints - 1);
    }
    // The counter latch rows follow the counter points as the timer rows follow the
    // partition: C0-255 up to the last counter, C256 and above only when there are such.
    const long counterPoints = ValueOf(f.Text2[0]);
    FitPair(image, kCounterLatch, 0, std::min<long>(255, counterPoints - 1));
    FitPair(image, kSecondCounterLatch, 256, counterPoints - 1);
}

}  // namespace

TimerCounterFields DefaultsTimerCounter(const TimerCounterFields& current,
                                        const DialogContext& context) {
    const TimerGroup group = TimerGroupOf(context.CpuType);
    if (group == TimerGroup::None) return current;
    TimerCounterFields f = current;
    f.Text1[1] = "0";
    f.Text1[2] = "200";
    f.Text1[3].clear();
    if (group == TimerGroup::Small) f.Text3.clear();
    if (IsExtended(group)) {
        f.Text1[0] = "256";
        for (int i = 4; i <= 7; ++i) f.Text1[i].clear();
        f.Combo1.clear();
        f.Text2[0] = "256";
        f.Text2[1].clear();
        f.Combo2.clear();
    }
    return f;
}

}  // namespace gantrix
