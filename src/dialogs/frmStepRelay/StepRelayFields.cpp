// SPDX-License-Identifier: Apache-2.0
#include "dialogs/frmStepRelay/StepRelayFields.h"

namespace gantrix {

StepRelayFields ReadStepRelay(const ParameterImage& image) {
    return {image.GetParamWord(kLatchRelayEndWord) == kStepRelayLatchEnd};
}

void WriteStepRelay(const StepRelayFields& fields, ParameterImage& image,
                    const DialogContext& context) {
    image.SetParamWord(fields.StepRelayFlag ? kStepRelayLatchEnd : context.DeviceMaxSize['M'] - 1,
                       kLatchRelayEndWord);
}

}  // namespace gantrix
