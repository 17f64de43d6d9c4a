// SPDX-License-Identifier: Apache-2.0
#include "platform/rkpara/rkpara.h"

#include <sys/stat.h>

#include "platform/rkcmnt/DeviceTable.h"
#include "platform/rkcmnt/SetupState.h"

extern "C" int16_t RkCheckIoAssign(unsigned char* slots, unsigned char* /*networkBlock*/) {
    const auto* sizes =
        gantrix::platform::FindDeviceSizes(gantrix::platform::CurrentSetup().cpuType);
    long points = 0;
    for (int slot = 0; slot < 128; ++slot) {
        const int kind = slots[slot] >> 4;
        const int step = slots[slot] & 0x0F;
        if (kind >= 1 && kind <= 4 && step <= 4) points += 16L * step;
    }
    const long limit = sizes ? sizes->IoPoints : 0;
    return points > limit ? -100 : 0;
}

extern "C" int16_t RkCheckMicro(char* path, int16_t /*mainWord*/, int16_t /*microWord*/) {
    struct stat info {};
    if (path == nullptr || ::stat(path, &info) != 0) return 0;
    return S_ISREG(info.st_mode) && info.st_size > 0 ? 1 : 0;
}
