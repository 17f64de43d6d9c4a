// SPDX-License-Identifier: Apache-2.0
#include "headless/Page.h"

#include <algorithm>
#include <cctype>

#include "common/InputRoutines.h"
#include "platform/rkcmnt/rkcmnt.h"
#include "store/ParameterFiles.h"
#include "store/StoreState.h"

namespace gantrix::headless {
namespace {

// Lower case with runs of blanks as one, for comparing typed option and flag values.
std::string Folded(const std::string& text) {
    std::string folded;
    for (char c : Trim(text)) {
        if (c == ' ' && !folded.empty() && folded.back() == ' ') continue;
        folded += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return folded;
}

std::optional<bool> FlagValue(const std::string& text) {
    const std::string v = Folded(text);
    if (v == "on" || v == "yes" || v == "true" || v == "1") return true;
    if (v == "off" || v == "no" || v == "false" || v == "0") return false;
    return std::nullopt;
}

std::optional<int> OptionIndex(const FieldRef& field, const std::string& text) {
    const std::string v = Folded(text);
    const OptionSet& set = *field.options;
    for (size_t i = 0; i < set.values.size(); ++i) {
        if (v == Folded(set.values[i])) return static_cast<int>(i);
        if (i < set.captions.size() && v == Folded(set.captions[i])) return static_cast<int>(i);
    }
    return std::nullopt;
}

std::string OptionList(const FieldRef& field) {
    std::string list;
    for (const std::string& option : field.options->values) {
        list += (list.empty() ? "" : ", ") + option;
    }
    return list;
}

bool OnlyZerosAndBlanks(const std::string& text) {
    return text.find_first_not_of("0 ") == std::string::npos;
}

}  // namespace

std::string Page::ValueOf(const FieldRef& field) {
    if (field.flag != nullptr) return *field.flag ? "on" : "off";
    if (field.option != nullptr) {
        const int i = *field.option;
        const auto& values = field.options->values;
        return i >= 0 && i < static_cast<int>(values.size()) ? values[i] : "";
    }
    return *field.text;
}

std::optional<FieldRef> Page::Find(const std::string& key) {
    for (std::vector<FieldRef> list : {Fields(), Actions()}) {
        for (FieldRef& field : list) {
            if (field.key == key) return field;
        }
    }
    return std::nullopt;
}

std::vector<FieldRef> Page::Actions() {
    return {};
}

std::vector<std::pair<std::string, std::string>> Page::ActionsShowing() {
    return {};
}

std::vector<FieldRef> Page::AllFields() {
    return Fields();
}

std::optional<FieldRef> Page::FindAny(const std::string& key) {
    for (FieldRef& field : AllFields()) {
        if (field.key == key) return field;
    }
    return std::nullopt;
}

std::string Page::KeyOfControl(const std::string& control) {
    for (const FieldRef& field : AllFields()) {
        if (field.control == control) return field.key;
    }
    return "";
}

void Page::TakeAll() {}

std::optional<std::string> Page::Type(const FieldRef& field, const std::string& text) {
    if (auto locked = Locked(field)) return locked;
    const std::string before = ValueOf(field);
    if (field.flag != nullptr) {
        const auto flag = FlagValue(text);
        if (!flag) return "takes on or off, not \"" + text + "\"";
        *field.flag = *flag;
    } else if (field.option != nullptr) {
        const auto index = OptionIndex(field, text);
        if (!index) return "takes one of " + OptionList(field) + ", not \"" + text + "\"";
        *field.option = *index;
    } else {
        std::string cleaned;
        TextBoxState box{text, 0};
        switch (field.cleaning) {
            case Cleaning::Decimal:
                CheckDecimalText(box);
                cleaned = box.text;
                // A run of zeros is cut to nothing as the box does; other text the box drops
                // would be lost without a word, so it is refused.
                if (cleaned.empty() && !OnlyZerosAndBlanks(text)) {
                    return "takes a decimal number, not \"" + text + "\"";
                }
                break;
            case Cleaning::Hex:
                CheckHexText(box);
                cleaned = box.text;
                if (cleaned.empty() && !IsBlank(text)) {
                    return "takes a hexadecimal number, not \"" + text + "\"";
                }
                break;
            case Cleaning::Page:
                if (auto refused = Clean(field, text, cleaned)) return refused;
                break;
        }
        *field.text = cleaned;
    }
    Changed(field, ValueOf(field) != before);
    return std::nullopt;
}

std::optional<std::string> Page::Clean(const FieldRef&, const std::string& text,
                                       std::string& cleaned) {
    cleaned = text;
    return std::nullopt;
}

std::optional<std::string> Page::Locked(const FieldRef&) {
    return std::nullopt;
}

void Page::Changed(const FieldRef&, bool) {}

void SetUpHostLibraries(const std::string& cpuType, const std::string& projectDir) {
    std::string dir = projectDir, cpu = cpuType;
    RkSetupGlobal(dir.data(), cpu.data(), CpuCodeOf(cpuType), nullptr);
}

DialogContext HeadlessContext(const std::string& cpuType, const std::string& projectDir) {
    DialogContext context;
    context.CpuType = cpuType;
    context.ProjectDir = projectDir;
    // The host libraries answer for the CPU of the last setup, as in a run.
    SetUpHostLibraries(cpuType, projectDir);
    for (char letter : DeviceMaxSizes::kLetters) {
        context.DeviceMaxSize[letter] = GetDeviceMaxSize(std::string(1, letter));
    }
    return context;
}

}  // namespace gantrix::headless
