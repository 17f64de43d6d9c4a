// SPDX-License-Identifier: Apache-2.0
#include "dialogs/frmRemote/RemoteFields.h"

#include <cstdlib>

#include "common/ControlNumbers.h"
#include "common/InputRoutines.h"
#include "common/StringTable.h"

namespace gantrix {
namespace {

constexpr uint8_t kErasedByte = 255;
constexpr int kLowestTotal = 1;
constexpr int kHighestTotal = 64;

int TotalBoxNo() {
    return GetControlNo("frmRemote", "Text1");
}

int StationBoxNo(int index) {
    return GetControlNo("frmRemote", "Text2(" + std::to_string(index) + ")");
}

// CheckRemoteRange: an empty box is message 2, a value outside low..high message 3.
bool CheckRemoteRange(ErrorTables& errors, const std::string& text, int control, long low,
                      long high) {
    if (text.empty()) {
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

}  // namespace

std::string MiniStandardName() {
    return LoadResString(ids::MiniStandard);
}

std::string NonProcedureName() {
    return LoadResString(ids::NonProcedure);
}

RemoteFields ReadRemote(const ParameterImage& image) {
    RemoteFields f;
    const uint8_t total = image[kRemoteTotalByte];
    f.Text1 = total == kErasedByte ? std::to_string(kHighestTotal) : std::to_string(total);

    const uint8_t mode = image[kOnlineModeByte];
    f.OnlineMode = mode == kErasedByte ? 0 : (mode <= 2 ? mode : -1);

    // An erased start byte reads as no entry. Reading never rewrites the image: when the
    // table mixes erased and set start bytes, the set entries are shown and stay in the
    // image as they are; only OK writes the table (an entry shown empty then as 0).
    const int protocols = image.GetParamWord(kRemoteProtocolWord);
    for (int e = 0; e < kRemoteEntries; ++e) {
        const uint8_t start = image[kRemoteStartBytes + e];
        if (start == 0 || start == kErasedByte) continue;
        f.Text2[e] = std::to_string(start);
        f.Text2[e + kRemoteEntries] =
            ((protocols >> e) & 1) != 0 ? NonProcedureName() : MiniStandardName();
    }
    return f;
}

ErrorTables ValidateRemote(const RemoteFields& f) {
    ErrorTables errors;
    CheckRemoteRange(errors, f.Text1, TotalBoxNo(), kLowestTotal, kHighestTotal);

    // Each entry takes four stations from its start, all within the total.
    const long total = ValueOf(f.Text1);
    for (int e = 0; e < kRemoteEntries; ++e) {
        if (f.Text2[e].empty()) continue;
        const long start = ValueOf(f.Text2[e]);
        if (start < 1 || start > total - (kStationsPerEntry - 1)) {
            errors.Record(kMessageInvalidSetting, StationBoxNo(e));
        }
    }

    // Two entries share a station when their starts lie less than four apart. Visiting
    // the pairs with i ascending marks the later entry of an overlapping pair; an entry
    // already in error is left out of further comparisons.
    for (int i = 0; i < kRemoteEntries; ++i) {
        for (int j = 0; j < kRemoteEntries; ++j) {
            if (i == j || f.Text2[i].empty() || f.Text2[j].empty()) continue;
            if (std::labs(ValueOf(f.Text2[i]) - ValueOf(f.Text2[j])) >= kStationsPerEntry) {
                continue;
            }
            if (errors.ControlHasError(StationBoxNo(i)) || errors.ControlHasError(StationBoxNo(j)))
                continue;
            errors.Record(kMessageInvalidSetting, StationBoxNo(j));
        }
    }

    for (int e = 0; e < kRemoteEntries; ++e) {
        const std::string& start = f.Text2[e];
        const std::string& protocol = f.Text2[e + kRemoteEntries];
        const bool known =
            protocol.empty() || protocol == MiniStandardName() || protocol == NonProcedureName();
        if (!known || start.empty() != protocol.empty()) {
            errors.Record(kMessageInvalidSetting, StationBoxNo(e + kRemoteEntries));
        }
    }
    return errors;
}

void WriteRemote(const RemoteFields& f, ParameterImage& image) {
    image[kRemoteTotalByte] = static_cast<uint8_t>(ValueOf(f.Text1));
    if (f.OnlineMode >= 0 && f.OnlineMode <= 2) {
        image[kOnlineModeByte] = static_cast<uint8_t>(f.OnlineMode);
    }
    int protocols = 0;
    for (int e = 0; e < kRemoteEntries; ++e) {
        image[kRemoteStartBytes + e] = static_cast<uint8_t>(ValueOf(f.Text2[e]));
        // An empty entry has no protocol bit, whatever its cell holds.
        if (!f.Text2[e].empty() && f.Text2[e + kRemoteEntries] == NonProcedureName()) {
            protocols |= 1 << e;
        }
    }
    image[kRemoteProtocolWord] = static_cast<uint8_t>(protocols & 0xFF);
    image[kRemoteProtocolWord + 1] = static_cast<uint8_t>(protocols >> 8);
    image[kRemoteReservedByte] = 0;
}

RemoteFields DefaultsRemote() {
    RemoteFields f;
    f.Text1 = std::to_string(kHighestTotal);
    return f;
}

std::string CleanProtocolText(const std::string& text, bool startEmpty) {
    const std::string trimmed = Trim(text);
    if (startEmpty) return "";
    if (trimmed == "0") return MiniStandardName();
    if (trimmed == "1") return NonProcedureName();
    if (trimmed == MiniStandardName() || trimmed == NonProcedureName()) return trimmed;
    return "";
}

}  // namespace gantrix
