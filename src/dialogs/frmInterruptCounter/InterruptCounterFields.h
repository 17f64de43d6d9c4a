// SPDX-License-Identifier: Apache-2.0
#pragma once
// Interrupt counters: counter C(224 + k) counts interrupt I k, k = 0..31, when bit k mod 8 of
// image byte 188 + k / 8 is 0. A set bit leaves the counter an ordinary one, so an erased
// image has no interrupt counters.

#include <array>
#include <string>

#include "store/ParameterImage.h"

namespace gantrix {

inline constexpr int kInterruptCounters = 32;
inline constexpr int kInterruptCounterBytes = 188;  // 188..191
inline constexpr int kFirstInterruptCounter = 224;

struct InterruptCounterFields {
    // Ticked: C(224 + k) is an interrupt counter.
    std::array<bool, kInterruptCounters> PointerFlag{};
    bool operator==(const InterruptCounterFields&) const = default;
};

InterruptCounterFields ReadInterruptCounter(const ParameterImage& image);
// Writes bytes 188..191 and nothing else.
void WriteInterruptCounter(const InterruptCounterFields& fields, ParameterImage& image);
// Clear: no interrupt counters.
InterruptCounterFields DefaultsInterruptCounter();

// The caption of flag k: "I" and k ("I0".."I31").
std::string PointerFlagCaption(int k);
// The label beside flag k: " ( C 224 ) " when ticked, " (       ) " (the same width) when not.
std::string PointerLabel(int k, bool ticked);

}  // namespace gantrix
