// SPDX-License-Identifier: Apache-2.0
#include "headless/Headless.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <memory>
#include <string_view>
#include <tuple>

#include "common/ControlNumbers.h"
#include "common/InputRoutines.h"
#include "common/Messages.h"
#include "dialogs/frmIOLayout/IOLayoutFields.h"
#include "headless/Page.h"
#include "menus/MenuRules.h"
#include "platform/rkcmnt/DefaultImage.h"
#include "store/CheckSum.h"

namespace gantrix::headless {
namespace {

using Pages = std::vector<std::unique_ptr<Page>>;

// The values of the text form's check_bytes and network_sum lines.
constexpr const char* kComputed = "computed";
constexpr const char* kAsListed = "as listed";

constexpr int kBytesPerLine = 16;

// The page whose keys begin with the page's name and a dot, or nullptr.
Page* OwnerOf(const Pages& pages, const std::string& key) {
    for (const auto& page : pages) {
        const std::string prefix = page->Name() + ".";
        if (key.compare(0, prefix.size(), prefix) == 0) return page.get();
    }
    return nullptr;
}

// The key of a global control number on page. Keys do not depend on the image, so they are
// looked up once per CPU type and control.
const std::string& KeyOfControlNo(Page& page, const std::string& cpu, int control) {
    thread_local std::map<std::pair<std::string, int>, std::string> cache;
    const auto id = std::make_pair(cpu, control);
    const auto found = cache.find(id);
    if (found != cache.end()) return found->second;
    const ControlName name = ControlNameOf(control);
    std::string key = name.form == page.Form() ? page.KeyOfControl(name.control) : "";
    return cache.emplace(id, std::move(key)).first->second;
}

// What ReportErrors would show: each message in ascending number, with every control
// recorded for it (or the dialog as a whole when none is).
void Collect(Page& page, const std::string& cpu, const ErrorTables& errors,
             std::vector<Violation>& out) {
    for (int m = 0; m <= kMaxMessageNo; ++m) {
        if (!errors.ErrorMessageFlags[m]) continue;
        bool named = false;
        for (int c = 0; c <= kMaxControlNo; ++c) {
            if (!errors.ControlErrorFlags[c][m]) continue;
            named = true;
            out.push_back({page.Name(), KeyOfControlNo(page, cpu, c), m, MessageText(m)});
        }
        if (!named) out.push_back({page.Name(), "", m, MessageText(m)});
    }
}

std::string HexBytes(const uint8_t* bytes, size_t count) {
    std::string text;
    char buffer[4];
    for (size_t i = 0; i < count; ++i) {
        std::snprintf(buffer, sizeof buffer, i == 0 ? "%02X" : " %02X", bytes[i]);
        text += buffer;
    }
    return text;
}

std::string HexBytes(const std::vector<uint8_t>& bytes) {
    return HexBytes(bytes.data(), bytes.size());
}

// The parameter menu's OK: the END positions against the capacities and, for the U types,
// the total memory.
void MenuChecks(const ParameterImage& image, const std::string& cpu, const EndPositions& end,
                std::vector<Violation>& out) {
    static const char* const kCapacityKeys[4] = {"memory.main", "memory.sub1", "memory.sub2",
                                                 "memory.sub3"};
    const int exceeded = FirstExceededEndPosition(image, cpu, end);
    if (exceeded >= 0) out.push_back({"menu", kCapacityKeys[exceeded], 9, MessageText(9)});
    if (CpuIn(cpu, {"A2U", "A3U", "A4U"})) {
        ParameterImage copy = image;  // the check rewrites an erased reserved area
        if (TotalMemoryK(copy) >= 31) out.push_back({"menu", "", 23, MessageText(23)});
    }
}

// Where the check bytes and the network sum lie, and whether an image holds them as its own
// bytes give them: the text form then says "computed" rather than listing them, so that an
// edited field gets them right again.
bool InSums(int i) {
    return (i >= kCheckBytes && i < kCheckBytes + 3) || (i >= kNetworkSum && i < kNetworkSum + 3);
}

struct Sums {
    bool checkBytes = true;
    bool networkSum = true;
};

Sums SumsOf(const ParameterImage& image, const std::string& cpu) {
    ParameterImage summed = image;
    SetCheckSum(summed, cpu, true);
    Sums sums;
    for (int i = 0; i < 3; ++i) {
        sums.checkBytes = sums.checkBytes && summed[kCheckBytes + i] == image[kCheckBytes + i];
        sums.networkSum = sums.networkSum && summed[kNetworkSum + i] == image[kNetworkSum + i];
    }
    return sums;
}

// The sums the text form says are computed, written over image.
void PutSums(ParameterImage& image, const std::string& cpu, const Sums& sums) {
    ParameterImage summed = image;
    SetCheckSum(summed, cpu, true);
    for (int i = 0; i < 3; ++i) {
        if (sums.checkBytes) image[kCheckBytes + i] = summed[kCheckBytes + i];
        if (sums.networkSum) image[kNetworkSum + i] = summed[kNetworkSum + i];
    }
}

struct Decomposition {
    std::vector<ShownDialog> dialogs;
    ParameterImage fieldsImage;
    Sums sums;
    const ParameterImage* image = nullptr;
    // Whether byte i is listed as a byte: the fields do not give it, and it is no computed sum.
    bool Listed(int i) const {
        if (InSums(i)) return i < kNetworkSum ? !sums.checkBytes : !sums.networkSum;
        return (*image)[i] != fieldsImage[i];
    }
};

Decomposition Decompose(const ParameterImage& image, const DialogContext& context) {
    Decomposition d;
    d.dialogs = Show(image, context);
    std::vector<TextField> fields;
    fields.reserve(512);
    for (const ShownDialog& dialog : d.dialogs) {
        for (const ShownField& f : dialog.actions) fields.push_back({f.key, f.value, 0});
        for (const ShownField& f : dialog.fields) fields.push_back({f.key, f.value, 0});
    }
    // A dialog that refuses what the image holds keeps its default bytes in W: the listed
    // bytes still give the image, and import refuses the text as the dialog refuses it.
    d.fieldsImage = TypeFields(fields, context).image;
    d.sums = SumsOf(image, context.CpuType);
    d.image = &image;
    return d;
}

// Runs of the indices where differs holds, each cut at the multiples of 16 so that a change
// moves no other line of the text form.
template <typename Predicate>
std::vector<std::pair<int, int>> Ranges(Predicate differs) {
    std::vector<std::pair<int, int>> ranges;
    for (int i = 0; i < kImageSize; ++i) {
        if (!differs(i)) continue;
        if (!ranges.empty() && ranges.back().second == i - 1 && i % kBytesPerLine != 0) {
            ranges.back().second = i;
        } else {
            ranges.push_back({i, i});
        }
    }
    return ranges;
}

std::vector<uint8_t> Slice(const ParameterImage& image, int first, int last) {
    return {image.bytes().begin() + first, image.bytes().begin() + last + 1};
}

}  // namespace

std::string MessageText(int number) {
    thread_local std::map<int, std::string> texts;
    const auto found = texts.find(number);
    if (found != texts.end()) return found->second;
    std::string text;
    if (const auto box = MessageBoxOf(number, "")) {
        for (char c : box->text) {
            if (c == '\r') continue;
            text += c == '\n' ? ' ' : c;
        }
    }
    return texts.emplace(number, text).first->second;
}

std::vector<ShownDialog> Show(const ParameterImage& image, const DialogContext& context) {
    std::vector<ShownDialog> dialogs;
    for (const auto& page : PagesFor(context)) {
        ParameterImage opened = image;
        page->Open(opened);
        ShownDialog dialog{page->Name(), page->Form(), page->Title(), {}};
        std::vector<FieldRef> fields = page->Fields();
        dialog.fields.reserve(fields.size());
        for (FieldRef& field : fields) {
            dialog.fields.push_back({std::move(field.key), Page::ValueOf(field)});
        }
        for (auto& [key, value] : page->ActionsShowing()) dialog.actions.push_back({key, value});
        dialogs.push_back(std::move(dialog));
    }
    return dialogs;
}

std::vector<Violation> Check(const ParameterImage& image, const DialogContext& context,
                             const EndPositions& endPositions) {
    std::vector<Violation> out;
    for (const auto& page : PagesFor(context)) {
        ParameterImage opened = image;
        try {
            page->Open(opened);
            const ErrorTables errors = page->Check(opened);
            if (errors.Any()) Collect(*page, context.CpuType, errors, out);
        } catch (const std::exception& error) {
            out.push_back({page->Name(), "", 0, error.what()});
        }
    }
    MenuChecks(image, context.CpuType, endPositions, out);
    ParameterImage summed = image;
    SetCheckSum(summed, context.CpuType, false);
    if (Slice(summed, kCheckBytes, kCheckBytes + 2) != Slice(image, kCheckBytes, kCheckBytes + 2)) {
        out.push_back({"file", "", -1,
                       "check bytes 525..527 hold " + HexBytes(&image.bytes()[kCheckBytes], 3) +
                           "; bytes 0..524 give " + HexBytes(&summed.bytes()[kCheckBytes], 3)});
    }
    return out;
}

SetOutcome Set(const ParameterImage& image, const DialogContext& context,
               const std::vector<Assignment>& assignments, const EndPositions& endPositions) {
    SetOutcome outcome{image, {}};
    const Pages pages = PagesFor(context);
    std::vector<std::pair<Page*, std::vector<const Assignment*>>> sessions;
    for (const Assignment& a : assignments) {
        Page* owner = OwnerOf(pages, a.key);
        if (owner == nullptr) {
            outcome.refusals.push_back(
                {"", a.key, -1, "is no field of CPU type \"" + context.CpuType + "\""});
            continue;
        }
        auto session = std::find_if(sessions.begin(), sessions.end(),
                                    [owner](const auto& s) { return s.first == owner; });
        if (session == sessions.end()) session = sessions.insert(sessions.end(), {owner, {}});
        session->second.push_back(&a);
    }

    ParameterImage work = image;
    for (auto& [page, typed] : sessions) {
        ParameterImage opened = work;
        page->Open(opened);
        bool taken = true;
        for (const Assignment* a : typed) {
            const auto field = page->Find(a->key);
            std::optional<std::string> refused;
            if (!field) {
                refused = "is no field of CPU type \"" + context.CpuType + "\"";
            } else {
                refused = page->Type(*field, a->value);
            }
            if (refused) {
                outcome.refusals.push_back({page->Name(), a->key, -1, *refused});
                taken = false;
            }
        }
        if (!taken) continue;
        const ErrorTables errors = page->Check(opened);
        if (errors.Any()) {
            Collect(*page, context.CpuType, errors, outcome.refusals);
            continue;
        }
        try {
            page->Write(opened);
            work = opened;
        } catch (const std::exception& error) {
            outcome.refusals.push_back({page->Name(), "", 0, error.what()});
        }
    }
    if (outcome.refusals.empty()) MenuChecks(work, context.CpuType, endPositions, outcome.refusals);
    if (!outcome.refusals.empty()) return outcome;
    // As the save of a run: its merge of the working file (the project's file as loaded)
    // has the network sum rewritten when the I/O assignment flag 1071 changed.
    const int flag = kIoAssignedFlagAt;
    SetCheckSum(work, context.CpuType, work[flag] != 0xFF && work[flag] != image[flag]);
    // A dialog checks only its own boxes; what it changed under another (the latch end that
    // moves the step relay range) shows in the whole check.
    Findings findings = CompareChecks(image, work, context, endPositions);
    outcome.warnings = std::move(findings.kept);
    if (!findings.added.empty()) {
        outcome.refusals = std::move(findings.added);
        return outcome;
    }
    outcome.image = work;
    return outcome;
}

Findings CompareChecks(const ParameterImage& before, const ParameterImage& after,
                       const DialogContext& context, const EndPositions& endPositions) {
    const auto id = [](const Violation& v) { return std::tie(v.dialog, v.key, v.message); };
    const std::vector<Violation> had = Check(before, context, endPositions);
    Findings findings;
    for (Violation& v : Check(after, context, endPositions)) {
        const bool old =
            std::ranges::any_of(had, [&](const Violation& h) { return id(h) == id(v); });
        (old ? findings.kept : findings.added).push_back(std::move(v));
    }
    return findings;
}

std::string Describe(const Violation& v) {
    std::string text = v.line > 0 ? "line " + std::to_string(v.line) + ": " : "";
    if (!v.dialog.empty()) text += "[" + v.dialog + "] ";
    if (!v.key.empty()) text += v.key + (v.message >= 0 ? ": " : " ");
    return text + v.text;
}

FieldsImage TypeFields(const std::vector<TextField>& fields, const DialogContext& context) {
    FieldsImage out;
    platform::BuildDefaultImage(context.CpuType, out.image.data());
    const Pages pages = PagesFor(context);
    const auto refuse = [&out](const TextField* f, const std::string& dialog,
                               const std::string& key, const std::string& why) {
        out.refusals.push_back({dialog, key, -1, why, f ? f->line : 0});
    };
    // Each line to its dialog, in the order given.
    std::vector<std::vector<const TextField*>> typed(pages.size());
    std::map<std::string, int> lineOf;
    for (const TextField& f : fields) {
        const auto [first, added] = lineOf.emplace(f.key, f.line);
        if (!added) {
            refuse(&f, "", f.key,
                   "is given twice (first on line " + std::to_string(first->second) + ")");
            continue;
        }
        const auto owner = std::ranges::find_if(
            pages, [&f](const auto& page) { return f.key.starts_with(page->Name() + "."); });
        if (owner == pages.end()) {
            refuse(&f, "", f.key, "is no field of CPU type \"" + context.CpuType + "\"");
            continue;
        }
        typed[static_cast<size_t>(owner - pages.begin())].push_back(&f);
    }

    for (size_t p = 0; p < pages.size(); ++p) {
        Page& page = *pages[p];
        ParameterImage opened = out.image;
        page.Open(opened);
        const size_t refusedBefore = out.refusals.size();
        // The fields by key; listed again when one is not found, as typing can show more
        // (the rows of a module count).
        std::map<std::string, FieldRef> shown;
        const auto list = [&] {
            shown.clear();
            for (FieldRef& field : page.Fields()) shown.emplace(field.key, field);
        };
        list();
        std::map<std::string, FieldRef> actions;
        for (FieldRef& action : page.Actions()) actions.emplace(action.key, action);
        std::map<std::string, std::pair<const TextField*, std::string>> took;
        for (const TextField* f : typed[p]) {
            auto field = shown.find(f->key);
            if (field == shown.end()) {
                list();
                field = shown.find(f->key);
            }
            const auto action = actions.find(f->key);
            if (field == shown.end() && action == actions.end()) {
                refuse(f, page.Name(), f->key,
                       page.FindAny(f->key)
                           ? "is not shown with the values given before it"
                           : "is no field of CPU type \"" + context.CpuType + "\"");
                continue;
            }
            // A button is pressed each time; a box is typed into only when its value is to
            // change, as a user leaves alone what the dialog already shows.
            const FieldRef& ref = field != shown.end() ? field->second : action->second;
            if (field == shown.end() || Page::ValueOf(ref) != f->value) {
                if (const auto refused = page.Type(ref, f->value)) {
                    refuse(f, page.Name(), f->key, *refused);
                    continue;
                }
            }
            if (field != shown.end()) took[f->key] = {f, Page::ValueOf(ref)};
        }
        for (const FieldRef& field : page.Fields()) {
            const auto given = took.find(field.key);
            if (given == took.end()) {
                if (!lineOf.contains(field.key))
                    refuse(nullptr, page.Name(), field.key, "is not given");
            } else if (Page::ValueOf(field) != given->second.second) {
                refuse(given->second.first, page.Name(), field.key,
                       "shows " + QuoteValue(Page::ValueOf(field)) + ", not " +
                           QuoteValue(given->second.second) +
                           ", once the lines of its dialog are typed");
            }
        }
        if (out.refusals.size() != refusedBefore) continue;
        const ErrorTables errors = page.Check(opened);
        if (errors.Any()) {
            Collect(page, context.CpuType, errors, out.refusals);
            for (size_t i = refusedBefore; i < out.refusals.size(); ++i) {
                const auto line = lineOf.find(out.refusals[i].key);
                if (line != lineOf.end()) out.refusals[i].line = line->second;
            }
            continue;
        }
        // No exception of a write is swallowed: a value it cannot store is a refusal.
        try {
            page.Write(opened);
            out.image = opened;
        } catch (const std::exception& error) {
            refuse(nullptr, page.Name(), "", error.what());
        }
    }
    return out;
}

std::vector<std::string> PutListedBytes(const std::vector<TextBytes>& bytes,
                                        ParameterImage& image) {
    std::vector<std::string> notes;
    const ParameterImage w = image;
    for (const TextBytes& b : bytes) {
        bool overridden = false;
        for (int i = b.first; i <= b.last; ++i) {
            const size_t k = static_cast<size_t>(i - b.first);
            if (w[i] == b.fieldsGive[k]) {
                image[i] = b.value[k];
            } else {
                overridden = true;
            }
        }
        if (overridden) {
            notes.push_back("line " + std::to_string(b.line) + ": bytes " +
                            std::to_string(b.first) + ".." + std::to_string(b.last) +
                            ": the fields now give " + HexBytes(Slice(w, b.first, b.last)) +
                            " there; the edited fields win over the listed bytes");
        }
    }
    return notes;
}

std::string QuoteValue(const std::string& value) {
    bool plain =
        value.empty() || (value.front() != ' ' && value.back() != ' ' && value.front() != '"');
    for (char c : value) {
        if (c == '\\' || static_cast<unsigned char>(c) < 32 || c == 127) plain = false;
    }
    if (plain) return value;
    std::string quoted = "\"";
    for (char c : value) {
        const auto u = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            quoted += '\\';
            quoted += c;
        } else if (u < 32 || u == 127) {
            char buffer[8];
            std::snprintf(buffer, sizeof buffer, "\\x%02X", u);
            quoted += buffer;
        } else {
            quoted += c;
        }
    }
    return quoted + "\"";
}

