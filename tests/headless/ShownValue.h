// SPDX-License-Identifier: Apache-2.0
#pragma once
// The value show gives a key of an image, as the headless tests compare it.

#include <string>

#include "headless/Headless.h"

namespace gantrix::headless {

inline std::string ShownValue(const ParameterImage& image, const DialogContext& context,
                              const std::string& key) {
    for (const ShownDialog& dialog : Show(image, context))
        for (const auto* listed : {&dialog.actions, &dialog.fields})
            for (const ShownField& f : *listed)
                if (f.key == key) return f.value;
    return "(no such field)";
}

}  // namespace gantrix::headless
