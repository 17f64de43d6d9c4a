// SPDX-License-Identifier: Apache-2.0
// The pages of the ten dialogs: each lists the fields its dialog shows under their keys and
// runs the dialog's own Read, Validate and Write. The key scheme is documented in
// docs/parameter-keys.md.

#include <algorithm>
#include <cctype>

#include "common/InputRoutines.h"
#include "common/StringTable.h"
#include "dialogs/frmAssistance/AssistanceFields.h"
#include "dialogs/frmIOLayout/IOLayoutFields.h"
#include "dialogs/frmInterruptCounter/InterruptCounterFields.h"
#include "dialogs/frmLatch/LatchFields.h"
#include "dialogs/frmMINI/MINIFields.h"
#include "dialogs/frmMemory/MemoryFields.h"
#include "dialogs/frmRemote/RemoteFields.h"
#include "dialogs/frmStepRelay/StepRelayFields.h"
#include "dialogs/frmTimerCounter/TimerCounterFields.h"
#include "dialogs/frmTypeNameSet/TypeNameSetFields.h"
#include "headless/Page.h"
#include "platform/rkcmnt/rkcmnt.h"

namespace gantrix::headless {
namespace {

std::string Indexed(const std::string& name, int index) {
    return name + "(" + std::to_string(index) + ")";
}

FieldRef Text(std::string key, std::string control, std::string& text,
              Cleaning cleaning = Cleaning::Decimal, int id = 0) {
    FieldRef f;
    f.key = std::move(key);
    f.control = std::move(control);
    f.text = &text;
    f.cleaning = cleaning;
    f.id = id;
    return f;
}

FieldRef Flag(std::string key, std::string control, bool& flag) {
    FieldRef f;
    f.key = std::move(key);
    f.control = std::move(control);
    f.flag = &flag;
    return f;
}

OptionSet Options(std::vector<std::string> values, const std::vector<int>& captionIds) {
    OptionSet set{std::move(values), {}};
    for (int id : captionIds) set.captions.push_back(LoadResString(id));
    return set;
}

FieldRef Option(std::string key, std::string control, int& option, const OptionSet& options) {
    FieldRef f;
    f.key = std::move(key);
    f.control = std::move(control);
    f.option = &option;
    f.options = &options;
    return f;
}

// ---------------------------------------------------------------------------------------
class MemoryPage : public Page {
  public:
    using Page::Page;
    std::string Name() const override { return "memory"; }
    std::string Form() const override { return "frmMemory"; }
    std::string Title() const override { return LoadResString(ids::MemoryCapacitySetting); }

    void Open(ParameterImage& image) override {
        limits_ = ImageMemoryLimits(image, Context().CpuType);
        f_ = ReadMemory(image, Context());
    }

    std::vector<FieldRef> Fields() override {
        const MemoryVisibility visible = VisibleMemoryControls(Context().CpuType);
        static const char* const kKeys[kMemoryControlCount] = {
            "memory.main",       "memory.micro",       "memory.sub1",
            "memory.sub1_micro", "memory.sub2",        "memory.sub3",
            "memory.comment",    "memory.ext_comment", "memory.file_register"};
        std::vector<FieldRef> fields;
        const auto text = [&](int control) {
            if (!visible.field[control]) return;
            std::string& box = control == kComment        ? f_.Text2
                               : control == kExtComment   ? f_.Text3
                               : control == kFileRegister ? f_.Text4
                                                          : f_.Text1[control];
            fields.push_back(Text(kKeys[control], MemoryControlName(control), box));
        };
        // The dialog's order: the program rows, the file register with the trace and latch
        // boxes, then the comments.
        for (int control : {kMain, kMicro, kSub1, kSubMicro, kSub2, kSub3, kFileRegister}) {
            text(control);
        }
        if (visible.traceAndLatch) {
            fields.push_back(Flag("memory.sampling_trace", "SanpFlag", f_.SanpFlag));
            fields.push_back(Flag("memory.status_latch.data", "SlatchDataFlag", f_.SlatchDataFlag));
            fields.push_back(
                Flag("memory.status_latch.file_register", "SlatchFileFlag", f_.SlatchFileFlag));
        }
        text(kComment);
        text(kExtComment);
        return fields;
    }

