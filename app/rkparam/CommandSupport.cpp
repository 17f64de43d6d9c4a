// SPDX-License-Identifier: Apache-2.0
#include "CommandSupport.h"

#include <cstdio>
#include <nlohmann/json.hpp>

#include "ProjectFiles.h"
#include "store/Project.h"

namespace rkparam {

namespace hl = gantrix::headless;

std::string Quoted(const std::string& text) {
    return "\"" + text + "\"";
}

std::string Printable(const std::string& text) {
    const std::string quoted = hl::QuoteValue(text);
    return quoted.starts_with('"') ? quoted : Quoted(quoted);
}

std::string Utf8Text(const std::string& text) {
    try {
        (void)nlohmann::json(text).dump();
        return text;
    } catch (const nlohmann::json::exception&) {
        std::string escaped;
        for (const char c : text) {
            const auto u = static_cast<unsigned char>(c);
            if (u < 0x80) {
                escaped += c;
                continue;
            }
            char buffer[8];
            std::snprintf(buffer, sizeof buffer, "\\x%02X", u);
            escaped += buffer;
        }
        return escaped;
    }
}

void PrintList(std::ostream& out, const std::string& prefix, const std::vector<hl::Violation>& list,
               size_t unlisted) {
    for (size_t i = 0; i < list.size() && i < kListed; ++i) {
        out << prefix << hl::Describe(list[i]) << "\n";
    }
    const size_t more = (list.size() > kListed ? list.size() - kListed : 0) + unlisted;
    if (more > 0) out << prefix << "and " << more << " more\n";
}

gantrix::ProjectPath Locate(const std::string& path) {
    gantrix::ProjectPath located = gantrix::LocateProject(path);
    if (!located.exists) {
        throw Failure(Quoted(located.file) +
                      " is missing; make the project with: rkparam new --cpu CODE " + path);
    }
    return located;
}

std::string CpuFor(const std::string& option, const std::string& projectDir,
                   const std::string& fallback) {
    std::string cpu = option;
    if (cpu.empty()) cpu = ReadCpuNote(projectDir);
    if (cpu.empty()) cpu = fallback;
    if (cpu.empty()) {
        throw Failure("no CPU type: " + Quoted(projectDir + kCpuFile) +
                      " is not there or names none; give --cpu CODE");
    }
    cpu = gantrix::NormalizeCpuCode(cpu);
    if (!gantrix::IsKnownCpuType(cpu)) {
        throw Failure("unknown CPU type " + Printable(cpu) +
                      ": expected one of A0J A0H A1S A1 A2C A2 A3 A3H A2A A3A A2U A3U A4U");
    }
    return cpu;
}

std::string Shown(const std::optional<std::string>& value) {
    if (!value) return "(none)";
    return value->empty() ? "\"\"" : hl::QuoteValue(*value);
}

void PrintDifference(std::ostream& out, const hl::Difference& d) {
    std::string dialog;
    for (const hl::FieldDifference& f : d.fields) {
        if (f.dialog != dialog) out << "[" << (dialog = f.dialog) << "]\n";
        out << f.key << ": " << Shown(f.a) << " => " << Shown(f.b) << "\n";
    }
    if (!d.bytes.empty()) out << "[bytes]\n";
    for (const hl::ByteDifference& r : d.bytes) {
        std::string left, right;
        for (size_t i = 0; i < r.a.size(); ++i) {
            char buffer[8];
            std::snprintf(buffer, sizeof buffer, i == 0 ? "%02X" : " %02X", r.a[i]);
            left += buffer;
            std::snprintf(buffer, sizeof buffer, i == 0 ? "%02X" : " %02X", r.b[i]);
            right += buffer;
        }
        out << r.first << ".." << r.last << ": " << left << " => " << right << "\n";
    }
}

}  // namespace rkparam