std::optional<std::string> UnquoteValue(const std::string& text) {
    if (text.empty() || text.front() != '"') return text;
    if (text.size() < 2 || text.back() != '"') return std::nullopt;
    std::string value;
    for (size_t i = 1; i + 1 < text.size(); ++i) {
        const char c = text[i];
        if (c != '\\') {
            if (c == '"') return std::nullopt;
            value += c;
            continue;
        }
        if (++i + 1 > text.size() - 1) return std::nullopt;
        const char e = text[i];
        if (e == '"' || e == '\\') {
            value += e;
        } else if (e == 'x' && i + 2 < text.size() - 1) {
            const std::string hex = text.substr(i + 1, 2);
            if (hex.find_first_not_of("0123456789ABCDEFabcdef") != std::string::npos) {
                return std::nullopt;
            }
            value += static_cast<char>(std::stoi(hex, nullptr, 16));
            i += 2;
        } else {
            return std::nullopt;
        }
    }
    return value;
}

std::string ExportText(const ParameterImage& image, const DialogContext& context) {
    const Decomposition d = Decompose(image, context);
    std::string text =
        "# Parameters of a PLC project (rkparam export): every field as \"key = value\" in\n"
        "# dialog order, then the bytes the fields do not give: the value the file holds and\n"
        "# the value the fields give there. rkparam import makes the same file of this text.\n";
    text += "cpu = " + QuoteValue(context.CpuType) + "\n";
    text += std::string("check_bytes = ") + (d.sums.checkBytes ? kComputed : kAsListed) + "\n";
    text += std::string("network_sum = ") + (d.sums.networkSum ? kComputed : kAsListed) + "\n";
    for (const ShownDialog& dialog : d.dialogs) {
        text += "\n[" + dialog.name + "] " + dialog.title + "\n";
        for (const ShownField& f : dialog.actions)
            text += f.key + " = " + QuoteValue(f.value) + "\n";
        for (const ShownField& f : dialog.fields) {
            text += f.key + " =";
            if (!f.value.empty()) text += " " + QuoteValue(f.value);
            text += "\n";
        }
    }
    text += "\n[bytes]\n";
    const ParameterImage& w = d.fieldsImage;
    for (const auto& [first, last] : Ranges([&](int i) { return d.Listed(i); })) {
        text += "bytes " + std::to_string(first) + ".." + std::to_string(last) + " = " +
                HexBytes(Slice(image, first, last)) + " (fields give " +
                HexBytes(Slice(w, first, last)) + ")\n";
    }
    return text;
}