    ErrorTables Check(const ParameterImage&) const override {
        return ValidateMemory(f_, Context(), limits_);
    }
    void Write(ParameterImage& image) const override { WriteMemory(f_, image, Context()); }

  private:
    MemoryFields f_;
    MemoryLimits limits_;
};

// ---------------------------------------------------------------------------------------
class LatchPage : public Page {
  public:
    using Page::Page;
    std::string Name() const override { return "latch"; }
    std::string Form() const override { return "frmLatch"; }
    std::string Title() const override { return LoadResString(ids::LatchRangeSetting); }

    void Open(ParameterImage& image) override {
        limits_ = LatchRowLimits(image, Context());
        f_ = ReadLatch(image, Context());
    }

    std::vector<FieldRef> Fields() override {
        static const char* const kRows[kLatchRows] = {
            "L", "B", "T.low",    "T.high",    "T.integration",    "C",
            "D", "W", "T256.low", "T256.high", "T256.integration", "C256"};
        std::vector<FieldRef> fields;
        for (int box = 0; box < 2 * LatchRowCount(Context().CpuType); ++box) {
            const std::string key =
                std::string("latch.") + kRows[box / 2] + (box % 2 == 0 ? ".start" : ".end");
            fields.push_back(Text(key, Indexed("Text1", box), f_.Text1[box],
                                  IsHexLatchBox(box) ? Cleaning::Hex : Cleaning::Decimal, box));
        }
        return fields;
    }

    // The smallest type sets its ranges with the three pattern buttons.
    std::vector<FieldRef> Actions() override {
        if (Context().CpuType != "A0J") return {};
        static const OptionSet patterns =
            Options({"none", "half", "full"}, {ids::NoLatch, ids::HalfLatch, ids::FullLatch});
        FieldRef pattern = Option("latch.pattern", "ChangeLatch", pattern_, patterns);
        pattern.id = -1;
        return {pattern};
    }
    std::vector<std::pair<std::string, std::string>> ActionsShowing() override {
        const std::vector<FieldRef> actions = Actions();
        if (actions.empty()) return {};
        const OptionSet& patterns = *actions.front().options;
        for (int p = 0; p < static_cast<int>(patterns.values.size()); ++p) {
            LatchFields filled = f_;
            ApplyLatchPattern(filled, p);
            if (filled.Text1 == f_.Text1) return {{actions.front().key, patterns.values[p]}};
        }
        return {};
    }

    ErrorTables Check(const ParameterImage&) const override {
        return ValidateLatch(f_, limits_, Context());
    }
    void Write(ParameterImage& image) const override { WriteLatch(f_, image, Context()); }

  protected:
    std::optional<std::string> Locked(const FieldRef& field) override {
        if (Context().CpuType == "A0J" && field.id >= 0 && field.id < 16) {
            return "is set on this CPU type only by the fixed patterns: latch.pattern=none, "
                   "half or full";
        }
        return std::nullopt;
    }
    void Changed(const FieldRef& field, bool) override {
        if (field.id == -1) ApplyLatchPattern(f_, pattern_);
    }

  private:
    LatchFields f_;
    LatchLimits limits_;
    int pattern_ = 0;
};

// ---------------------------------------------------------------------------------------
class TimerCounterPage : public Page {
  public:
    explicit TimerCounterPage(DialogContext context)
        : Page(std::move(context)), group_(TimerGroupOf(Context().CpuType)) {}
    std::string Name() const override { return "timer"; }
    std::string Form() const override { return "frmTimerCounter"; }
    std::string Title() const override { return LoadResString(ids::TimerCounterSetting); }

    void Open(ParameterImage& image) override { f_ = ReadTimerCounter(image, Context()); }

