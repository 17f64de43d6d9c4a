// SPDX-License-Identifier: Apache-2.0
#pragma once
// Remote I/O and remote terminal stations of the A2C: the total number of stations on the
// line, up to fourteen remote terminal entries of four stations each (start station and
// protocol), and the online mode of the line after a station fault.
//
// Image bytes (main block):
//   141        reserved, always written 0
//   142        online mode: 0 automatic reconnection, 1 manual connection, 2 stop at
//              emergency; 255 reads as 0
//   143 + e    start station of entry e + 1 (e = 0..13); 0 = no entry, 255 reads as none
//   157, 158   protocol word: bit e is entry e + 1, 1 = non-procedure, 0 = MINI standard;
//              bits of empty entries and bits 14, 15 are written 0
//   159        total number of remote stations 1..64; 255 reads as 64

#include <array>
#include <string>

#include "common/ErrorTables.h"
#include "store/ParameterImage.h"

namespace gantrix {

inline constexpr int kRemoteEntries = 14;
inline constexpr int kStationsPerEntry = 4;
inline constexpr int kRemoteReservedByte = 141;
inline constexpr int kOnlineModeByte = 142;
inline constexpr int kRemoteStartBytes = 143;    // 143..156
inline constexpr int kRemoteProtocolWord = 157;  // 157, 158
inline constexpr int kRemoteTotalByte = 159;

// The controls' contents, indexed like the control arrays.
struct RemoteFields {
    std::string Text1;  // total number of remote stations
    // 0..13 start station of entries 1..14, 14..27 their protocols ("MINI Standard",
    // "Non-procedure" or empty)
    std::array<std::string, 2 * kRemoteEntries> Text2;
    int OnlineMode = 0;  // the selected option 0..2, -1 for none

    bool operator==(const RemoteFields&) const = default;
};

// The names shown in the protocol cells.
std::string MiniStandardName();
std::string NonProcedureName();

RemoteFields ReadRemote(const ParameterImage& image);
// Every rule of the check, in its order; messages 2 and 3 for the total, 11 for start
// stations, overlapping entries and protocol cells.
ErrorTables ValidateRemote(const RemoteFields& fields);
// Writes bytes 141..159 and nothing else; with no online mode selected byte 142 keeps its
// value.
void WriteRemote(const RemoteFields& fields, ParameterImage& image);
// Clear: 64 stations, automatic reconnection, no entries.
RemoteFields DefaultsRemote();

// What a protocol cell holds after its text changed: "0" and "1" become the protocol names,
// the names stay, anything else (and any text of an entry without start) empties the cell.
std::string CleanProtocolText(const std::string& text, bool startEmpty);

}  // namespace gantrix
