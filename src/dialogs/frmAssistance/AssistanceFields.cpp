// SPDX-License-Identifier: Apache-2.0
#include "dialogs/frmAssistance/AssistanceFields.h"

#include <algorithm>
#include <cctype>
#include <cstdio>

#include "common/ControlNumbers.h"
#include "common/InputRoutines.h"
#include "common/StringTable.h"

namespace gantrix {
namespace {

constexpr int kStepRelayEndWord = 14;  // first number after S (extended types)
constexpr int kLatchStartWord = 16;    // first latch relay
constexpr int kLatchEndWord = 18;      // last latch relay: S begins after it
constexpr int kDefaultStepRelayEnd = 2048;
constexpr int kWatchdogWord = 160;
constexpr int kFixedWatchdog = 20;
constexpr int kContactsInUse = 170;
constexpr int kPauseWord = 172, kPauseMask = 174;
constexpr int kRunWord = 176, kRunMask = 178;
constexpr int kOutputMode = 180;
constexpr int kIoControl = 181;
constexpr int kEndManage = 140;
constexpr int kCommentByte = 208;
constexpr int kFuseCut = 164, kCalcErr = 169, kIOErr = 163, kActErr = 165;
constexpr int kXYControlBytes[4] = {255, 15, 240, 0};
constexpr int kContactBase = 32768;      // word of X0
constexpr size_t kRawContactDigits = 6;  // word and mask of a contact no X number gives

int Control(const char* name) {
    return GetControlNo("frmAssistance", name);
}

// The X number of a contact text, or -1 for a text that is no hexadecimal number of at most
// four digits (a loaded contact can be longer: it is then out of range, never read as X0).
long ContactValue(const std::string& text) {
    std::string t = Trim(text);
    if (t.size() > 4) return -1;
    for (char& c : t) {
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        if (!std::isxdigit(static_cast<unsigned char>(c)) && c != ' ') return -1;
    }
    return HexToValue(PadZero4(t));
}

// The six hexadecimal digits of a contact shown as its word and mask, upper-cased; "" for
// any other text.
std::string RawContact(const std::string& text) {
    std::string t = Trim(text);
    if (t.size() != kRawContactDigits) return "";
    for (char& c : t) {
        if (!std::isxdigit(static_cast<unsigned char>(c))) return "";
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    }
    return t;
}

void EraseContact(ParameterImage& image, int word, int mask) {
    image.SetParamWord(kErased, word);
    image[mask] = 255;
}

void PutContact(ParameterImage& image, const std::string& text, int word, int mask) {
    const ContactCode code = EncodeContact(text);
    image.SetParamWord(code.word, word);
    image[mask] = static_cast<uint8_t>(code.mask);
}

// An option byte of 0 or 1 selects that option; any other value leaves the option as designed.
void ReadOption(const ParameterImage& image, int index, int& option) {
    if (image[index] == 0 || image[index] == 1) option = image[index];
}

// A first or last step relay: empty records 11, out of low..high 3.
void CheckStepRelayBox(ErrorTables& errors, int control, const std::string& text, long low,
                       long high) {
    if (IsBlank(text)) {
        errors.Record(11, control);
    } else {
        CheckAssistanceRange(errors, control, text, low, high);
    }
}

void WriteStepRelays(const AssistanceFields& fields, ParameterImage& image,
                     const DialogContext& context, bool extended) {
    // Word 18 is the relay before the first step relay. S from 0, possible only while L is not
    // latched, has none: 65535, one below 0 in a word, which reads back as 0. An empty start
    // (no number to store) is stored the same way.
    const long start = ValueOf(fields.Text1[0]);
    const long latchEnd = start == 0 ? kErased : start - 1;
    if (!extended) {
        // Without step relays L may run to the last relay; while L is not latched the
        // boundary goes back to L2047.
        const long lastRelay = context.DeviceMaxSize['M'] - 1;
        image.SetParamWord(fields.StepRelayFlag              ? latchEnd
                           : image.IsErased(kLatchStartWord) ? 2047
                                                             : lastRelay,
                           kLatchEndWord);
        return;
    }
    if (image.IsErased(kStepRelayEndWord)) {
        image.SetParamWord(kDefaultStepRelayEnd, kStepRelayEndWord);
    }
    if (fields.StepRelayFlag) {
        image.SetParamWord(latchEnd, kLatchEndWord);
        image.SetParamWord(ValueOf(fields.Text1[1]) + 1, kStepRelayEndWord);
    } else if (image.IsErased(kLatchEndWord)) {
        // No step relays means an empty range right after L. After S from 0 there is no L end
        // to follow (65535 + 1 fits no word): both words go back to the default boundary.
        image.SetParamWord(kDefaultStepRelayEnd - 1, kLatchEndWord);
        image.SetParamWord(kDefaultStepRelayEnd, kStepRelayEndWord);
    } else {
        image.SetParamWord(image.GetParamWord(kLatchEndWord) + 1, kStepRelayEndWord);
    }
}

}  // namespace

AssistanceLayout AssistanceLayoutOf(const std::string& cpu) {
    AssistanceLayout layout;
    layout.extended = CpuIn(cpu, {"A2A", "A3A", "A2U", "A3U", "A4U"});
    layout.watchdog = CpuIn(cpu, {"A0H", "A1S", "A1 ", "A2C", "A2 ", "A3 "});
    layout.xyControl = cpu == "A3H";
    layout.comment = CpuIn(cpu, {"A3 ", "A3H", "A3A", "A3U", "A4U"});
    layout.endManage = CpuIn(cpu, {"A2U", "A3U", "A4U"});
    // The hint names the settings of the dialog that switch with the space key. No byte of
    // the dialog holds an annunciator display mode, so the hints naming one are not used.
    layout.hint = layout.comment ? ids::DataProcessingHint : ids::StepRelayHint;
    if (cpu == "A2C") {
        layout.followOn = "frmRemote";
        layout.followOnCaption = ids::RemoteSettingButton;
    } else if (CpuIn(cpu, {"A2A", "A2U", "A3A", "A3U", "A4U"})) {
        layout.followOn = "frmMINI";
        layout.followOnCaption = ids::MiniSettingButton;
    }
    return layout;
}

ContactCode EncodeContact(const std::string& text) {
    if (const std::string raw = RawContact(text); !raw.empty()) {
        return {static_cast<int>(HexToValue(raw.substr(0, 4))),
                static_cast<int>(HexToValue(PadZero4(raw.substr(4))))};
    }
    const long value = std::max(ContactValue(text), 0L);
    const long digits = value / 16;  // all but the last hexadecimal digit
    const long last = value % 16;
    return {static_cast<int>(kContactBase + 4 * digits + (last >= 8 ? 2 : 0)), 1 << (last % 8)};
}

std::string DecodeContact(int word, int mask) {
    char text[16];
    const bool singleBit = mask > 0 && mask < 256 && (mask & (mask - 1)) == 0;
    if (word < kContactBase || word % 2 != 0 || !singleBit) {
        std::snprintf(text, sizeof text, "%04X%02X", word & 0xFFFF, mask & 0xFF);
        return text;
    }
    const int offset = word - kContactBase;
    std::snprintf(text, sizeof text, "%X", offset / 4);
    std::string shown = text;
    for (int bit = 0; bit < 8; ++bit) {
        if (mask != (1 << bit)) continue;
        const int last = bit + (offset % 4 >= 2 ? 8 : 0);
        shown += "0123456789ABCDEF"[last];
    }
    return shown;
}

int FirstStepRelayLimit(const ParameterImage& image) {
    const int first = image.GetParamWord(kLatchStartWord);
    return first == kErased ? 0 : first;
}

void ApplyStepRelayFlag(AssistanceFields& fields) {
    if (!fields.StepRelayFlag) fields.Text1 = {"", ""};
}

AssistanceFields ReadAssistance(const ParameterImage& image, const DialogContext& context) {
    const AssistanceLayout layout = AssistanceLayoutOf(context.CpuType);
    AssistanceFields f;

    // Step relays are in use unless L ends at the last relay or, on the extended types, the
    // range after L is empty. Words are read as 16-bit numbers: a word 18 of 65535 is S from 0.
    const int lastRelay = context.DeviceMaxSize['M'] - 1;
    const int latchEnd = image.GetParamWord(kLatchEndWord);
    int after = image.GetParamWord(kStepRelayEndWord);
    if (after == kErased) after = kDefaultStepRelayEnd;
    const int lastStepRelay = (after - 1) & 0xFFFF;
    f.StepRelayFlag = latchEnd != lastRelay && !(layout.extended && latchEnd == lastStepRelay);
    if (f.StepRelayFlag) {
        f.Text1[0] = std::to_string((latchEnd + 1) & 0xFFFF);
        if (layout.extended) f.Text1[1] = std::to_string(lastStepRelay);
    }

    const int inUse = image[kContactsInUse];
    if (inUse == 1 || inUse == 2) {
        f.Text2[0] = DecodeContact(image.GetParamWord(kRunWord), image[kRunMask]);
    }
    if (inUse == 2) f.Text2[1] = DecodeContact(image.GetParamWord(kPauseWord), image[kPauseMask]);

    ReadOption(image, kOutputMode, f.OutputMode);
    ReadOption(image, kFuseCut, f.FuseCut);
    ReadOption(image, kCalcErr, f.CalcErr);
    ReadOption(image, kIOErr, f.IOErr);
    ReadOption(image, kActErr, f.ActErr);
    if (layout.endManage && image[kEndManage] == 255) f.EndManageFlag = true;
    if (layout.comment && image[kCommentByte] == 1) f.CommentFlag = true;
    if (layout.xyControl) {
        for (int i = 0; i < 4; ++i) {
            if (image[kIoControl] == kXYControlBytes[i]) f.XYControl = i;
        }
    }
    if (layout.watchdog) f.Text3 = std::to_string(image.GetParamWord(kWatchdogWord));
    return f;
}

bool CheckAssistanceField(ErrorTables& errors, int control, const std::string& text, long min,
                          long max) {
    if (IsBlank(text)) {
        errors.Record(2, control);
        return false;
    }
    return CheckAssistanceRange(errors, control, text, min, max);
}

bool CheckAssistanceRange(ErrorTables& errors, int control, const std::string& text, long min,
                          long max) {
    const long value = ValueOf(text);
    if (value >= min && value <= max) return true;
    errors.Record(3, control);
    return false;
}

ErrorTables ValidateAssistance(const AssistanceFields& fields, const ParameterImage& image,
                               const DialogContext& context) {
    ErrorTables errors;
    const AssistanceLayout layout = AssistanceLayoutOf(context.CpuType);

    // Each step relay box carries one of a missing number (11) and its range (3). The order of
    // the range (8) is checked between any two numbers, in range or not, and marks both boxes,
    // since either may be the one to change; an empty box has no number to compare.
    if (fields.StepRelayFlag) {
        const long low = FirstStepRelayLimit(image);
        const long high = context.DeviceMaxSize['M'] - 1;
        const int start = Control("Text1(0)");
        CheckStepRelayBox(errors, start, fields.Text1[0], low, high);
        if (layout.extended) {
            const int end = Control("Text1(1)");
            CheckStepRelayBox(errors, end, fields.Text1[1], low, high);
            if (!IsBlank(fields.Text1[0]) && !IsBlank(fields.Text1[1]) &&
                ValueOf(fields.Text1[0]) > ValueOf(fields.Text1[1])) {
                errors.Record(8, start);
                errors.Record(8, end);
            }
        }
    }

    const long lastX = context.DeviceMaxSize['X'] - 1;
    const int contact[2] = {Control("Text2(0)"), Control("Text2(1)")};
    for (int i = 0; i < 2; ++i) {
        if (IsBlank(fields.Text2[i])) continue;
        const long value = ContactValue(fields.Text2[i]);
        if (value < 0 || value > lastX) errors.Record(3, contact[i]);
    }
    // A PAUSE contact works only beside a RUN contact: the missing RUN box is marked.
    if (IsBlank(fields.Text2[0]) && !IsBlank(fields.Text2[1])) errors.Record(11, contact[0]);

    if (layout.watchdog) CheckAssistanceField(errors, Control("Text3"), fields.Text3, 1, 200);
    return errors;
}

void WriteAssistance(const AssistanceFields& fields, ParameterImage& image,
                     const DialogContext& context) {
    const AssistanceLayout layout = AssistanceLayoutOf(context.CpuType);
    WriteStepRelays(fields, image, context, layout.extended);

    if (IsBlank(fields.Text2[0])) {
        EraseContact(image, kRunWord, kRunMask);
        EraseContact(image, kPauseWord, kPauseMask);
        image[kContactsInUse] = 0;
    } else {
        PutContact(image, fields.Text2[0], kRunWord, kRunMask);
        if (IsBlank(fields.Text2[1])) {
            EraseContact(image, kPauseWord, kPauseMask);
            image[kContactsInUse] = 1;
        } else {
            PutContact(image, fields.Text2[1], kPauseWord, kPauseMask);
            image[kContactsInUse] = 2;
        }
    }

    image[kOutputMode] = fields.OutputMode == 1 ? 1 : 0;
    image[kFuseCut] = fields.FuseCut == 1 ? 1 : 0;
    image[kCalcErr] = fields.CalcErr == 1 ? 1 : 0;
    image[kIOErr] = fields.IOErr == 1 ? 1 : 0;
    image[kActErr] = fields.ActErr == 1 ? 1 : 0;
    if (layout.endManage) image[kEndManage] = fields.EndManageFlag ? 255 : 0;
    if (layout.comment) image[kCommentByte] = fields.CommentFlag ? 1 : 0;
    if (layout.xyControl) {
        image[kIoControl] =
            static_cast<uint8_t>(kXYControlBytes[std::clamp(fields.XYControl, 0, 3)]);
    }
    if (layout.watchdog) image.SetParamWord(ValueOf(fields.Text3), kWatchdogWord);
    if (layout.extended) {
        // The extended types run with a fixed watchdog and direct I/O.
        image.SetParamWord(kFixedWatchdog, kWatchdogWord);
        image[kIoControl] = 255;
    }
}

AssistanceFields DefaultsAssistance(const AssistanceFields& current, const DialogContext& context) {
    if (context.CpuType == "A0J") return current;
    const AssistanceLayout layout = AssistanceLayoutOf(context.CpuType);
    AssistanceFields f = current;
    // No step relays and no RUN or PAUSE contact: their boxes are emptied, the spin buttons
    // back at the bottom, as on a new project.
    f.StepRelayFlag = false;
    f.Text1[0].clear();
    if (layout.extended) f.Text1[1].clear();
    f.Text2 = {"", ""};
    f.OutputMode = 0;
    f.FuseCut = 0;
    f.CalcErr = 0;
    f.IOErr = 1;
    f.ActErr = 1;
    if (layout.watchdog) f.Text3 = "20";
    if (layout.comment) f.CommentFlag = false;
    if (layout.endManage) f.EndManageFlag = false;
    if (layout.xyControl) f.XYControl = 0;
    return f;
}

}  // namespace gantrix