    std::vector<FieldRef> Fields() override {
        std::vector<FieldRef> fields;
        if (group_ == TimerGroup::None) return fields;
        const bool extended = IsExtended(group_);
        const auto text1 = [&](const char* key, int i, Cleaning cleaning = Cleaning::Decimal) {
            fields.push_back(Text(key, Indexed("Text1", i), f_.Text1[i], cleaning, kText1 + i));
        };
        if (extended) text1("timer.points", 0);
        text1("timer.low", 1);
        text1("timer.high", 2);
        text1("timer.integration", 3);
        if (group_ == TimerGroup::Small) {
            fields.push_back(Text("timer.extra", "Text3", f_.Text3, Cleaning::Decimal, kText3));
        }
        if (!extended) return fields;
        text1("timer.T256.low", 4);
        text1("timer.T256.high", 5);
        text1("timer.T256.integration", 6);
        fields.push_back(Text("timer.device", "Combo1", f_.Combo1, Cleaning::Page, kCombo1));
        text1("timer.device.start", 7, Cleaning::Page);
        fields.push_back(
            Text("timer.counter.points", "Text2(0)", f_.Text2[0], Cleaning::Decimal, kText2));
        fields.push_back(
            Text("timer.counter.device", "Combo2", f_.Combo2, Cleaning::Page, kCombo2));
        fields.push_back(Text("timer.counter.device.start", "Text2(1)", f_.Text2[1], Cleaning::Page,
                              kText2 + 1));
        return fields;
    }

    ErrorTables Check(const ParameterImage&) const override {
        return ValidateTimerCounter(f_, Context());
    }
    void Write(ParameterImage& image) const override { WriteTimerCounter(f_, image, Context()); }

  protected:
    std::optional<std::string> Clean(const FieldRef& field, const std::string& text,
                                     std::string& cleaned) override {
        if (field.id == kCombo1 || field.id == kCombo2) {
            // The box takes the keys D, W and R in either case, nothing else.
            const std::string letter = Trim(text);
            const bool device =
                letter.size() == 1 && std::string("DWRdwr").find(letter) != std::string::npos;
            if (!device && !letter.empty()) return "takes D, W or R, not \"" + text + "\"";
            cleaned = device ? letter : "";
            return std::nullopt;
        }
        const std::string& letter = field.id == kText1 + 7 ? f_.Combo1 : f_.Combo2;
        cleaned = CleanStartNumber(letter, text);
        if (cleaned.empty() && !IsBlank(text) &&
            text.find_first_not_of("0 ") != std::string::npos) {
            return std::string("takes a ") + (letter == "W" ? "hexadecimal" : "decimal") +
                   " number, not \"" + text + "\"";
        }
        return std::nullopt;
    }

    // What the dialog re-applies as the focus moves on: the point rules of the extended
    // groups after a timer or counter box, the device rule after a device letter.
    void Changed(const FieldRef& field, bool) override {
        if (field.id == kCombo1 || field.id == kCombo2) {
            ApplyDeviceRule(f_, field.id == kCombo1, group_);
        } else if (IsExtended(group_) && field.id >= kText2 && field.id < kText3) {
            ApplyCounterPointRule(f_);
        } else if (IsExtended(group_) && field.id < kText2) {
            ApplyTimerPointRule(f_);
        }
    }

  private:
    static constexpr int kText1 = 0, kText2 = 8, kText3 = 10, kCombo1 = 11, kCombo2 = 12;
    TimerGroup group_;
    TimerCounterFields f_;
};

// ---------------------------------------------------------------------------------------
class InterruptCounterPage : public Page {
  public:
    using Page::Page;
    std::string Name() const override { return "interrupt"; }
    std::string Form() const override { return "frmInterruptCounter"; }
    std::string Title() const override { return LoadResString(ids::InterruptCounter); }

