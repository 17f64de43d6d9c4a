// SPDX-License-Identifier: Apache-2.0
#include "dialogs/frmMemory/MemoryFields.h"

#include <algorithm>
#include <vector>

#include "common/ControlNumbers.h"
#include "common/InputRoutines.h"
#include "common/StringTable.h"
#include "platform/rkpara/rkpara.h"
#include "store/ParameterFiles.h"

namespace gantrix {
namespace {

constexpr const char* kForm = "frmMemory";
constexpr int kMessageSubprogramZero = 13;

// The groups this dialog branches on.
bool IsTraceLatchCpu(const std::string& cpu) {
    return CpuIn(cpu, {"A0H", "A1S", "A2C", "A2 ", "A3 ", "A3H"});
}
bool IsExtendedCpu(const std::string& cpu) {
    return CpuIn(cpu, {"A2A", "A3A", "A2U", "A3U", "A4U"});
}
bool IsUCpu(const std::string& cpu) {
    return CpuIn(cpu, {"A2U", "A3U", "A4U"});
}

// An erased word (both bytes 255) reads as 0, and the load writes that 0 into the image.
void ZeroIfErased(ParameterImage& image, int index) {
    if (image[index] == 255 && image[index + 1] == 255) {
        image[index] = 0;
        image[index + 1] = 0;
    }
}

std::string KText(long long number) {
    return std::to_string(NumberToK(number));
}

const std::string& TextOf(const MemoryFields& fields, int control) {
    switch (control) {
        case kComment:
            return fields.Text2;
        case kExtComment:
            return fields.Text3;
        case kFileRegister:
            return fields.Text4;
        default:
            return fields.Text1.at(static_cast<size_t>(control));
    }
}

long Value(const MemoryFields& fields, int control) {
    return ValueOf(TextOf(fields, control));
}

}  // namespace

std::string MemoryControlName(int control) {
    switch (control) {
        case kComment:
            return "Text2";
        case kExtComment:
            return "Text3";
        case kFileRegister:
            return "Text4";
        default:
            return "Text1(" + std::to_string(control) + ")";
    }
}

int MemoryControlNo(int control) {
    return GetControlNo(kForm, MemoryControlName(control));
}

bool IsKnownMemoryCpu(const std::string& cpu) {
    return CpuIn(cpu, {"A0J", "A0H", "A1S", "A1 ", "A2C", "A2 ", "A3 ", "A3H", "A2A", "A3A", "A2U",
                       "A3U", "A4U"});
}

MemoryVisibility VisibleMemoryControls(const std::string& cpu) {
    MemoryVisibility v;
    // An unknown code shows no input at all: it has no limits to check a value against, and
    // OK writes nothing for it.
    if (!IsKnownMemoryCpu(cpu)) return v;
    v.field[kMain] = true;
    v.field[kMicro] = cpu != "A0J";
    v.field[kSub1] = CpuIn(cpu, {"A3 ", "A3H", "A3A", "A3U", "A4U"});
    v.field[kSubMicro] = CpuIn(cpu, {"A3 ", "A3H"});
    v.field[kSub2] = cpu == "A4U";
    v.field[kSub3] = cpu == "A4U";
    // Both comment fields for every CPU type: their values are stored for every type and
    // Clear gives each of them a default.
    v.field[kComment] = true;
    v.field[kExtComment] = true;
    v.field[kFileRegister] = cpu != "A0J" && cpu != "A1 ";
    v.traceAndLatch = IsTraceLatchCpu(cpu);
    return v;
}

namespace {

// The limits of cpu; reservedWord is the word at 138 (as refreshed by the load).
MemoryLimits MemoryLimitsOf(const std::string& cpu, int reservedWord) {
    MemoryLimits limits;
    if (cpu == "A0J") {
        limits.SequenceMax = 7;
    } else if (CpuIn(cpu, {"A0H", "A1S", "A2C"})) {
        limits.SequenceMax = 8;
        limits.MicroMax = 14;
    } else if (cpu == "A1 ") {
        limits.SequenceMax = 6;
        limits.MicroMax = 10;
    } else if (CpuIn(cpu, {"A2 ", "A2A", "A2U"})) {
        limits.SequenceMax = 14;
        limits.MicroMax = 26;
    } else if (CpuIn(cpu, {"A3 ", "A3H", "A3A", "A3U", "A4U"})) {
        limits.SequenceMax = 30;
        limits.MicroMax = 58;
    }
    if (IsUCpu(cpu)) {
        limits.ReservedK = reservedWord / 1024 + (reservedWord % 1024 != 0 ? 1 : 0);
    }
    const int rest = 30 - limits.ReservedK;
    if (cpu == "A3U" || cpu == "A4U") {
        limits.MainMax = static_cast<int16_t>(rest);
    } else if (cpu == "A2U") {
        limits.MainMax = static_cast<int16_t>(std::min(14, rest));
    } else {
        limits.MainMax = limits.SequenceMax;
    }
    return limits;
}

}  // namespace

int FileRegisterMax(const std::string& cpu) {
    if (CpuIn(cpu, {"A0H", "A1S", "A2C", "A2 "})) return 4;
    if (CpuIn(cpu, {"A3 ", "A3H", "A2A", "A3A", "A2U", "A3U", "A4U"})) return 8;
    return -1;
}

MemoryLimits LoadMemoryLimits(ParameterImage& image, const DialogContext& context) {
    if (!IsUCpu(context.CpuType)) return MemoryLimitsOf(context.CpuType, 0);
    // Another window may have changed the reserved area in the working file since the image
    // was loaded, so the file's bytes win.
    const std::string name = Dir(context.ProjectDir + kParamWork);
    if (!name.empty()) {
        const std::vector<uint8_t> file = ReadWholeFile(context.ProjectDir + name);
        if (file.size() > 139) {
            image[138] = file[138];
            image[139] = file[139];
        }
    }
    return ImageMemoryLimits(image, context.CpuType);
}

MemoryLimits ImageMemoryLimits(ParameterImage& image, const std::string& cpu) {
    if (!IsUCpu(cpu)) return MemoryLimitsOf(cpu, 0);
    ZeroIfErased(image, 138);
    return MemoryLimitsOf(cpu, image.GetParamWord(138));
}

MemoryFields ReadMemory(ParameterImage& image, const DialogContext& context) {
    const std::string& cpu = context.CpuType;
    const bool known = IsKnownMemoryCpu(cpu);
    MemoryFields f;
    f.Text1[kMain] = KText(image.GetParamWord(64));
    if (IsUCpu(cpu)) {
        ZeroIfErased(image, 2434);
        f.Text1[kMicro] = KText(image.GetParamWord(2434));
    } else if (known && cpu != "A0J") {
        f.Text1[kMicro] = KText(image.GetParamWord(72));
    }
    f.Text1[kSub1] = KText(image.GetParamWord(66));
    if (CpuIn(cpu, {"A3 ", "A3H"})) f.Text1[kSubMicro] = KText(image.GetParamWord(74));
    if (cpu == "A4U") {
        ZeroIfErased(image, 134);
        ZeroIfErased(image, 136);
        f.Text1[kSub2] = KText(image.GetParamWord(134));
        f.Text1[kSub3] = KText(image.GetParamWord(136));
    }
    f.Text2 = KText(image.GetParamWord(70) * 2LL);
    if (known) ZeroIfErased(image, 132);
    f.Text3 = KText(image.GetParamWord(132) * 2LL);
    if (known && cpu != "A0J" && cpu != "A1 ") f.Text4 = KText(image.GetParamWord(68));
    if (IsTraceLatchCpu(cpu)) {
        f.SanpFlag = image[80] == 255;
        switch (image[76]) {
            case 0:
                f.SlatchDataFlag = false;
                f.SlatchFileFlag = false;
                break;
            case 1:
                f.SlatchDataFlag = true;
                f.SlatchFileFlag = false;
                break;
            case 2:
                f.SlatchDataFlag = false;
                f.SlatchFileFlag = true;
                break;
            case 3:
                f.SlatchDataFlag = true;
                f.SlatchFileFlag = true;
                break;
            default:
                break;  // an unknown selection leaves the boxes as they are
        }
    }
    return f;
}

std::string CalcMemory(const MemoryFields& f, const std::string& cpu, const MemoryLimits& limits,
                       const ParameterImage& image) {
    const bool a0j = cpu == "A0J";
    long total = a0j ? 2 : 4;  // the parameter area
    total += 2 * Value(f, kMain);
    total += 2 * Value(f, kSub1);
    if (Value(f, kSub1) != 0) total += 6;
    total += a0j ? NumberToK(image.GetParamWord(72)) : Value(f, kMicro);
    total += Value(f, kSubMicro);
    total += 2 * Value(f, kFileRegister);
    total += Value(f, kComment);
    if (f.SlatchFileFlag) total += 2 * Value(f, kFileRegister);
    if (f.SlatchDataFlag) total += 8;
    if (f.SanpFlag) total += 8;
    if (IsExtendedCpu(cpu)) total += Value(f, kExtComment);
    if (IsUCpu(cpu)) {
        total += 2 * Value(f, kSub2) + (Value(f, kSub2) != 0 ? 1 : 0);
        total += 2 * Value(f, kSub3) + (Value(f, kSub3) != 0 ? 1 : 0);
        total += 2L * limits.ReservedK;
    }
    return std::to_string(total);
}

std::string SetPointNumber(const MemoryFields& fields, int kind) {
    if (kind != 0 && kind != 1) return "";
    const long v = Value(fields, kind == 0 ? kComment : kExtComment);
    const long n = v == 0 ? 0 : (v - 1) * 64;
    return "(" + std::to_string(n) + LoadResString(ids::Points) + ")";
}

bool CheckMemoryField(const MemoryFields& fields, int control, int min, int max,
                      const DialogContext& context, const MemoryLimits& limits,
                      const MemoryVisibility& visible, ErrorTables& errors) {
    const auto fail = [&](int message) {
        errors.Record(message, MemoryControlNo(control));
        return false;
    };
    if (IsBlank(TextOf(fields, control))) return fail(kMessageInputAValue);
    const long v = Value(fields, control);
    const bool outside = v < min || v > max;
    if (control == kComment || control == kExtComment) {
        if (v != 0 && outside) return fail(kMessageOutOfRange);
    } else if (outside) {
        return fail(kMessageOutOfRange);
    }
    if (v == 0 && ((control == kSub1 && context.blnSubEditing1) ||
                   (control == kSub2 && context.blnSubEditing2) ||
                   (control == kSub3 && context.blnSubEditing3))) {
        return fail(kMessageSubprogramZero);
    }
    if (control == kSubMicro && v != 0 && Value(fields, kSub1) == 0) {
        return fail(kMessageInvalidSetting);
    }
    if ((control == kMicro || control == kSubMicro) && v % 2 != 0) {
        return fail(kMessageInvalidSetting);
    }
    // A microcomputer program takes its K bytes out of the steps of its sequence program (two
    // bytes a step). The pair is judged only when the microcomputer field passed on its own.
    const auto pairFails = [&](int micro, int max) {
        if (!visible.field[micro] || errors.ControlHasError(MemoryControlNo(micro))) return false;
        if (v + Value(fields, micro) / 2 <= max) return false;
        errors.Record(kMessageInvalidSetting, MemoryControlNo(control));
        errors.Record(kMessageInvalidSetting, MemoryControlNo(micro));
        return true;
    };
    if (control == kMain && pairFails(kMicro, limits.MainMax)) return false;
    if (control == kSub1 && pairFails(kSubMicro, limits.SequenceMax)) return false;
    return true;
}

ErrorTables ValidateMemory(const MemoryFields& fields, const DialogContext& context,
                           const MemoryLimits& limits) {
    ErrorTables errors;
    const MemoryVisibility visible = VisibleMemoryControls(context.CpuType);
    struct Rule {
        int control;
        int min;
        int max;
    };
    // The microcomputer fields come before their sequence fields, whose pair rule needs to
    // know whether the microcomputer field already failed.
    const Rule rules[] = {
        {kMicro, 0, limits.MicroMax},
        {kMain, 1, limits.MainMax},
        {kSubMicro, 0, limits.MicroMax},
        {kSub1, 0, limits.SequenceMax},
        {kSub2, 0, limits.SequenceMax},
        {kSub3, 0, limits.SequenceMax},
        {kComment, 2, 64},
        {kExtComment, 2, 63},
    };
    for (const Rule& rule : rules) {
        if (!visible.field[rule.control]) continue;
        CheckMemoryField(fields, rule.control, rule.min, rule.max, context, limits, visible,
                         errors);
    }
    // The file register is checked by CPU type, not by what is shown.
    const int fileMax = FileRegisterMax(context.CpuType);
    if (fileMax >= 0) {
        CheckMemoryField(fields, kFileRegister, 0, fileMax, context, limits, visible, errors);
    }
    return errors;
}

void WriteMemory(const MemoryFields& f, ParameterImage& image, const DialogContext& context) {
    const std::string& cpu = context.CpuType;
    if (!IsKnownMemoryCpu(cpu)) return;
    const auto k = [&](int control) -> long long { return KToNumber(Value(f, control)); };
    // Written into a copy first: an overflow half-way must not leave half the region written.
    ParameterImage out = image;
    out.SetParamWord(k(kMain), 64);
    if (IsUCpu(cpu)) {
        const long long w = out.GetParamWord(2432) * 2LL;
        out.SetParamWord(k(kMicro) + w, 72);
        out.SetParamWord(k(kMicro), 2434);
    } else if (cpu != "A0J") {
        out.SetParamWord(k(kMicro), 72);
    }
    out.SetParamWord(k(kSub1), 66);
    if (CpuIn(cpu, {"A3 ", "A3H"})) {
        out.SetParamWord(k(kSubMicro), 74);
    } else if (IsExtendedCpu(cpu)) {
        out[74] = 0;
        out[75] = 0;
    }
    if (cpu == "A4U") {
        out.SetParamWord(k(kSub2), 134);
        out.SetParamWord(k(kSub3), 136);
    } else if (cpu != "A0J") {
        if (out.IsErased(134)) out.SetParamWord(0, 134);
        if (out.IsErased(136)) out.SetParamWord(0, 136);
    }
    out.SetParamWord(k(kComment) / 2, 70);
    out.SetParamWord(k(kExtComment) / 2, 132);
    if (cpu != "A0J" && cpu != "A1 ") out.SetParamWord(k(kFileRegister), 68);
    if (IsTraceLatchCpu(cpu)) {
        out[80] = f.SanpFlag ? 255 : 0;
        out[76] = static_cast<uint8_t>((f.SlatchDataFlag ? 1 : 0) + (f.SlatchFileFlag ? 2 : 0));
        // The latched file register area has the size of the file register just written.
        out[78] = f.SlatchFileFlag ? out[68] : 0;
        out[79] = f.SlatchFileFlag ? out[69] : 0;
    } else if (IsExtendedCpu(cpu)) {
        // These types keep no trace or latch settings here; the area has a fixed content.
        out[80] = 0;
        out[81] = 255;
        for (int i = 82; i <= 87; ++i) out[i] = 0;
        for (int i = 88; i <= 131; ++i) out[i] = 255;
        out[76] = 0;
    }
    image = out;
}

MemoryFields DefaultsMemory(const MemoryFields& current, const DialogContext& context) {
    const std::string& cpu = context.CpuType;
    MemoryFields f = current;
    if (!IsKnownMemoryCpu(cpu)) return f;
    if (cpu == "A0J") {
        f.Text1[kMain] = "3";
        f.Text2 = "64";
        f.Text3 = "0";
        return f;
    }
    f.Text1[kMain] = "6";
    f.Text1[kMicro] = "0";
    f.Text3 = "0";
    if (cpu == "A1 ") {
        f.Text2 = "64";
        return f;
    }
    f.Text2 = "0";
    f.Text4 = "0";
    if (CpuIn(cpu, {"A3 ", "A3H", "A3A", "A3U", "A4U"})) f.Text1[kSub1] = "0";
    if (CpuIn(cpu, {"A3 ", "A3H"})) f.Text1[kSubMicro] = "0";
    if (cpu == "A4U") {
        f.Text1[kSub2] = "0";
        f.Text1[kSub3] = "0";
    }
    if (IsTraceLatchCpu(cpu)) {
        f.SanpFlag = false;
        f.SlatchDataFlag = false;
        f.SlatchFileFlag = false;
    }
    return f;
}

bool MicroProgramPresent(const ParameterImage& image, const DialogContext& context) {
    // The file name is matched without regard to case, as the project's file system did.
    const std::string name = Dir(context.ProjectDir + "Mmicro.bin");
    const std::string path = context.ProjectDir + (name.empty() ? "Mmicro.bin" : name);
    std::vector<char> buffer(path.begin(), path.end());
    buffer.push_back('\0');
    return RkCheckMicro(buffer.data(), static_cast<int16_t>(image.GetParamWord(64)),
                        static_cast<int16_t>(image.GetParamWord(72))) == 1;
}

}  // namespace gantrix
