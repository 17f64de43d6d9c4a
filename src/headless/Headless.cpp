#include "headless/Headless.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <memory>
#include <sstream>

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

constexpr int kCheckBytes = 525;
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

struct ParsedField {
    std::string key;
    std::string value;
    int line = 0;
};

// The image the fields give (see Headless.h); errors name what cannot be assigned.
ParameterImage ImageOfFields(const std::vector<ParsedField>& fields, const DialogContext& context,
                             std::vector<std::string>& errors) {
    const Pages pages = PagesFor(context);
    std::vector<FieldRef> all;
    all.reserve(512);
    for (const auto& page : pages) {
        page->TakeAll();
        for (FieldRef& field : page->AllFields()) all.push_back(std::move(field));
    }
    // Fields usually come in the order of the list; the index is built only for the others.
    std::map<std::string, size_t> index;
    std::vector<int> givenOn(all.size(), 0);  // the line that gave each field
    size_t next = 0;
    for (const ParsedField& f : fields) {
        size_t at = next;
        if (at >= all.size() || all[at].key != f.key) {
            if (index.empty()) {
                for (size_t i = 0; i < all.size(); ++i) index.emplace(all[i].key, i);
            }
            const auto found = index.find(f.key);
            at = found == index.end() ? all.size() : found->second;
        }
        const auto where = [&f] { return "line " + std::to_string(f.line) + ": "; };
        if (at == all.size()) {
            errors.push_back(where() + f.key + " is no field of CPU type \"" + context.CpuType +
                             "\"");
            continue;
        }
        next = at + 1;
        if (givenOn[at] != 0) {
            errors.push_back(where() + f.key + " is given twice (first on line " +
                             std::to_string(givenOn[at]) + ")");
            continue;
        }
        givenOn[at] = f.line;
        if (!Page::Assign(all[at], f.value)) {
            errors.push_back(where() + f.key + " does not take \"" + f.value + "\"");
        }
    }
    ParameterImage image;
    platform::BuildDefaultImage(context.CpuType, image.data());
    for (const auto& page : pages) {
        // A value that does not fit its word stops that dialog's OK; the dialog then leaves the
        // image as it was, on export as on import.
        ParameterImage written = image;
        try {
            page->Write(written);
            image = written;
        } catch (const std::exception&) {
        }
    }
    return image;
}

// Where the check bytes and the network sum lie, and whether an image holds them as its own
// bytes give them: the text form then says "computed" rather than listing them, so that an
// edited field gets them right again.
constexpr int kNetworkSum = 2056;
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
    std::vector<ParsedField> fields;
    fields.reserve(512);
    for (const ShownDialog& dialog : d.dialogs) {
        for (const ShownField& f : dialog.fields) fields.push_back({f.key, f.value, 0});
    }
    std::vector<std::string> errors;  // none: every shown value assigns back
    d.fieldsImage = ImageOfFields(fields, context, errors);
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

std::optional<std::vector<uint8_t>> ParseHex(const std::string& text) {
    std::vector<uint8_t> bytes;
    std::istringstream in(text);
    std::string word;
    while (in >> word) {
        if (word.size() != 2 ||
            word.find_first_not_of("0123456789ABCDEFabcdef") != std::string::npos) {
            return std::nullopt;
        }
        bytes.push_back(static_cast<uint8_t>(std::stoi(word, nullptr, 16)));
    }
    return bytes;
}

struct ParsedBytes {
    int first = 0;
    int last = 0;
    std::vector<uint8_t> value;
    std::vector<uint8_t> fieldsGive;
    int line = 0;
};

