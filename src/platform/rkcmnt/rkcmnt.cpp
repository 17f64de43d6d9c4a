// SPDX-License-Identifier: Apache-2.0
#include "platform/rkcmnt/rkcmnt.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "platform/rkcmnt/DefaultImage.h"
#include "platform/rkcmnt/DeviceTable.h"
#include "platform/rkcmnt/SetupState.h"

namespace gantrix::platform {

SetupState& CurrentSetup() {
    static SetupState state;
    return state;
}

namespace {

std::string DirectoryOf(const std::string& path) {
    const auto slash = path.find_last_of('/');
    return slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
}

}  // namespace
}  // namespace gantrix::platform

using gantrix::platform::CurrentSetup;

extern "C" int32_t RkLoadParameter(char* path, unsigned char* image) {
    constexpr std::streamsize kSize = 3072;
    struct stat info {};
    if (path == nullptr || ::stat(path, &info) != 0 || !S_ISREG(info.st_mode)) {
        return kRkLoadMissing;
    }
    if (info.st_size != kSize) return kRkLoadWrongSize;
    std::ifstream in(path, std::ios::binary);
    std::vector<char> bytes(kSize);
    if (!in || !in.read(bytes.data(), kSize)) return kRkLoadReadError;
    std::memcpy(image, bytes.data(), kSize);
    CurrentSetup().loadedDir = gantrix::platform::DirectoryOf(path);
    return kRkLoadOk;
}

extern "C" int32_t RkGetFileParameter(char* /*cpuText*/, int16_t* /*value*/,
                                      int16_t* endPositions) {
    for (int i = 0; i < 4; ++i) endPositions[i] = 0;
    std::ifstream in(CurrentSetup().loadedDir + "program.end");
    if (!in) return 0;
    for (int i = 0; i < 4; ++i) {
        long steps = 0;
        if (!(in >> steps)) break;
        // The step counts of an A-series program fit a 16-bit integer; clamp anything else.
        if (steps < 0) steps = 0;
        if (steps > 32767) steps = 32767;
        endPositions[i] = static_cast<int16_t>(steps);
    }
    return 0;
}

extern "C" int32_t RkSetupGlobal(char* projectDir, char* cpuType, int16_t /*cpuCode*/,
                                 unsigned char* image) {
    auto& setup = CurrentSetup();
    setup.projectDir = projectDir ? projectDir : "";
    setup.cpuType = cpuType ? cpuType : "";
    setup.image = image;
    return 0;
}

extern "C" int32_t RkGetDeviceMaxSize(char* device) {
    const auto* sizes = gantrix::platform::FindDeviceSizes(CurrentSetup().cpuType);
    if (sizes == nullptr || device == nullptr || device[0] == '\0' || device[1] != '\0') {
        return 0;
    }
    return sizes->Of(device[0]).value_or(0);
}

extern "C" int32_t RkSetParameter2Default(char* /*componentDir*/, char* cpuBuffer,
                                          int16_t /*cpuCode*/, unsigned char* image) {
    if (cpuBuffer == nullptr) return 1;
    return gantrix::platform::BuildDefaultImage(cpuBuffer, image) ? 0 : 1;
}
