// SPDX-License-Identifier: Apache-2.0
#pragma once
// The I/O assignment: one slot code per slot 0..127 and a model name per slot 0..63, their
// bytes in the parameter image and the check of the host library.
//
//   384 + n (n = 0..127)  slot byte: high nibble kind (0 none, 1 S, 2 X, 3 Y, 4 F), low
//                         nibble points (0..4 = 0, 16, 32, 48, 64)
//   640 + 6n (n = 0..63)  packed model name (TypeNameSetFields.h)
//   1071                  1 when any slot byte is not 0, else 0; not for "A0J"

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "common/DialogContext.h"
#include "common/ErrorTables.h"
#include "store/ParameterImage.h"

namespace gantrix {

inline constexpr int kSlotCount = 128;
inline constexpr int kNamedSlotCount = 64;
inline constexpr int kSlotsPerPage = 64;
inline constexpr int kSlotBytesAt = 384;
inline constexpr int kModelNamesAt = 640;
inline constexpr int kIoAssignedFlagAt = 1071;
inline constexpr int kIoCheckBufferSize = 512;

// The dialog's own copy of the assignment, shared with the model-name dialog while it is
// open. namesEdited tells the save that the model-name dialog was opened, so that the names
// are written; otherwise the name records in the image stay as they were.
struct IOLayoutFields {
    std::array<std::string, kSlotCount> codes;
    std::array<std::string, kNamedSlotCount> names;
    bool namesEdited = false;
};

// The code the key entry sets for a key: "1".."5" S0..S64, "6".."9" X16..X64, "A".."D"
// Y16..Y64, "E".."H" F16..F64, letters in either case; nullopt for every other key.
std::optional<std::string> SlotCodeForKey(int keyAscii);

// Set...Settings: the slot codes of image 384..511 and the names of 640..1023.
IOLayoutFields ReadIOLayout(const ParameterImage& image, const DialogContext& context);

// Check...Settings: RkCheckIoAssign on the slot bytes and the network block of image (from
// index 1024 on). The library checks against the CPU given to RkSetupGlobal.
ErrorTables ValidateIOLayout(const IOLayoutFields& fields, const ParameterImage& image,
                             const DialogContext& context);

// Save...Settings: the 128 slot bytes and, when namesEdited, the 64 name records, a slot
// without a code losing its name.
void WriteIOLayout(const IOLayoutFields& fields, ParameterImage& image,
                   const DialogContext& context);

// Byte 1071: whether any slot is assigned; left alone for "A0J".
void SetIOValue(ParameterImage& image, const DialogContext& context);

// The Clear values: every code and name empty.
IOLayoutFields DefaultsIOLayout(const DialogContext& context);

}  // namespace gantrix
