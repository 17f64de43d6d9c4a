// SPDX-License-Identifier: Apache-2.0
#pragma once
// The network workbooks' view of the working parameter file: this component does not know
// the field layout of the network block, so the workbooks show and edit its bytes.
//
//   1024..2055  the network block (1024: network present; 1071: the I/O-assignment flag,
//               which the component keeps itself, so it is not edited here)
//   2560..3042  the network link data (2560: the network mode in its low 6 bits)
// The network sum at 2056..2058 is not edited: a Save writes it from the block it saves.

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "report/Sheet.h"
#include "store/ParameterImage.h"

namespace gantrix {

struct ByteRange {
    int first;
    int last;
    const char* title;
};
inline constexpr ByteRange kNetworkRanges[] = {{1024, 2055, "Network block"},
                                               {2560, 3042, "Link data"}};
inline constexpr int kBytesPerRow = 16;

// Whether the byte at index may be edited in a network workbook.
bool IsEditableNetworkByte(int index);

// "00".."FF"; and back from one or two hexadecimal digits in either case, blanks around them
// ignored (nullopt for anything else).
std::string ByteText(uint8_t value);
std::optional<uint8_t> ParseByteText(const std::string& text);

// What a byte means where this component knows it; "" elsewhere.
std::string NetworkByteMeaning(int index);

// The ranges as a sheet: a table per range, a row of 16 bytes per line, the row's first index
// in the first column.
Sheet NetworkSheet(const std::string& name, const std::vector<uint8_t>& file);

// The mode bits (the low six bits of byte 2560) that the network workbook of mode index 0..2
// stands for: 63 MORNET, 1 MORNET II combination, 2 MORNET II. -1 for the U types' workbook
// (3) and any other index, whose Save leaves byte 2560 as it is.
int WorkbookModeBits(int modeIndex);

// A network workbook's Save on the bytes of the working file: the edits (index -> value);
// then, when byte 1024 is not 0, the mode bits of modeIndex in the low six bits of 2560, the
// upper two kept, so that the network menu finds the mode the data were edited in; then the
// sum of 1024..2055 at 2056..2058, so that the block the merge takes over is consistent.
// Raises a RuntimeError for an index that is not editable, the file untouched.
void ApplyNetworkSave(ParameterImage& file, const std::map<int, uint8_t>& edits, int modeIndex);

// ApplyNetworkSave on the working parameter file at path, the other bytes kept as the file
// holds them now: whatever the component wrote into the file since it was shown stays. Raises
// a RuntimeError for a missing or short file, an index that is not editable, and a failed
// write (the file then stays as it was).
void WriteNetworkBytes(const std::string& path, const std::map<int, uint8_t>& edits, int modeIndex);

// Whether the bytes a network workbook shows (kNetworkRanges) differ between a and b.
bool NetworkBytesDiffer(const std::vector<uint8_t>& a, const std::vector<uint8_t>& b);

}  // namespace gantrix