// "bytes FIRST..LAST = hh .. (fields give hh ..)"
std::optional<ParsedBytes> ParseBytesLine(const std::string& line) {
    ParsedBytes b;
    int consumed = 0;
    if (std::sscanf(line.c_str(), "bytes %d..%d =%n", &b.first, &b.last, &consumed) != 2) {
        return std::nullopt;
    }
    const std::string rest = line.substr(static_cast<size_t>(consumed));
    const std::string marker = "(fields give ";
    const size_t at = rest.find(marker);
    if (at == std::string::npos || rest.empty() || Trim(rest).back() != ')') return std::nullopt;
    const auto value = ParseHex(rest.substr(0, at));
    const size_t start = at + marker.size();
    const auto fields = ParseHex(rest.substr(start, rest.rfind(')') - start));
    if (!value || !fields || b.first < 0 || b.last >= kImageSize || b.first > b.last) {
        return std::nullopt;
    }
    const size_t count = static_cast<size_t>(b.last - b.first + 1);
    if (value->size() != count || fields->size() != count) return std::nullopt;
    b.value = *value;
    b.fieldsGive = *fields;
    return b;
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
    outcome.image = work;
    return outcome;
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

std::string CpuOfText(const std::string& text) {
    std::istringstream in(text);
    std::string line;
    while (std::getline(in, line)) {
        const std::string t = Trim(line);
        if (t.compare(0, 3, "cpu") != 0) continue;
        const size_t eq = t.find('=');
        if (eq == std::string::npos || Trim(t.substr(0, eq)) != "cpu") continue;
        return UnquoteValue(Trim(t.substr(eq + 1))).value_or("");
    }
    return "";
}

ImportOutcome ImportText(const std::string& text, const DialogContext& context) {
    ImportOutcome outcome;
    std::vector<ParsedField> fields;
    fields.reserve(512);
    std::vector<ParsedBytes> bytes;
    std::map<std::string, int> seen;
    Sums sums;  // computed unless the text says otherwise
    std::istringstream in(text);
    std::string raw;
    int lineNo = 0;
    while (std::getline(in, raw)) {
        ++lineNo;
        if (!raw.empty() && raw.back() == '\r') raw.pop_back();
        const std::string line = Trim(raw);
        const std::string where = "line " + std::to_string(lineNo) + ": ";
        if (line.empty() || line[0] == '#' || line[0] == '[') continue;
        if (line.compare(0, 6, "bytes ") == 0) {
            auto parsed = ParseBytesLine(line);
            if (!parsed) {
                outcome.errors.push_back(where +
                                         "expected \"bytes FIRST..LAST = hex bytes "
                                         "(fields give hex bytes)\" within 0..3071");
                continue;
            }
            parsed->line = lineNo;
            bytes.push_back(*parsed);
            continue;
        }
        const size_t eq = line.find('=');
        if (eq == std::string::npos) {
            outcome.errors.push_back(where + "expected \"key = value\"");
            continue;
        }
        const std::string key = Trim(line.substr(0, eq));
        const auto value = UnquoteValue(Trim(line.substr(eq + 1)));
        if (!value) {
            outcome.errors.push_back(where + "the quoted value of " + key + " is not closed");
            continue;
        }
        if (key == "cpu" || key == "check_bytes" || key == "network_sum") {
            if (!seen.emplace(key, lineNo).second) {
                outcome.errors.push_back(where + key + " is given twice (first on line " +
                                         std::to_string(seen[key]) + ")");
                continue;
            }
        }
        if (key == "cpu") {
            outcome.cpu = *value;
            continue;
        }
        if (key == "check_bytes" || key == "network_sum") {
            if (*value != kComputed && *value != kAsListed) {
                outcome.errors.push_back(where + key + " takes \"" + kComputed + "\" or \"" +
                                         kAsListed + "\", not \"" + *value + "\"");
            }
            (key == "check_bytes" ? sums.checkBytes : sums.networkSum) = *value == kComputed;
            continue;
        }
        fields.push_back({key, *value, lineNo});
    }
    if (!outcome.cpu.empty() && outcome.cpu != context.CpuType) {
        outcome.errors.push_back("the text is for CPU type \"" + outcome.cpu +
                                 "\", the project for \"" + context.CpuType + "\"");
    }
    ParameterImage image = ImageOfFields(fields, context, outcome.errors);
    if (!outcome.errors.empty()) return outcome;
    const ParameterImage w = image;
    for (const ParsedBytes& b : bytes) {
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
            outcome.notes.push_back("line " + std::to_string(b.line) + ": bytes " +
                                    std::to_string(b.first) + ".." + std::to_string(b.last) +
                                    ": the fields now give " + HexBytes(Slice(w, b.first, b.last)) +
                                    " there; the edited fields win over the listed bytes");
        }
    }
    PutSums(image, context.CpuType, sums);
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