    void Open(ParameterImage& image) override { f_ = ReadInterruptCounter(image); }
    std::vector<FieldRef> Fields() override {
        std::vector<FieldRef> fields;
        for (int k = 0; k < kInterruptCounters; ++k) {
            fields.push_back(Flag("interrupt." + PointerFlagCaption(k), Indexed("PointerFlag", k),
                                  f_.PointerFlag[k]));
        }
        return fields;
    }
    ErrorTables Check(const ParameterImage&) const override { return {}; }
    void Write(ParameterImage& image) const override { WriteInterruptCounter(f_, image); }

  private:
    InterruptCounterFields f_;
};

// ---------------------------------------------------------------------------------------
class IOLayoutPage : public Page {
  public:
    using Page::Page;
    std::string Name() const override { return "io"; }
    std::string Form() const override { return "frmIOLayout"; }
    std::string Title() const override { return LoadResString(ids::IoAssignment); }

    // The dialog takes the network part of the run's working file first; without a run
    // there is none, and the image is the project's.
    void Open(ParameterImage& image) override { f_ = ReadIOLayout(image, Context()); }

    std::vector<FieldRef> Fields() override {
        std::vector<FieldRef> fields;
        fields.reserve(kSlotCount + kNamedSlotCount);
        for (int n = 0; n < kSlotCount; ++n) {
            const std::string slot = "io.slot." + std::to_string(n);
            // Numbered across the pages (box N % 64 of page N / 64, and the model name in row
            // N % 8 of the model-name page N / 8); no control of these dialogs has a global
            // number, so their checks name none.
            fields.push_back(Text(slot, Indexed("Text1", n), f_.codes[n], Cleaning::Page, n));
            if (n < kNamedSlotCount) {
                fields.push_back(Text(slot + ".model", Indexed("Combo1", n), f_.names[n],
                                      Cleaning::Page, kSlotCount + n));
            }
        }
        return fields;
    }

    ErrorTables Check(const ParameterImage& image) const override {
        // The host library checks against the CPU type of the last setup.
        SetUpHostLibraries(Context().CpuType, Context().ProjectDir);
        return ValidateIOLayout(f_, image, Context());
    }
    void Write(ParameterImage& image) const override {
        IOLayoutFields fields = f_;
        // From the text form the names are written when there are any, so that the erased
        // records of a project that never had names stay erased.
        if (takeAll_) {
            fields.namesEdited = std::any_of(fields.names.begin(), fields.names.end(),
                                             [](const std::string& name) { return !name.empty(); });
        }
        WriteIOLayout(fields, image, Context());
        SetIOValue(image, Context());
    }
    void TakeAll() override { takeAll_ = true; }

  protected:
    std::optional<std::string> Locked(const FieldRef& field) override {
        const int slot = field.id - kSlotCount;
        if (slot >= 0 && f_.codes[slot].empty()) {
            return "cannot be set: slot " + std::to_string(slot) + " has no module";
        }
        return std::nullopt;
    }

    std::optional<std::string> Clean(const FieldRef& field, const std::string& text,
                                     std::string& cleaned) override {
        const std::string typed = Trim(text);
        if (field.id >= kSlotCount) {
            TextBoxState box{typed, 0};
            FilterModelName(box);
            std::string upper = typed;
            for (char& c : upper)
                c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
            if (box.text != upper) {
                return "takes a model name of at most 9 of 0-9, A-Z, - and blank, not \"" + text +
                       "\"";
            }
            cleaned = box.text;
            return std::nullopt;
        }
        // A slot takes the key of a code (1..9, A..H) or a code itself.
        cleaned.clear();
        if (typed.size() == 1) {
            if (const auto code = SlotCodeForKey(static_cast<unsigned char>(typed[0]))) {
                cleaned = *code;
            }
        }
        for (const char* key = "123456789ABCDEFGH"; *key != '\0' && cleaned.empty(); ++key) {
            const std::string code = *SlotCodeForKey(*key);
            std::string upper = typed;
            for (char& c : upper)
                c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
            if (upper == code) cleaned = code;
        }
        if (cleaned.empty() && !typed.empty()) {
            return "takes a slot code (S0..S64, X16..X64, Y16..Y64, F16..F64) or its key "
                   "(1..9, A..H), not \"" +
                   text + "\"";
        }
        return std::nullopt;
    }