namespace {

constexpr size_t kListedErrors = 100;

bool Decimal(const std::string& text, size_t& at, int& value) {
    const size_t begin = at;
    while (at < text.size() && at - begin < 5 && text[at] >= '0' && text[at] <= '9') ++at;
    const size_t digits = at - begin;
    // 0..3071, no sign and no leading zero: the form export writes.
    if (digits == 0 || digits > 4 || (digits > 1 && text[begin] == '0')) return false;
    value = std::stoi(text.substr(begin, digits));
    return value < kImageSize;
}

bool Literal(const std::string& text, size_t& at, std::string_view literal) {
    if (text.compare(at, literal.size(), literal) != 0) return false;
    at += literal.size();
    return true;
}

int HexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
}

// count bytes of two hexadecimal digits, one blank between them.
bool HexRun(const std::string& text, size_t& at, size_t count, std::vector<uint8_t>& bytes) {
    for (size_t i = 0; i < count; ++i) {
        if (i > 0 && !Literal(text, at, " ")) return false;
        if (at + 2 > text.size()) return false;
        const int high = HexDigit(text[at]), low = HexDigit(text[at + 1]);
        if (high < 0 || low < 0) return false;
        bytes.push_back(static_cast<uint8_t>(16 * high + low));
        at += 2;
    }
    return true;
}

