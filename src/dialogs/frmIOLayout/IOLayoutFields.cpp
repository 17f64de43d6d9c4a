// SPDX-License-Identifier: Apache-2.0
#include "dialogs/frmIOLayout/IOLayoutFields.h"

#include <algorithm>
#include <vector>

#include "dialogs/frmTypeNameSet/TypeNameSetFields.h"
#include "platform/rkpara/rkpara.h"

namespace gantrix {
namespace {

constexpr const char* kKinds = "SXYF";
constexpr const char* kCounts[] = {"0", "16", "32", "48", "64"};
constexpr int kNetworkBlockAt = 1024;

// "S0".."F64" to the slot byte: the kind (S 16, X 32, Y 48, F 64) plus the point step ("0"
// 0, "16" 1, "32" 2, "48" 3, "64" 4). A code without a kind letter is 0; a kind letter with
// any other count keeps the bare kind.
uint8_t EncodeSlotCode(const std::string& code) {
    if (code.empty()) return 0;
    const char* kind = std::char_traits<char>::find(kKinds, 4, code[0]);
    if (kind == nullptr) return 0;
    int byte = 16 * (static_cast<int>(kind - kKinds) + 1);
    const std::string count = code.substr(1);
    for (int step = 0; step < 5; ++step) {
        if (count == kCounts[step]) byte += step;
    }
    return static_cast<uint8_t>(byte);
}

// The slot byte to its code: kind letter then count. A high nibble of 0 gives "" whatever
// the low nibble; an unknown kind gives the count alone, an unknown step the letter alone.
std::string DecodeSlotByte(uint8_t byte) {
    const int kind = byte >> 4;
    const int step = byte & 0x0F;
    if (kind == 0) return "";
    std::string code;
    if (kind <= 4) code += kKinds[kind - 1];
    if (step <= 4) code += kCounts[step];
    return code;
}

}  // namespace

std::optional<std::string> SlotCodeForKey(int keyAscii) {
    if (keyAscii >= '1' && keyAscii <= '5') return "S" + std::string(kCounts[keyAscii - '1']);
    if (keyAscii >= '6' && keyAscii <= '9') return "X" + std::string(kCounts[keyAscii - '5']);
    if (keyAscii >= 'a' && keyAscii <= 'h') keyAscii -= 'a' - 'A';
    if (keyAscii >= 'A' && keyAscii <= 'D') return "Y" + std::string(kCounts[keyAscii - 'A' + 1]);
    if (keyAscii >= 'E' && keyAscii <= 'H') return "F" + std::string(kCounts[keyAscii - 'E' + 1]);
    return std::nullopt;
}

IOLayoutFields ReadIOLayout(const ParameterImage& image, const DialogContext&) {
    IOLayoutFields fields;
    for (int n = 0; n < kSlotCount; ++n) fields.codes[n] = DecodeSlotByte(image[kSlotBytesAt + n]);
    for (int n = 0; n < kNamedSlotCount; ++n) {
        ModelNameRecord record;
        for (int b = 0; b < kModelNameRecordSize; ++b) {
            record[b] = image[kModelNamesAt + kModelNameRecordSize * n + b];
        }
        fields.names[n] = UnpackModelName(record);
    }
    return fields;
}

namespace {

// The first buffer of RkCheckIoAssign: the slot bytes of slots 0..127, then zeros.
std::array<uint8_t, kIoCheckBufferSize> IoCheckBuffer(const IOLayoutFields& fields) {
    std::array<uint8_t, kIoCheckBufferSize> buffer{};
    for (int n = 0; n < kSlotCount; ++n) buffer[n] = EncodeSlotCode(fields.codes[n]);
    return buffer;
}

// The message of an RkCheckIoAssign result: -100 16, -101 17, -102 and -103 18, -104 19;
// 0 (none) for every other result.
int IoCheckMessage(int result) {
    switch (result) {
        case -100:
            return 16;
        case -101:
            return 17;
        case -102:
        case -103:
            return 18;
        case -104:
            return 19;
        default:
            return 0;
    }
}

}  // namespace

ErrorTables ValidateIOLayout(const IOLayoutFields& fields, const ParameterImage& image,
                             const DialogContext&) {
    auto slots = IoCheckBuffer(fields);
    // The library takes both buffers by reference; it gets copies so that it cannot change
    // the image before the assignment is accepted.
    std::vector<uint8_t> network(image.bytes().begin() + kNetworkBlockAt, image.bytes().end());
    ErrorTables errors;
    const int message = IoCheckMessage(RkCheckIoAssign(slots.data(), network.data()));
    if (message != 0) errors.Record(message, -1);
    return errors;
}

void WriteIOLayout(const IOLayoutFields& fields, ParameterImage& image, const DialogContext&) {
    for (int n = 0; n < kSlotCount; ++n) image[kSlotBytesAt + n] = EncodeSlotCode(fields.codes[n]);
    if (!fields.namesEdited) return;
    for (int n = 0; n < kNamedSlotCount; ++n) {
        // A slot without a module has no model.
        const std::string& name = fields.codes[n].empty() ? std::string() : fields.names[n];
        const ModelNameRecord record = PackModelName(name);
        for (int b = 0; b < kModelNameRecordSize; ++b) {
            image[kModelNamesAt + kModelNameRecordSize * n + b] = record[b];
        }
    }
}

void SetIOValue(ParameterImage& image, const DialogContext& context) {
    if (context.CpuType == "A0J") return;
    bool assigned = false;
    for (int n = 0; n < kSlotCount; ++n) assigned = assigned || image[kSlotBytesAt + n] != 0;
    image[kIoAssignedFlagAt] = assigned ? 1 : 0;
}

IOLayoutFields DefaultsIOLayout(const DialogContext&) {
    return IOLayoutFields{};
}

}  // namespace gantrix
