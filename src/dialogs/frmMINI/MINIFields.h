// SPDX-License-Identifier: Apache-2.0
#pragma once
// M-NET/MINI auto-refresh: up to eight interface modules, each refreshing CPU devices.
//
// Two CPU groups keep the table in different places:
//   group A ("A2A", "A3A"): count word 534, record m (1..8) at 544 + 12 (m - 1)
//   group U ("A2U", "A3U", "A4U"): count word 2312, records from 2322; a save writes the
//     same count and records into the A area too, which the modules read on the A types.
// A count word of 65535 is read as 0 modules.
//
// Record of 12 bytes:
//   0     start I/O number / 16 (255: not set)
//   1     bit 0 MINI-S3, bit 1 CPU priority, bit 2 clear on error, bits 3..6 receive, send,
//         detection and error-number device present, bit 7 always 0
//   2     bits 0..5 retries, bit 6 send OFF data, bit 7 hold the send data (neither: test)
//   3     number of stations (255: "------", the MINI-S3)
//   4, 6, 8, 10  device codes of receive, send, detection, error number (65535: none)
//
// Device codes: bit devices in units of 16 points, word devices per word (see the code table
// in MINIFields.cpp); M, L and S share one range, and the letter shown for a code follows
// the latch relay range (words 16, 18) and the step relay range (words 18, 14).

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "common/DialogContext.h"
#include "common/ErrorTables.h"
#include "store/ParameterImage.h"

namespace gantrix {

inline constexpr int kMiniModules = 8;
inline constexpr int kMiniFieldsPerRow = 11;
inline constexpr int kMiniCells = kMiniModules * kMiniFieldsPerRow;
inline constexpr int kMiniRecordSize = 12;

// The fields of a module row: Text2(11 (m - 1) + f).
enum MiniField : int {
    kStartIo = 0,
    kModel = 1,
    kStations = 2,
    kReceive = 3,
    kSend = 4,
    kRetries = 5,
    kResponse = 6,
    kDataClear = 7,
    kDetection = 8,
    kErrorNo = 9,
    kLineError = 10,
};

enum class MiniGroup { None, A, U };
MiniGroup MiniGroupOf(const std::string& cpuType);

// Image places of a group's table (the count word; the first record).
struct MiniArea {
    int count;
    int records;
};
inline constexpr MiniArea kMiniAreaA{534, 544};
inline constexpr MiniArea kMiniAreaU{2312, 2322};

// The controls' contents.
struct MINIFields {
    std::string Text1;                          // number of modules
    std::array<std::string, kMiniCells> Text2;  // the module table
    bool operator==(const MINIFields&) const = default;
};

// Global control numbers of the cells.
inline int MiniText1No() {
    return 80;
}
inline int MiniText2No(int index) {
    return 81 + index;
}

// The cell texts of the selections, from the string table.
struct MiniNames {
    std::string mini, miniS3, noStations, link, cpu, hold, clear, test, off;
};
const MiniNames& MiniName();

// What a row holds when it comes into being: "", "MINI-S3", "------", "", "", "5", "CPU",
// "Clear", "", "", "Hold".
std::array<std::string, kMiniFieldsPerRow> NewRowValues();

// The string ids of the help lines of field f (two, three for fields 1, 9 and 10), and of
// its column caption.
std::vector<int> HelpLines(int field);
int ColumnCaption(int field);
// The number of characters the user may type into field f.
int MaxTypedLength(int field);

// Words 14, 16 and 18: the first number after the step relays, the latch relay range.
struct RelayWords {
    int w14 = 2048;
    int w16 = kErased;
    int w18 = 2047;
};
RelayWords RelayWordsOf(const ParameterImage& image);
// The letter M, L or S of relay number n of the shared internal relay range.
char RelayLetter(long n, const RelayWords& words);

// The device text of a code ("" for a code in no range of the group, or no group).
std::string DeviceTextOf(MiniGroup group, long code, const RelayWords& words);
// The device text of the code word at image index.
std::string CalculateDeviceNumber(const ParameterImage& image, int index,
                                  const std::string& cpuType);
// The code of a device text that passed the checks; 65535 for an empty text.
long CalculateAddress(MiniGroup group, const std::string& text);

// The trimmed text without leading zeros, when it is non-empty and holds only digits (inner
// blanks tolerated).
bool IsDigitOfMINI(std::string& text);
// The trimmed, upper-cased text, when it is non-empty and holds only hexadecimal digits.
bool IsHexOfMINI(std::string& text);

// A cell's text after its Change: trimmed; letters of the start I/O and device cells in
// capitals; a selection cell holds one of its names or nothing. model is the row's model.
std::string NormaliseCell(int field, const std::string& text, const std::string& model);
// What a change of the model cell puts into the stations cell: "------" for MINI-S3, else "".
std::string StationsForModel(const std::string& model);

// The number of module rows after the count box changed to countText, rows being the number
// before: an empty box (a count about to be typed) keeps the rows, a count of 0..8 makes that
// many, any other count none.
int MiniRowsAfterCount(const std::string& countText, int rows);
// Rows rows + 1..newRows come into being with NewRowValues; rows newRows + 1..rows are emptied.
void ResizeMiniRows(MINIFields& fields, int rows, int newRows);

// The 12 bytes of a row (byte 1 bit 7 always 0).
std::array<uint8_t, kMiniRecordSize> EncodeRecord(MiniGroup group, const std::string* row);
// The row texts of a record, as the dialog shows them after loading.
std::array<std::string, kMiniFieldsPerRow> DecodeRecord(MiniGroup group, const uint8_t* record,
                                                        const RelayWords& words);

// What the dialog shows for the image (SetMINISettings with each cell's Change).
MINIFields ReadMINI(const ParameterImage& image, const DialogContext& context);
// Every rule of CheckMINISettings; rPoints is word 68 as the dialog read it when it opened.
ErrorTables ValidateMINI(const MINIFields& fields, const DialogContext& context, int rPoints);
// The bytes SaveMINISettings writes: the count word and the records of modules 1..count,
// into the U and A areas for group U, into the A area for group A.
void WriteMINI(const MINIFields& fields, ParameterImage& image, const DialogContext& context);
// Clear: no modules.
MINIFields DefaultsMINI();

}  // namespace gantrix