// "bytes FIRST..LAST = hh .. (fields give hh ..)", exactly.
std::optional<TextBytes> ParseBytesLine(const std::string& line) {
    TextBytes b;
    size_t at = 0;
    if (!Literal(line, at, "bytes ") || !Decimal(line, at, b.first) || !Literal(line, at, "..") ||
        !Decimal(line, at, b.last) || b.last < b.first || !Literal(line, at, " = ")) {
        return std::nullopt;
    }
    const size_t count = static_cast<size_t>(b.last - b.first + 1);
    if (!HexRun(line, at, count, b.value) || !Literal(line, at, " (fields give ") ||
        !HexRun(line, at, count, b.fieldsGive) || !Literal(line, at, ")") || at != line.size()) {
        return std::nullopt;
    }
    return b;
}

}  // namespace

ParsedText ParseText(const std::string& text) {
    ParsedText parsed;
    const auto error = [&parsed](int line, const std::string& key, const std::string& why) {
        if (parsed.errors.size() < kListedErrors) {
            parsed.errors.push_back({"", key, -1, why, line});
        } else {
            ++parsed.unlisted;
        }
    };
    std::map<std::string, int> seen;
    size_t at = text.starts_with("\xEF\xBB\xBF") ? 3 : 0;  // a byte-order mark
    int lineNo = 0;
    while (at < text.size()) {
        size_t end = text.find('\n', at);
        if (end == std::string::npos) end = text.size();
        std::string raw = text.substr(at, end - at);
        at = end + 1;
        ++lineNo;
        if (!raw.empty() && raw.back() == '\r') raw.pop_back();
        const auto control = std::ranges::find_if(raw, [](char c) {
            const auto u = static_cast<unsigned char>(c);
            return u < 32 || u == 127;
        });
        if (control != raw.end()) {
            char code[8];
            std::snprintf(code, sizeof code, "0x%02X", static_cast<unsigned char>(*control));
            error(lineNo, "",
                  std::string("holds the control character ") + code +
                      " (a value holding one is written quoted, as \\x escapes)");
            continue;
        }
        const std::string line = Trim(raw);
        if (line.empty() || line[0] == '#') continue;
        if (line[0] == '[') {
            if (line.find(']') == std::string::npos) error(lineNo, "", "expected \"[name] title\"");
            continue;
        }
        if (line.starts_with("bytes ")) {
            auto bytes = ParseBytesLine(line);
            if (!bytes) {
                error(lineNo, "",
                      "expected \"bytes FIRST..LAST = hh .. (fields give hh ..)\": FIRST and "
                      "LAST decimal in 0..3071, FIRST not above LAST, two hexadecimal digits "
                      "for each byte of the range");
                continue;
            }
            if (!parsed.bytes.empty() && bytes->first <= parsed.bytes.back().last) {
                error(lineNo, "",
                      "bytes " + std::to_string(bytes->first) + ".." + std::to_string(bytes->last) +
                          " overlap or come before bytes " +
                          std::to_string(parsed.bytes.back().first) + ".." +
                          std::to_string(parsed.bytes.back().last) + " of line " +
                          std::to_string(parsed.bytes.back().line) +
                          "; ranges come in ascending order, each byte once");
                continue;
            }
            bytes->line = lineNo;
            parsed.bytes.push_back(std::move(*bytes));
            continue;
        }
        const size_t eq = line.find('=');
        if (eq == std::string::npos || eq == 0) {
            error(lineNo, "", "expected \"key = value\"");
            continue;
        }
        const std::string key = Trim(line.substr(0, eq));
        const auto value = UnquoteValue(Trim(line.substr(eq + 1)));
        if (!value) {
            error(lineNo, key, "the quoted value is not closed or holds an unknown escape");
            continue;
        }
        if (key == "cpu" || key == "check_bytes" || key == "network_sum") {
            const auto [first, added] = seen.emplace(key, lineNo);
            if (!added) {
                error(lineNo, key,
                      "is given twice (first on line " + std::to_string(first->second) + ")");
            } else if (key == "cpu") {
                parsed.cpu = *value;
            } else if (*value != kComputed && *value != kAsListed) {
                error(lineNo, key,
                      std::string("takes \"") + kComputed + "\" or \"" + kAsListed + "\", not " +
                          QuoteValue(*value));
            } else {
                (key == "check_bytes" ? parsed.checkBytesComputed : parsed.networkSumComputed) =
                    *value == kComputed;
            }
            continue;
        }
        parsed.fields.push_back({key, *value, lineNo});
    }
    return parsed;
}