    void Changed(const FieldRef& field, bool) override {
        if (field.id >= kSlotCount) f_.namesEdited = true;  // the model-name dialog was used
    }

  private:
    IOLayoutFields f_;
    bool takeAll_ = false;
};

// ---------------------------------------------------------------------------------------
class AssistancePage : public Page {
  public:
    explicit AssistancePage(DialogContext context)
        : Page(std::move(context)), layout_(AssistanceLayoutOf(Context().CpuType)) {}
    std::string Name() const override { return "assist"; }
    std::string Form() const override { return "frmAssistance"; }
    std::string Title() const override { return LoadResString(ids::SupplementaryFunctions); }

    void Open(ParameterImage& image) override { f_ = ReadAssistance(image, Context()); }

    std::vector<FieldRef> Fields() override {
        static const OptionSet modes = Options({"continue", "stop"}, {ids::Continue, ids::Stop});
        static const OptionSet output =
            Options({"before_operation", "after_1_scan"}, {ids::BeforeOperation, ids::After1Scan});
        static const OptionSet ioControl = Options(
            {"direct/direct", "refresh/direct", "direct/refresh", "refresh/refresh"},
            {ids::DirectDirect, ids::RefreshDirect, ids::DirectRefresh, ids::RefreshRefresh});
        std::vector<FieldRef> fields;
        fields.push_back(Flag("assist.step_relay", "StepRelayFlag", f_.StepRelayFlag));
        fields.push_back(
            Text("assist.step_relay.first", "Text1(0)", f_.Text1[0], Cleaning::Decimal, kStep));
        if (layout_.extended) {
            fields.push_back(
                Text("assist.step_relay.last", "Text1(1)", f_.Text1[1], Cleaning::Decimal, kStep));
        }
        fields.push_back(Text("assist.run_contact", "Text2(0)", f_.Text2[0], Cleaning::Hex));
        fields.push_back(Text("assist.pause_contact", "Text2(1)", f_.Text2[1], Cleaning::Hex));
        fields.push_back(Option("assist.output_mode", "OutputMode", f_.OutputMode, output));
        fields.push_back(Option("assist.fuse_blown", "FuseCut", f_.FuseCut, modes));
        fields.push_back(Option("assist.operation_error", "CalcErr", f_.CalcErr, modes));
        fields.push_back(Option("assist.io_verify_error", "IOErr", f_.IOErr, modes));
        fields.push_back(Option("assist.function_module_error", "ActErr", f_.ActErr, modes));
        if (layout_.watchdog) fields.push_back(Text("assist.watchdog", "Text3", f_.Text3));
        if (layout_.endManage) {
            fields.push_back(Flag("assist.end_batch", "EndManageFlag", f_.EndManageFlag));
        }
        if (layout_.comment)
            fields.push_back(Flag("assist.comment", "CommentFlag", f_.CommentFlag));
        if (layout_.xyControl) {
            fields.push_back(Option("assist.io_control", "XYControl", f_.XYControl, ioControl));
        }
        return fields;
    }

    ErrorTables Check(const ParameterImage& image) const override {
        return ValidateAssistance(f_, image, Context());
    }
    void Write(ParameterImage& image) const override { WriteAssistance(f_, image, Context()); }

  protected:
    std::optional<std::string> Locked(const FieldRef& field) override {
        if (field.id == kStep && !f_.StepRelayFlag) {
            return "cannot be set while assist.step_relay is off";
        }
        return std::nullopt;
    }
    void Changed(const FieldRef& field, bool) override {
        if (field.flag == &f_.StepRelayFlag) ApplyStepRelayFlag(f_);
    }

