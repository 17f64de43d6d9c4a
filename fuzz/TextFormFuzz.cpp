// SPDX-License-Identifier: Apache-2.0
// The text form's reader and import: the first byte picks the CPU type, the rest is the text
// imported into a new project of that type. Whatever the text, import either refuses it or
// gives an image that passes every check and whose text form reads back to it.

#include "fuzz/FuzzSupport.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    using namespace gantrix;
    const fuzz::Project& p = fuzz::ProjectFor(data[0]);
    const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
    const headless::ImportOutcome outcome = headless::ImportText(text, p.image, p.context);
    if (outcome.image) fuzz::ExpectSaveable(p, *outcome.image, text);
    return 0;
}
