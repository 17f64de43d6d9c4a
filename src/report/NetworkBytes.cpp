// SPDX-License-Identifier: Apache-2.0
#include "report/NetworkBytes.h"

#include <cctype>
#include <cstdio>

#include "report/ParameterReport.h"
#include "store/CheckSum.h"
#include "store/ParameterFiles.h"
#include "store/ProjectAccess.h"
#include "store/RuntimeError.h"

namespace gantrix {

bool IsEditableNetworkByte(int index) {
    if (index == 1071) return false;
    for (const ByteRange& range : kNetworkRanges) {
        if (index >= range.first && index <= range.last) return true;
    }
    return false;
}

std::string ByteText(uint8_t value) {
    char text[3];
    std::snprintf(text, sizeof text, "%02X", value);
    return text;
}

std::optional<uint8_t> ParseByteText(const std::string& text) {
    const auto first = text.find_first_not_of(' ');
    if (first == std::string::npos) return std::nullopt;
    const std::string digits = text.substr(first, text.find_last_not_of(' ') - first + 1);
    if (digits.size() > 2) return std::nullopt;
    int value = 0;
    for (char c : digits) {
        if (!std::isxdigit(static_cast<unsigned char>(c))) return std::nullopt;
        value = value * 16 + (std::isdigit(static_cast<unsigned char>(c))
                                  ? c - '0'
                                  : std::toupper(static_cast<unsigned char>(c)) - 'A' + 10);
    }
    return static_cast<uint8_t>(value);
}

std::string NetworkByteMeaning(int index) {
    switch (index) {
        case 1024:
            return "Network present (0: no network parameters)";
        case 1071:
            return "I/O assignment present (kept by the I/O assignment)";
        case 2560:
            return "Network mode in the low 6 bits (1 MORNET II combination, 2 MORNET II, "
                   "63 MORNET)";
        default:
            return "";
    }
}

Sheet NetworkSheet(const std::string& name, const std::vector<uint8_t>& file) {
    Sheet sheet{name, {}};
    std::vector<std::string> headings = {"Index"};
    for (int column = 0; column < kBytesPerRow; ++column) {
        headings.push_back("+" + std::string(1, "0123456789ABCDEF"[column]));
    }
    for (const ByteRange& range : kNetworkRanges) {
        std::vector<std::vector<std::string>> rows;
        for (int start = range.first - range.first % kBytesPerRow; start <= range.last;
             start += kBytesPerRow) {
            std::vector<std::string> row = {std::to_string(start)};
            for (int index = start; index < start + kBytesPerRow; ++index) {
                const bool shown = index >= range.first && index <= range.last &&
                                   index < static_cast<int>(file.size());
                row.push_back(shown ? ByteText(file[static_cast<std::size_t>(index)]) : "");
            }
            rows.push_back(std::move(row));
        }
        // Hexadecimal bytes such as "10" are no numbers.
        sheet.AddTable(std::string(range.title) + " (" + std::to_string(range.first) + "-" +
                           std::to_string(range.last) + ")",
                       headings, std::move(rows), true);
    }
    return sheet;
}

int WorkbookModeBits(int modeIndex) {
    static constexpr int kBits[] = {63, 1, 2};
    return modeIndex >= 0 && modeIndex < 3 ? kBits[modeIndex] : -1;
}

void ApplyNetworkSave(ParameterImage& file, const std::map<int, uint8_t>& edits, int modeIndex) {
    for (const auto& [index, value] : edits) {
        if (!IsEditableNetworkByte(index)) {
            throw RuntimeError(kErrPathFileAccess,
                               "Byte " + std::to_string(index) + " is not a network byte");
        }
    }
    for (const auto& [index, value] : edits) file[index] = value;
    const int bits = WorkbookModeBits(modeIndex);
    if (bits >= 0 && file[1024] != 0) file[2560] = static_cast<uint8_t>((file[2560] & 0xC0) | bits);
    // Without a CPU type the check bytes of the main block are left alone: only the network
    // sum is written, by the same rule as the run's save.
    SetCheckSum(file, "", true);
}

void WriteNetworkBytes(const std::string& path, const std::map<int, uint8_t>& edits,
                       int modeIndex) {
    ParameterImage file = LoadParameterImage(path);
    ApplyNetworkSave(file, edits, modeIndex);
    SaveParameterImage(path, file);
}

bool NetworkBytesDiffer(const std::vector<uint8_t>& a, const std::vector<uint8_t>& b) {
    for (const ByteRange& range : kNetworkRanges) {
        for (int index = range.first; index <= range.last; ++index) {
            const auto at = static_cast<std::size_t>(index);
            if ((at < a.size()) != (at < b.size())) return true;
            if (at < a.size() && a[at] != b[at]) return true;
        }
    }
    return false;
}

}  // namespace gantrix