  private:
    static constexpr int kStep = 1;
    AssistanceLayout layout_;
    AssistanceFields f_;
};

// ---------------------------------------------------------------------------------------
class StepRelayPage : public Page {
  public:
    using Page::Page;
    std::string Name() const override { return "step_relay"; }
    std::string Form() const override { return "frmStepRelay"; }
    std::string Title() const override { return LoadResString(ids::SupplementaryFunctions); }

    void Open(ParameterImage& image) override { f_ = ReadStepRelay(image); }
    std::vector<FieldRef> Fields() override {
        return {Flag("step_relay.enabled", "StepRelayFlag", f_.StepRelayFlag)};
    }
    ErrorTables Check(const ParameterImage&) const override { return {}; }
    void Write(ParameterImage& image) const override { WriteStepRelay(f_, image, Context()); }

  private:
    StepRelayFields f_;
};

// ---------------------------------------------------------------------------------------
class RemotePage : public Page {
  public:
    using Page::Page;
    std::string Name() const override { return "remote"; }
    std::string Form() const override { return "frmRemote"; }
    std::string Title() const override { return LoadResString(ids::RemoteTitle); }

    void Open(ParameterImage& image) override { f_ = ReadRemote(image); }

    std::vector<FieldRef> Fields() override {
        std::vector<FieldRef> fields;
        fields.push_back(Text("remote.total", "Text1", f_.Text1));
        static const OptionSet modes =
            Options({"automatic", "manual", "stop"},
                    {ids::AutomaticReconnection, ids::ManualConnection, ids::StopAtEmergency});
        fields.push_back(Option("remote.online_mode", "OnlineMode", f_.OnlineMode, modes));
        for (int e = 0; e < kRemoteEntries; ++e) {
            const std::string entry = "remote.entry." + std::to_string(e + 1);
            fields.push_back(
                Text(entry + ".start", Indexed("Text2", e), f_.Text2[e], Cleaning::Decimal, e));
            fields.push_back(Text(entry + ".protocol", Indexed("Text2", e + kRemoteEntries),
                                  f_.Text2[e + kRemoteEntries], Cleaning::Page,
                                  e + kRemoteEntries));
        }
        return fields;
    }

    ErrorTables Check(const ParameterImage&) const override { return ValidateRemote(f_); }
    void Write(ParameterImage& image) const override { WriteRemote(f_, image); }

  protected:
    std::optional<std::string> Locked(const FieldRef& field) override {
        const int e = field.id - kRemoteEntries;
        if (field.cleaning == Cleaning::Page && f_.Text2[e].empty()) {
            return "cannot be set: entry " + std::to_string(e + 1) + " has no start station";
        }
        return std::nullopt;
    }
    // The protocol cell takes the keys 0 and 1, or a name as the cell shows it.
    std::optional<std::string> Clean(const FieldRef&, const std::string& text,
                                     std::string& cleaned) override {
        cleaned = CleanProtocolText(text, false);
        if (cleaned.empty() && !IsBlank(text)) {
            return "takes 0 (" + MiniStandardName() + ") or 1 (" + NonProcedureName() +
                   "), not \"" + text + "\"";
        }
        return std::nullopt;
    }
    // An entry without a start station has no protocol.
    void Changed(const FieldRef& field, bool) override {
        if (field.cleaning != Cleaning::Decimal || field.text == &f_.Text1) return;
        std::string& protocol = f_.Text2[field.id + kRemoteEntries];
        protocol = CleanProtocolText(protocol, f_.Text2[field.id].empty());
    }

  private:
    RemoteFields f_;
};

// ---------------------------------------------------------------------------------------
class MINIPage : public Page {
  public:
    explicit MINIPage(DialogContext context)
        : Page(std::move(context)), group_(MiniGroupOf(Context().CpuType)) {}
    std::string Name() const override { return "mini"; }
    std::string Form() const override { return "frmMINI"; }
    std::string Title() const override { return LoadResString(ids::MiniTitle); }

    void Open(ParameterImage& image) override {
        rPoints_ = image.GetParamWord(68);
        f_ = ReadMINI(image, Context());
        rows_ = MiniRowsAfterCount(f_.Text1, 0);
    }

