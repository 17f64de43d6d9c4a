// SPDX-License-Identifier: Apache-2.0
#pragma once
// Timer/counter partition: how T is divided into low-speed, high-speed and integration
// timers, the timer and counter point counts and the word devices holding the set values
// of the timers and counters above 255; and the refitting of the timer latch ranges to a
// new partition.
//
// Image words (16-bit, 65535 = not set):
//   192 194 196  first low-speed / high-speed / integration timer in T0-255   (all but A0J)
//   198          the extra T0-255 timer number of the small group (Text3)
//   200 202 204  the same three boundaries in T256-2047                       (extended)
//   210 212 214 216    timer points, timer device, counter points, counter device (A2A A3A)
//   2304 2306 2308 2310  the same for the U types
// A set-value device is stored as a device code: the start number plus the device's base.

#include <array>
#include <string>

#include "common/DialogContext.h"
#include "common/ErrorTables.h"
#include "store/ParameterImage.h"

namespace gantrix {

// The controls' contents, indexed like the control arrays.
struct TimerCounterFields {
    // 0 timer points, 1..3 boundaries in T0-255, 4..6 in T256-2047, 7 timer device start
    std::array<std::string, 8> Text1;
    // 0 counter points, 1 counter device start
    std::array<std::string, 2> Text2;
    std::string Text3;   // the extra T0-255 timer number of the small group
    std::string Combo1;  // timer set-value device letter: "D", "W", "R" or ""
    std::string Combo2;  // counter set-value device letter

    bool operator==(const TimerCounterFields&) const = default;
};

// How the dialog treats a CPU type.
enum class TimerGroup {
    None,        // A0J: the dialog changes nothing
    Small,       // A0H A1S A1 A2 A3: T0-255 boundaries and Text3
    SmallFixed,  // A2C A3H: T0-255 boundaries only
    ExtendedA,   // A2A A3A: points, both boundary blocks, devices in the main block
    ExtendedU,   // A2U A3U A4U: as ExtendedA, points and devices from 2304
};

TimerGroup TimerGroupOf(const std::string& cpuType);
bool IsExtended(TimerGroup group);

// The image words of the point counts and set-value devices of an extended group; all -1
// for the other groups.
struct PointDeviceWords {
    int timerPoints = -1;
    int timerDevice = -1;
    int counterPoints = -1;
    int counterDevice = -1;
};

// "D", "W" or "R": the set-value devices.
bool IsDeviceLetter(const std::string& letter);
// A start number's value: hexadecimal for W, decimal otherwise.
long StartNumberOf(const std::string& letter, const std::string& text);
std::string FormatStartNumber(const std::string& letter, long value);
// The points of a set-value device (DeviceMaxSize); 0 for no device.
int DeviceSizeOf(const DialogContext& context, const std::string& letter);

TimerCounterFields ReadTimerCounter(const ParameterImage& image, const DialogContext& context);
ErrorTables ValidateTimerCounter(const TimerCounterFields& fields, const DialogContext& context);
// Writes the group's words, then fits the latch ranges (SetLatch).
void WriteTimerCounter(const TimerCounterFields& fields, ParameterImage& image,
                       const DialogContext& context);
// The Clear values; for A0J the fields stay as they are.
TimerCounterFields DefaultsTimerCounter(const TimerCounterFields& current,
                                        const DialogContext& context);

// The lowest start number accepted for a set-value device: any D, W or R number may begin the
// set-value area, as in a ladder program; only its end is bounded (by the device's size).
inline constexpr long kLowestStartNumber = 0;

// What a focus change re-applies: an empty or zero timer count empties Text1(1)..Text1(7)
// and Combo1, a count of 1 to 256 empties Text1(4)..Text1(6); an empty or zero counter
// count empties Combo2 and Text2(1). Extended groups only.
void ApplyTimerPointRule(TimerCounterFields& fields);
void ApplyCounterPointRule(TimerCounterFields& fields);
// A point count text that leaves no timers or counters.
bool NoPoints(const std::string& pointsText);

// A start number box after a change: cleaned as hexadecimal for W, decimal otherwise.
std::string CleanStartNumber(const std::string& letter, const std::string& text);

// What a change of a device letter (timers: Combo1 and Text1(7); counters: Combo2 and
// Text2(1)) re-applies: a lower-case letter in capitals; on the extended groups no letter
// while the point count leaves no timers (counters); without a device letter no start
// number, with one the start number cleaned for it.
void ApplyDeviceRule(TimerCounterFields& fields, bool timers, TimerGroup group);

}  // namespace gantrix