std::string CpuOfText(const std::string& text) {
    return ParseText(text).cpu;
}

ImportOutcome ImportText(const std::string& text, const ParameterImage& before,
                         const DialogContext& context, const EndPositions& endPositions) {
    ImportOutcome outcome;
    ParsedText parsed = ParseText(text);
    outcome.unlisted = parsed.unlisted;
    outcome.refusals = std::move(parsed.errors);
    if (!parsed.cpu.empty() && parsed.cpu != context.CpuType) {
        outcome.refusals.push_back({"", "cpu", -1,
                                    "the text is for CPU type " + QuoteValue(parsed.cpu) +
                                        ", the project for \"" + context.CpuType + "\""});
    }
    if (parsed.fields.empty() && outcome.refusals.empty()) {
        outcome.refusals.push_back(
            {"", "", -1, "the text gives no field (is it the output of rkparam export?)"});
    }
    if (!outcome.refusals.empty()) return outcome;

    FieldsImage typed = TypeFields(parsed.fields, context);
    if (!typed.refusals.empty()) {
        outcome.refusals = std::move(typed.refusals);
        return outcome;
    }
    ParameterImage image = typed.image;
    outcome.notes = PutListedBytes(parsed.bytes, image);
    PutSums(image, context.CpuType, {parsed.checkBytesComputed, parsed.networkSumComputed});
    MenuChecks(image, context.CpuType, endPositions, outcome.refusals);
    if (!outcome.refusals.empty()) return outcome;
    Findings findings = CompareChecks(before, image, context, endPositions);
    outcome.warnings = std::move(findings.kept);
    if (!findings.added.empty()) {
        outcome.refusals = std::move(findings.added);
        return outcome;
    }
    outcome.image = image;
    return outcome;
}

