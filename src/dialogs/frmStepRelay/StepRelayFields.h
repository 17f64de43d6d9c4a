// SPDX-License-Identifier: Apache-2.0
#pragma once
// Step relays of the smallest CPU: the end of the latch relay area (word 18, the end of the
// latch row "L") is 1535 when the relays above it serve as step relays S, otherwise the last
// internal relay (the number of M devices less one).

#include "common/DialogContext.h"
#include "store/ParameterImage.h"

namespace gantrix {

inline constexpr int kLatchRelayEndWord = 18;
inline constexpr int kStepRelayLatchEnd = 1535;  // bytes 255, 5

struct StepRelayFields {
    bool StepRelayFlag = false;
    bool operator==(const StepRelayFields&) const = default;
};

StepRelayFields ReadStepRelay(const ParameterImage& image);
// Writes word 18 and nothing else.
void WriteStepRelay(const StepRelayFields& fields, ParameterImage& image,
                    const DialogContext& context);

}  // namespace gantrix