    std::vector<FieldRef> Fields() override { return List(rows_); }
    std::vector<FieldRef> AllFields() override { return List(kMiniModules); }

    ErrorTables Check(const ParameterImage&) const override {
        return ValidateMINI(f_, Context(), rPoints_);
    }
    void Write(ParameterImage& image) const override { WriteMINI(f_, image, Context()); }

  protected:
    std::optional<std::string> Locked(const FieldRef& field) override {
        if (field.id < 0) return std::nullopt;
        if (field.id % kMiniFieldsPerRow == kStations &&
            f_.Text2[field.id - kStations + kModel] == MiniName().miniS3) {
            return "cannot be set: a " + MiniName().miniS3 + " has no number of stations";
        }
        return std::nullopt;
    }
    std::optional<std::string> Clean(const FieldRef& field, const std::string& text,
                                     std::string& cleaned) override {
        const int f = field.id % kMiniFieldsPerRow;
        cleaned = NormaliseCell(f, text, f_.Text2[field.id - f + kModel]);
        if (cleaned.empty() && !IsBlank(text) &&
            text.find_first_not_of("0 ") != std::string::npos) {
            return "does not take \"" + text + "\"";
        }
        return std::nullopt;
    }
    void Changed(const FieldRef& field, bool changed) override {
        if (field.id < 0) {
            const int rows = MiniRowsAfterCount(f_.Text1, rows_);
            ResizeMiniRows(f_, rows_, rows);
            rows_ = rows;
        } else if (changed && field.id % kMiniFieldsPerRow == kModel) {
            f_.Text2[field.id - kModel + kStations] = StationsForModel(*field.text);
        }
    }

  private:
    std::vector<FieldRef> List(int rows) {
        static const char* const kNames[kMiniFieldsPerRow] = {
            "start_io", "model",      "stations",  "receive",  "send",      "retries",
            "response", "data_clear", "detection", "error_no", "line_error"};
        std::vector<FieldRef> fields;
        fields.reserve(1 + kMiniFieldsPerRow * rows);
        if (group_ == MiniGroup::None) return fields;
        fields.push_back(Text("mini.modules", "Text1", f_.Text1, Cleaning::Decimal, -1));
        for (int m = 0; m < rows; ++m) {
            for (int f = 0; f < kMiniFieldsPerRow; ++f) {
                const int k = kMiniFieldsPerRow * m + f;
                fields.push_back(Text("mini.module." + std::to_string(m + 1) + "." + kNames[f],
                                      Indexed("Text2", k), f_.Text2[k], Cleaning::Page, k));
            }
        }
        return fields;
    }

    MiniGroup group_;
    MINIFields f_;
    int rPoints_ = 0;
    int rows_ = 0;
};

}  // namespace

std::vector<std::unique_ptr<Page>> PagesFor(const DialogContext& context) {
    const std::string& cpu = context.CpuType;
    std::vector<std::unique_ptr<Page>> pages;
    pages.push_back(std::make_unique<MemoryPage>(context));
    pages.push_back(std::make_unique<LatchPage>(context));
    // The smallest type has no timer/counter or I/O assignment in its menu, and its
    // supplementary functions are the step relay choice alone.
    if (cpu == "A0J") {
        pages.push_back(std::make_unique<StepRelayPage>(context));
        return pages;
    }
    pages.push_back(std::make_unique<TimerCounterPage>(context));
    pages.push_back(std::make_unique<InterruptCounterPage>(context));
    pages.push_back(std::make_unique<IOLayoutPage>(context));
    pages.push_back(std::make_unique<AssistancePage>(context));
    const AssistanceLayout layout = AssistanceLayoutOf(cpu);
    if (layout.followOn == "frmRemote") pages.push_back(std::make_unique<RemotePage>(context));
    if (layout.followOn == "frmMINI") pages.push_back(std::make_unique<MINIPage>(context));
    return pages;
}

}  // namespace gantrix::headless