Difference Diff(const ParameterImage& a, const DialogContext& contextA, const ParameterImage& b,
                const DialogContext& contextB) {
    const Decomposition da = Decompose(a, contextA);
    const Decomposition db = Decompose(b, contextB);
    Difference difference;
    difference.differ = a != b;

    // Dialogs in A's order, then those only B's CPU type has; keys likewise.
    std::vector<std::string> order;
    std::map<std::string, std::map<std::string, std::string>> values[2];
    std::map<std::string, std::vector<std::string>> keys;
    for (int side = 0; side < 2; ++side) {
        for (const ShownDialog& dialog : (side == 0 ? da : db).dialogs) {
            if (!keys.count(dialog.name)) order.push_back(dialog.name);
            auto& list = keys[dialog.name];
            for (const ShownField& f : dialog.fields) {
                if (!values[0][dialog.name].count(f.key) && !values[1][dialog.name].count(f.key)) {
                    list.push_back(f.key);
                }
                values[side][dialog.name][f.key] = f.value;
            }
        }
    }
    for (const std::string& dialog : order) {
        for (const std::string& key : keys[dialog]) {
            FieldDifference f{dialog, key, std::nullopt, std::nullopt};
            if (values[0][dialog].count(key)) f.a = values[0][dialog][key];
            if (values[1][dialog].count(key)) f.b = values[1][dialog][key];
            if (f.a != f.b) difference.fields.push_back(f);
        }
    }

    for (const auto& [first, last] :
         Ranges([&](int i) { return a[i] != b[i] && (da.Listed(i) || db.Listed(i)); })) {
        difference.bytes.push_back({first, last, Slice(a, first, last), Slice(b, first, last)});
    }
    return difference;
}

}  // namespace gantrix::headless
