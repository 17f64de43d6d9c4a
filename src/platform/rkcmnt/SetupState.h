// SPDX-License-Identifier: Apache-2.0
#pragma once
// What RkSetupGlobal and RkLoadParameter remember, shared by the stand-in libraries.

#include <string>

namespace gantrix::platform {

struct SetupState {
    std::string projectDir;  // as given to RkSetupGlobal
    std::string cpuType;     // as given to RkSetupGlobal
    std::string loadedDir;   // directory of the last file RkLoadParameter read, with separator
    unsigned char* image = nullptr;
};

SetupState& CurrentSetup();

}  // namespace gantrix::platform
