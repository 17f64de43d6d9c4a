// SPDX-License-Identifier: Apache-2.0
#include "dialogs/frmMINI/MINIFields.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <string_view>

#include "common/InputRoutines.h"
#include "common/StringTable.h"

namespace gantrix {
namespace {

constexpr long kSpecialFirst = 9000;  // M9000..M9255 and D9000..D9255
constexpr long kSpecialLast = 9255;

// How the codes of a range count and show their devices.
enum class Kind {
    BitHex,           // X, Y, B: 16 points per code, hexadecimal numbers
    Relay,            // M, L, S: 16 points per code, decimal, letter from the relay ranges
    SpecialRelay,     // M9000 + 16 k
    SpecialRegister,  // D9000 + k
    WordHex,          // W
    WordDec,          // T, C, D, R
};

struct CodeRange {
    char letter;
    Kind kind;
    long firstA, lastA;
    long firstU, lastU;
    long First(MiniGroup g) const { return g == MiniGroup::U ? firstU : firstA; }
    long Last(MiniGroup g) const { return g == MiniGroup::U ? lastU : lastA; }
    // The device points the range holds.
    long Points(MiniGroup g) const {
        const long codes = Last(g) - First(g) + 1;
        return kind == Kind::BitHex || kind == Kind::Relay ? 16 * codes : codes;
    }
};

constexpr CodeRange kCodes[] = {
    {'X', Kind::BitHex, 0, 127, 0, 511},
    {'Y', Kind::BitHex, 512, 639, 1024, 1535},
    {'M', Kind::Relay, 1024, 1535, 1536, 2047},
    {'M', Kind::SpecialRelay, 2496, 2511, 3264, 3279},
    {'B', Kind::BitHex, 1536, 1791, 2048, 2559},
    {'D', Kind::SpecialRegister, 2560, 2815, 3328, 3583},
    {'C', Kind::WordDec, 3072, 4095, 4096, 5119},
    {'W', Kind::WordHex, 4096, 8191, 5120, 13311},
    {'D', Kind::WordDec, 8192, 14335, 13312, 21503},
    {'T', Kind::WordDec, 14336, 16383, 21504, 23551},
    {'R', Kind::WordDec, 16384, 24575, 32768, 40959},
};

const CodeRange& RangeOf(char letter, Kind kind) {
    for (const CodeRange& range : kCodes) {
        if (range.letter == letter && range.kind == kind) return range;
    }
    return kCodes[0];  // not reached: every letter and kind used below is in the table
}

bool IsHexLetter(char letter) {
    return letter == 'X' || letter == 'Y' || letter == 'B' || letter == 'W';
}
bool IsBitLetter(char letter) {
    return std::string_view("XYMLSB").find(letter) != std::string_view::npos;
}

std::string Hex(long value) {
    char buffer[2 * sizeof(unsigned long) + 1];  // every hexadecimal digit of the widest value
    std::snprintf(buffer, sizeof buffer, "%lX", static_cast<unsigned long>(value));
    return buffer;
}

std::string Upper(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return text;
}

// The letters each device field takes.
std::string_view FieldLetters(int field) {
    switch (field) {
        case kReceive:
            return "XMLSBTCDWR";
        case kSend:
            return "YMLSBTCDWR";
        case kDetection:
            return "MLSBTCDWR";
        default:
            return "TCDWR";  // the error number is a word
    }
}

// A hexadecimal number as PadZero4 and HexToValue read it; one of more than four digits
// lies beyond every device and start I/O number.
long HexNumberValue(const std::string& text) {
    return text.size() > 4 ? 0x10000 : HexToValue(PadZero4(text));
}

// The number after a device letter, hexadecimal for X, Y, B and W.
long DeviceNumberValue(char letter, const std::string& number) {
    std::string text = number;
    if (IsHexLetter(letter)) return IsHexOfMINI(text) ? HexNumberValue(text) : 0;
    return ValueOf(text);
}

// The highest start I/O number of the CPU type. The record keeps the number / 16 in a byte
// whose 255 means "not set", so FF0 and above cannot be stored even where the CPU has them:
// refused rather than lost on the next load.
long StartIoLimit(const DialogContext& context) {
    constexpr long kHighestStored = 254 * 16 + 15;
    long limit = context.DeviceMaxSize['X'] - 1;
    if (context.CpuType == "A2U") limit = 0x3FF;
    if (context.CpuType == "A3U") limit = 0x7FF;
    if (context.CpuType == "A4U") limit = 0xFFF;
    return std::min(limit, kHighestStored);
}

// The device points a device cell may address: the device size (L and S share M's, R has
// the file register capacity of word 68), never more than the code range holds, so that
// every accepted number has a code.
long DevicePoints(MiniGroup group, char letter, const DialogContext& context, int rPoints) {
    const char sized = letter == 'L' || letter == 'S' ? 'M' : letter;
    const long size = sized == 'R' ? rPoints : context.DeviceMaxSize[sized];
    const Kind kind = sized == 'M'                         ? Kind::Relay
                      : IsHexLetter(sized) && sized != 'W' ? Kind::BitHex
                      : sized == 'W'                       ? Kind::WordHex
                                                           : Kind::WordDec;
    return std::min(size, RangeOf(sized, kind).Points(group));
}

// The message a filled device cell raises, 0 when it passes.
int DeviceMessage(int field, const std::string& text, MiniGroup group, const DialogContext& context,
                  int rPoints) {
    const char letter = text[0];
    if (FieldLetters(field).find(letter) == std::string_view::npos) return kMessageInvalidSetting;
    std::string number = text.substr(1);
    if (!(IsHexLetter(letter) ? IsHexOfMINI(number) : IsDigitOfMINI(number))) {
        return kMessageInvalidSetting;
    }
    const long n = DeviceNumberValue(letter, number);
    const bool special =
        (letter == 'M' || letter == 'D') && n >= kSpecialFirst && n <= kSpecialLast;
    if (!special && n > DevicePoints(group, letter, context, rPoints) - 1)
        return kMessageOutOfRange;
    if (IsBitLetter(letter)) {
        // The special relays are refreshed in blocks of 16 from M9000.
        if (n % 16 != (special ? kSpecialFirst % 16 : 0)) return kMessageInvalidSetting;
    }
    return 0;
}

// CheckMINIRange: a cell that already carries an error is not checked again.
bool CheckMINIRange(ErrorTables& errors, int control, const std::string& text, long low,
                    long high) {
    if (errors.ControlHasError(control)) return true;
    if (IsBlank(text)) {
        errors.Record(kMessageInputAValue, control);
        return false;
    }
    const long value = ValueOf(text);
    if (value < low || value > high) {
        errors.Record(kMessageOutOfRange, control);
        return false;
    }
    return true;
}

// A selection cell: a name of the list stays, a digit key gives the name of that position,
// anything else empties the cell.
std::string Choose(const std::string& text, std::initializer_list<const std::string*> names) {
    int position = 0;
    for (const std::string* name : names) {
        if (text == *name || text == std::to_string(position)) return *name;
        ++position;
    }
    return "";
}

void ValidateRow(ErrorTables& errors, const std::string* row, int k, MiniGroup group,
                 const DialogContext& context, int rPoints) {
    const MiniNames& names = MiniName();
    const auto no = [k](int field) { return MiniText2No(k + field); };
    const auto filled = [row](int field) { return !IsBlank(row[field]); };
    const auto needed = [&](int field) {
        if (filled(field)) return true;
        errors.Record(kMessageInputAValue, no(field));
        return false;
    };
    const auto oneOf = [&](int field, std::initializer_list<const std::string*> allowed) {
        if (!needed(field)) return;
        for (const std::string* name : allowed) {
            if (row[field] == *name) return;
        }
        errors.Record(kMessageInvalidSetting, no(field));
    };

    if (needed(kStartIo)) {
        const long value = HexNumberValue(row[kStartIo]);
        if (value > StartIoLimit(context)) {
            errors.Record(kMessageOutOfRange, no(kStartIo));
        } else if (value % 16 != 0) {
            errors.Record(kMessageInvalidSetting, no(kStartIo));
        }
    }
    oneOf(kModel, {&names.mini, &names.miniS3});
    if (row[kModel] == names.miniS3) {
        if (row[kStations] != names.noStations)
            errors.Record(kMessageInvalidSetting, no(kStations));
    } else if (row[kModel] == names.mini && needed(kStations)) {
        CheckMINIRange(errors, no(kStations), row[kStations], 1, 64);
    }
    for (int field : {kReceive, kSend, kDetection, kErrorNo}) {
        if (!filled(field)) continue;  // no device
        const int message = DeviceMessage(field, Trim(row[field]), group, context, rPoints);
        if (message != 0) errors.Record(message, no(field));
    }
    if (needed(kRetries)) CheckMINIRange(errors, no(kRetries), row[kRetries], 0, 32);
    oneOf(kResponse, {&names.link, &names.cpu});
    oneOf(kDataClear, {&names.hold, &names.clear});
    oneOf(kLineError, {&names.test, &names.hold, &names.off});
}

}  // namespace

MiniGroup MiniGroupOf(const std::string& cpu) {
    if (CpuIn(cpu, {"A2A", "A3A"})) return MiniGroup::A;
    if (CpuIn(cpu, {"A2U", "A3U", "A4U"})) return MiniGroup::U;
    return MiniGroup::None;
}

const MiniNames& MiniName() {
    static const MiniNames names{
        LoadResString(ids::Mini),  LoadResString(ids::MiniS3), LoadResString(ids::NoStations),
        LoadResString(ids::Link),  LoadResString(ids::Cpu),    LoadResString(ids::Hold),
        LoadResString(ids::Clear), LoadResString(ids::Test),   LoadResString(ids::Off)};
    return names;
}

std::array<std::string, kMiniFieldsPerRow> NewRowValues() {
    const MiniNames& n = MiniName();
    return {"", n.miniS3, n.noStations, "", "", "5", n.cpu, n.clear, "", "", n.hold};
}

int MiniRowsAfterCount(const std::string& countText, int rows) {
    if (countText.empty()) return rows;
    const long value = ValueOf(countText);
    return value >= 0 && value <= kMiniModules ? static_cast<int>(value) : 0;
}

void ResizeMiniRows(MINIFields& fields, int rows, int newRows) {
    const auto values = NewRowValues();
    for (int m = std::min(rows, newRows); m < std::max(rows, newRows); ++m) {
        for (int f = 0; f < kMiniFieldsPerRow; ++f) {
            fields.Text2[kMiniFieldsPerRow * m + f] = m < newRows ? values[f] : std::string();
        }
    }
}

std::vector<int> HelpLines(int field) {
    switch (field) {
        case kStartIo:
            return {ids::StartIoNo, ids::SetStartIoNo};
        case kModel:
            return {ids::ModelName, ids::SelectModelName, ids::ModelChoices};
        case kStations:
            return {ids::NumberOfStations, ids::SetNumberOfStations};
        case kReceive:
            return {ids::Receive, ids::SetReceiveData};
        case kSend:
            return {ids::Send, ids::SetSendData};
        case kRetries:
            return {ids::NumberOfRetries, ids::SetNumberOfRetries};
        case kResponse:
            return {ids::ResponseSetting, ids::SetAccessPriority};
        case kDataClear:
            return {ids::DataClear, ids::SetDataOnError};
        case kDetection:
            return {ids::Detected, ids::SetDetectionDevice};
        case kErrorNo:
            return {ids::ErrorNo, ids::SetErrorNoDevice, ids::ErrorNoDevices};
        default:
            return {ids::Error, ids::SendStatusOfLineError, ids::LineErrorChoices};
    }
}

int ColumnCaption(int field) {
    static constexpr int kCaptions[kMiniFieldsPerRow] = {
        ids::IoNo,     ids::ModelName, ids::NumberOfStations, ids::Receive, ids::Send, ids::Retry,
        ids::Response, ids::DataClear, ids::Detected,         ids::ErrorNo, ids::Error};
    return kCaptions[field];
}

int MaxTypedLength(int field) {
    static constexpr int kLengths[kMiniFieldsPerRow] = {4, 7, 7, 5, 5, 2, 7, 7, 5, 5, 7};
    return kLengths[field];
}

RelayWords RelayWordsOf(const ParameterImage& image) {
    RelayWords words;
    // Word 14 is read as the step relay setting reads it: an erased word stands for 2048.
    words.w14 = image.GetParamWord(14);
    if (words.w14 == kErased) words.w14 = 2048;
    words.w16 = image.GetParamWord(16);
    words.w18 = image.GetParamWord(18);
    return words;
}

// L runs from word 16 to word 18, the step relays S from word 18 + 1 to word 14 - 1, the
// rest of the range is M. Without latch relays (word 16 erased) an erased word 18 stands for
// a step relay range from 0: word 18 + 1 wraps to 0 in the 16-bit word, and the range ends,
// as always, on the number before the first one after it, word 14 - 1.
char RelayLetter(long n, const RelayWords& w) {
    const bool inStepRange = n >= static_cast<long>(w.w18) + 1 && n <= w.w14 - 1;
    if (w.w16 != kErased) {
        if (n >= w.w16 && n <= w.w18) return 'L';
        if (w.w18 != 8191 && inStepRange) return 'S';
        return 'M';
    }
    if (w.w18 == 8191) return 'M';
    if (w.w18 == kErased) return n <= w.w14 - 1 ? 'S' : 'M';
    if (n <= w.w18) return 'M';
    return inStepRange ? 'S' : 'M';
}

std::string DeviceTextOf(MiniGroup group, long code, const RelayWords& words) {
    if (group == MiniGroup::None) return "";
    for (const CodeRange& range : kCodes) {
        if (code < range.First(group) || code > range.Last(group)) continue;
        const long k = code - range.First(group);
        const std::string letter(1, range.letter);
        switch (range.kind) {
            case Kind::BitHex:
                return letter + Hex(16 * k);
            case Kind::Relay:
                return RelayLetter(16 * k, words) + std::to_string(16 * k);
            case Kind::SpecialRelay:
                return "M" + std::to_string(kSpecialFirst + 16 * k);
            case Kind::SpecialRegister:
                return "D" + std::to_string(kSpecialFirst + k);
            case Kind::WordHex:
                return letter + Hex(k);
            case Kind::WordDec:
                return letter + std::to_string(k);
        }
    }
    return "";
}

std::string CalculateDeviceNumber(const ParameterImage& image, int index,
                                  const std::string& cpuType) {
    return DeviceTextOf(MiniGroupOf(cpuType), image.GetParamWord(index), RelayWordsOf(image));
}

long CalculateAddress(MiniGroup group, const std::string& text) {
    const std::string cell = Trim(text);
    if (cell.empty() || group == MiniGroup::None) return kErased;
    char letter = cell[0];
    const long n = DeviceNumberValue(letter, cell.substr(1));
    if (letter == 'M' && n >= kSpecialFirst && n <= kSpecialLast) {
        return RangeOf('M', Kind::SpecialRelay).First(group) + (n - kSpecialFirst) / 16;
    }
    if (letter == 'D' && n >= kSpecialFirst && n <= kSpecialLast) {
        return RangeOf('D', Kind::SpecialRegister).First(group) + (n - kSpecialFirst);
    }
    if (letter == 'L' || letter == 'S') letter = 'M';
    for (const CodeRange& range : kCodes) {
        if (range.letter != letter) continue;
        if (range.kind == Kind::BitHex || range.kind == Kind::Relay) {
            return range.First(group) + n / 16;
        }
        if (range.kind == Kind::WordHex || range.kind == Kind::WordDec) {
            return range.First(group) + n;
        }
    }
    return kErased;
}

bool IsDigitOfMINI(std::string& text) {
    text = Trim(text);
    if (text.empty()) return false;
    for (char c : text) {
        if (!(c >= '0' && c <= '9') && c != ' ') return false;
    }
    text = CutLeadingZero(text);
    return true;
}

bool IsHexOfMINI(std::string& text) {
    text = Upper(Trim(text));
    if (text.empty()) return false;
    for (char c : text) {
        if (!(c >= '0' && c <= '9') && !(c >= 'A' && c <= 'F') && c != ' ') return false;
    }
    return true;
}

std::string NormaliseCell(int field, const std::string& text, const std::string& model) {
    const MiniNames& names = MiniName();
    const std::string trimmed = Trim(text);
    TextBoxState box{text, 0};
    switch (field) {
        case kStartIo:
            CheckHexText(box);
            return box.text;
        case kModel:
            return Choose(trimmed, {&names.mini, &names.miniS3});
        case kStations:
            if (model == names.miniS3) return names.noStations;
            if (model == names.mini) {
                CheckDecimalText(box);
                return box.text;
            }
            return trimmed;
        case kRetries:
            CheckDecimalText(box);
            return box.text;
        case kResponse:
            return Choose(trimmed, {&names.link, &names.cpu});
        case kDataClear:
            return Choose(trimmed, {&names.hold, &names.clear});
        case kLineError:
            return Choose(trimmed, {&names.test, &names.hold, &names.off});
        default: {
            // Device cells: device letters and the digits of decimal and hexadecimal numbers.
            const std::string upper = Upper(trimmed);
            const bool clean =
                upper.find_first_not_of("XYMLSBTCDWR0123456789AEF") == std::string::npos;
            return clean ? upper : "";
        }
    }
}

std::string StationsForModel(const std::string& model) {
    return model == MiniName().miniS3 ? MiniName().noStations : "";
}

std::array<uint8_t, kMiniRecordSize> EncodeRecord(MiniGroup group, const std::string* row) {
    const MiniNames& names = MiniName();
    std::array<uint8_t, kMiniRecordSize> r{};
    r[0] = static_cast<uint8_t>(HexToValue(PadZero4(row[kStartIo])) / 16);
    int flags = 0;
    if (row[kModel] == names.miniS3) flags |= 1;
    if (row[kResponse] == names.cpu) flags |= 2;
    if (row[kDataClear] == names.clear) flags |= 4;
    static constexpr int kDeviceFields[4] = {kReceive, kSend, kDetection, kErrorNo};
    for (int d = 0; d < 4; ++d) {
        const std::string& cell = row[kDeviceFields[d]];
        if (!IsBlank(cell)) flags |= 8 << d;
        const long code = CalculateAddress(group, cell);
        r[4 + 2 * d] = static_cast<uint8_t>(code & 0xFF);
        r[5 + 2 * d] = static_cast<uint8_t>((code >> 8) & 0xFF);
    }
    r[1] = static_cast<uint8_t>(flags);
    int line = static_cast<int>(ValueOf(row[kRetries]) & 0x3F);
    if (row[kLineError] == names.off) line |= 0x40;
    if (row[kLineError] == names.hold) line |= 0x80;
    r[2] = static_cast<uint8_t>(line);
    r[3] = row[kStations] == names.noStations ? 255 : static_cast<uint8_t>(ValueOf(row[kStations]));
    return r;
}

std::array<std::string, kMiniFieldsPerRow> DecodeRecord(MiniGroup group, const uint8_t* r,
                                                        const RelayWords& words) {
    const MiniNames& names = MiniName();
    std::array<std::string, kMiniFieldsPerRow> row;
    row[kStartIo] = r[0] == 255 ? "" : Hex(r[0] * 16L);
    const int flags = r[1];
    row[kModel] = (flags & 1) ? names.miniS3 : names.mini;
    row[kStations] = r[3] == 255 ? names.noStations : std::to_string(r[3]);
    static constexpr int kDeviceFields[4] = {kReceive, kSend, kDetection, kErrorNo};
    for (int d = 0; d < 4; ++d) {
        if (flags & (8 << d)) {
            row[kDeviceFields[d]] = DeviceTextOf(group, r[4 + 2 * d] + 256L * r[5 + 2 * d], words);
        }
    }
    row[kRetries] = std::to_string(r[2] & 0x3F);
    row[kResponse] = (flags & 2) ? names.cpu : names.link;
    row[kDataClear] = (flags & 4) ? names.clear : names.hold;
    row[kLineError] = (r[2] & 0x80) ? names.hold : (r[2] & 0x40) ? names.off : names.test;
    // Each cell as its Change leaves it: a MINI-S3 has no number of stations, a MINI no "------".
    for (int f = 0; f < kMiniFieldsPerRow; ++f) row[f] = NormaliseCell(f, row[f], row[kModel]);
    return row;
}

MINIFields ReadMINI(const ParameterImage& image, const DialogContext& context) {
    MINIFields f;
    const MiniGroup group = MiniGroupOf(context.CpuType);
    if (group == MiniGroup::None) return f;
    const MiniArea area = group == MiniGroup::U ? kMiniAreaU : kMiniAreaA;
    int count = image.GetParamWord(area.count);
    if (count == kErased) count = 0;
    f.Text1 = std::to_string(count);
    if (count > kMiniModules) return f;  // such a count makes no rows
    const RelayWords words = RelayWordsOf(image);
    for (int m = 0; m < count; ++m) {
        uint8_t record[kMiniRecordSize];
        for (int b = 0; b < kMiniRecordSize; ++b) {
            record[b] = image[area.records + kMiniRecordSize * m + b];
        }
        const auto row = DecodeRecord(group, record, words);
        std::copy(row.begin(), row.end(), f.Text2.begin() + kMiniFieldsPerRow * m);
    }
    return f;
}

ErrorTables ValidateMINI(const MINIFields& f, const DialogContext& context, int rPoints) {
    ErrorTables errors;
    const MiniGroup group = MiniGroupOf(context.CpuType);
    if (group == MiniGroup::None) return errors;
    if (!CheckMINIRange(errors, MiniText1No(), f.Text1, 0, kMiniModules)) return errors;
    const long count = ValueOf(f.Text1);
    for (int m = 0; m < count; ++m) {
        const int k = kMiniFieldsPerRow * m;
        ValidateRow(errors, &f.Text2[k], k, group, context, rPoints);
    }
    return errors;
}

// Records of modules beyond the count keep their bytes: lowering the count hides a module
// without wiping what the user set for it.
void WriteMINI(const MINIFields& f, ParameterImage& image, const DialogContext& context) {
    const MiniGroup group = MiniGroupOf(context.CpuType);
    if (group == MiniGroup::None) return;
    const long count = std::min<long>(ValueOf(f.Text1), kMiniModules);
    std::vector<MiniArea> areas = {kMiniAreaA};
    if (group == MiniGroup::U) areas.insert(areas.begin(), kMiniAreaU);
    for (const MiniArea& area : areas) {
        image.SetParamWord(count, area.count);
        for (int m = 0; m < count; ++m) {
            const auto record = EncodeRecord(group, &f.Text2[kMiniFieldsPerRow * m]);
            for (int b = 0; b < kMiniRecordSize; ++b) {
                image[area.records + kMiniRecordSize * m + b] = record[b];
            }
        }
    }
}

MINIFields DefaultsMINI() {
    MINIFields f;
    f.Text1 = "0";
    return f;
}

}  // namespace gantrix
