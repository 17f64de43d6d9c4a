// SPDX-License-Identifier: Apache-2.0
#include "report/ParameterReport.h"

#include <array>

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
#include "menus/NetworkMenuRules.h"
#include "platform/rkcmnt/DeviceTable.h"
#include "report/NetworkBytes.h"
#include "store/CheckSum.h"
#include "store/ParameterFiles.h"
#include "store/RuntimeError.h"

namespace gantrix {
namespace {

// The report's own words; the dialogs' captions come from the string table.
const char* const kYes = "Yes";
const char* const kNo = "No";
const char* const kSetting = "Setting";
const char* const kValue = "Value";
const char* const kCpuTypeNote = "CPU type ";

using Rows = std::vector<std::vector<std::string>>;

std::string Res(int id) {
    return LoadResString(id);
}

std::string YesNo(bool value) {
    return value ? kYes : kNo;
}

// A value with its unit; nothing for an empty value.
std::string WithUnit(const std::string& value, int unitId) {
    return value.empty() ? "" : value + " " + Res(unitId);
}

// A caption laid out over several lines or columns, as one line: "Empty \nslot" reads "Empty
// slot"; a wide gap between columns ("Direct    Direct", the X and Y columns) becomes
// columnGap.
std::string OneLine(const std::string& caption, const std::string& columnGap) {
    const auto isGap = [](char c) { return c == ' ' || c == '\n'; };
    std::string out;
    std::size_t i = 0;
    while (i < caption.size()) {
        if (!isGap(caption[i])) {
            out += caption[i++];
            continue;
        }
        std::size_t end = i;
        bool newline = false;
        for (; end < caption.size() && isGap(caption[end]); ++end) {
            newline = newline || caption[end] == '\n';
        }
        if (!out.empty() && end < caption.size()) {
            out += !newline && end - i > 2 ? columnGap : " ";
        }
        i = end;
    }
    return out;
}

// " (0-2047) " as "0-2047".
std::string Bare(const std::string& label) {
    std::string out;
    for (char c : label) {
        if (c != ' ' && c != '(' && c != ')') out += c;
    }
    return out;
}

Sheet NewSheet(int titleId, const DialogContext& context) {
    Sheet sheet{Res(titleId), {}};
    sheet.AddNote(kCpuTypeNote + context.CpuType);
    return sheet;
}

Sheet MemorySheet(const ParameterImage& stored, const DialogContext& context) {
    const std::string& cpu = context.CpuType;
    // The load rewrites erased words in the dialog's copy of the image, as it does here.
    ParameterImage image = stored;
    const MemoryLimits limits = LoadMemoryLimits(image, context);
    const MemoryFields f = ReadMemory(image, context);
    const MemoryVisibility visible = VisibleMemoryControls(cpu);
    Sheet sheet = NewSheet(ids::MemoryCapacitySetting, context);

    Rows program;
    if (cpu == "A0J") {
        program.push_back({Res(ids::Main), WithUnit(f.Text1[kMain], ids::KSteps),
                           Res(MicroProgramPresent(image, context) ? ids::MicrocomputerExist
                                                                   : ids::MicrocomputerNone)});
    } else {
        const std::array<int, 4> sequence = {kMain, kSub1, kSub2, kSub3};
        const std::array<int, 4> captions = {ids::Main, cpu == "A4U" ? ids::Sub1 : ids::Sub,
                                             ids::Sub2, ids::Sub3};
        const std::array<int, 2> micro = {kMicro, kSubMicro};
        for (int r = 0; r < 4; ++r) {
            if (!visible.field[sequence[r]]) continue;
            const bool hasMicro = r < 2 && visible.field[micro[r]];
            program.push_back({Res(captions[r]), WithUnit(f.Text1[sequence[r]], ids::KSteps),
                               hasMicro ? WithUnit(f.Text1[micro[r]], ids::KBytes) : ""});
        }
    }
    sheet.AddTable(Res(ids::ProgramSize), {"", Res(ids::Sequence), Res(ids::Microcomputer)},
                   std::move(program));

    Rows settings;
    if (visible.field[kComment]) {
        settings.push_back(
            {Res(ids::CommentSize), WithUnit(f.Text2, ids::KBytes) + " " + SetPointNumber(f, 0)});
    }
    if (visible.field[kExtComment]) {
        settings.push_back({Res(ids::ExtensionCommentSize),
                            WithUnit(f.Text3, ids::KBytes) + " " + SetPointNumber(f, 1)});
    }
    if (visible.field[kFileRegister]) {
        settings.push_back({Res(ids::FileRegisterCapacity), WithUnit(f.Text4, ids::KPoints)});
    }
    if (visible.traceAndLatch) {
        settings.push_back({Res(ids::SamplingTrace), YesNo(f.SanpFlag)});
        settings.push_back(
            {Res(ids::StatusLatch) + ": " + Res(ids::DataMemory), YesNo(f.SlatchDataFlag)});
        settings.push_back(
            {Res(ids::StatusLatch) + ": " + Res(ids::FileRegister), YesNo(f.SlatchFileFlag)});
    }
    settings.push_back(
        {Res(ids::MemoryCapacity), WithUnit(CalcMemory(f, cpu, limits, image), ids::KBytes)});
    sheet.AddTable("", {kSetting, kValue}, std::move(settings));
    return sheet;
}

Sheet LatchSheet(const ParameterImage& image, const DialogContext& context) {
    const LatchFields f = ReadLatch(image, context);
    const LatchLimits limits = LatchRowLimits(image, context);
    Rows rows;
    for (int r = 0; r < LatchRowCount(context.CpuType); ++r) {
        // Rows 8..11 repeat the captions of the first timer and counter block.
        const std::string device =
            Res(kLatchRowCaptions[r]) + (r >= 8 ? ", " + Res(ids::AccessibleSecondBlock) : "");
        rows.push_back(
            {device, f.Text1[2 * r], f.Text1[2 * r + 1], Bare(LatchRangeLabel(limits, r))});
    }
    Sheet sheet = NewSheet(ids::LatchRangeSetting, context);
    sheet.AddTable("", {"Device", "Latch start", "Latch end", "Device range"}, std::move(rows));
    sheet.AddNote("A device without a latch start is not latched.");
    return sheet;
}

std::string DeviceText(const std::string& letter, const std::string& start) {
    return letter.empty() ? "" : letter + start;
}

Sheet TimerCounterSheet(const ParameterImage& image, const DialogContext& context) {
    const TimerGroup group = TimerGroupOf(context.CpuType);
    const TimerCounterFields f = ReadTimerCounter(image, context);
    const bool extended = IsExtended(group);
    Sheet sheet = NewSheet(ids::TimerCounterSetting, context);

    if (extended) {
        sheet.AddTable(Res(ids::TimerSetting), {}, {{Res(ids::NumberOfPoints), f.Text1[0]}});
    }
    Rows partition = {{Res(ids::TimerBlockLow), f.Text1[1], f.Text1[2], f.Text1[3]}};
    if (extended)
        partition.push_back({Res(ids::TimerBlockHigh), f.Text1[4], f.Text1[5], f.Text1[6]});
    if (group == TimerGroup::Small) partition.push_back({Res(ids::DeviceT), f.Text3, "", ""});
    sheet.AddTable(extended ? "" : Res(ids::TimerSetting),
                   {"", Res(ids::LowSpeed100ms), Res(ids::HighSpeed10ms), Res(ids::Integration)},
                   std::move(partition));
    sheet.AddNote("Each number is the first timer of its kind in the block.");
    if (extended) {
        sheet.AddTable("", {},
                       {{Res(ids::DeviceToStoreSettingValue), DeviceText(f.Combo1, f.Text1[7])}});
        sheet.AddTable(Res(ids::CounterSetting), {},
                       {{Res(ids::NumberOfPoints), f.Text2[0]},
                        {Res(ids::DeviceToStoreSettingValue), DeviceText(f.Combo2, f.Text2[1])}});
    }

    const InterruptCounterFields interrupts = ReadInterruptCounter(image);
    Rows counters;
    for (int k = 0; k < kInterruptCounters; ++k) {
        if (!interrupts.PointerFlag[k]) continue;
        counters.push_back({PointerFlagCaption(k), Bare(PointerLabel(k, true))});
    }
    if (counters.empty()) {
        sheet.AddTable(Res(ids::InterruptCounter), {}, {});
        sheet.AddNote("No counter counts interrupts.");
    } else {
        sheet.AddTable(Res(ids::InterruptCounter), {"Interrupt", "Counter"}, std::move(counters));
    }
    return sheet;
}

Sheet IoSheet(const ParameterImage& image, const DialogContext& context) {
    const IOLayoutFields f = ReadIOLayout(image, context);
    const auto kind = [](const std::string& code) -> std::string {
        if (code.empty()) return "";
        switch (code[0]) {
            case 'S':
                return OneLine(Res(ids::EmptySlotGroup), " ");
            case 'X':
                return OneLine(Res(ids::InputModuleGroup), " ");
            case 'Y':
                return OneLine(Res(ids::OutputModuleGroup), " ");
            case 'F':
                return OneLine(Res(ids::FunctionModuleGroup), " ");
            default:
                return "";
        }
    };
    Rows rows;
    for (int slot = 0; slot < kSlotCount; ++slot) {
        const std::string& code = f.codes[slot];
        const std::string name = slot < kNamedSlotCount ? f.names[slot] : "";
        if (code.empty() && name.empty()) continue;
        rows.push_back({std::to_string(slot), code, kind(code), name});
    }
    Sheet sheet = NewSheet(ids::IoAssignment, context);
    if (rows.empty()) {
        sheet.AddNote("No slot is assigned.");
    } else {
        sheet.AddTable("",
                       {Res(ids::SlotNo), Res(ids::IoModule), "Kind", Res(ids::ModuleNameColumn)},
                       std::move(rows));
    }
    return sheet;
}

Sheet SupplementarySheet(const ParameterImage& image, const DialogContext& context) {
    Sheet sheet = NewSheet(ids::SupplementaryFunctions, context);
    if (context.CpuType == "A0J") {
        sheet.AddTable("", {kSetting, kValue},
                       {{Res(ids::StepRelaySetting), YesNo(ReadStepRelay(image).StepRelayFlag)}});
        return sheet;
    }
    const AssistanceLayout layout = AssistanceLayoutOf(context.CpuType);
    const AssistanceFields f = ReadAssistance(image, context);
    const auto contact = [](const std::string& number) {
        return number.empty() ? "" : Res(ids::DeviceX) + number;
    };
    Rows rows = {{Res(ids::StepRelay), YesNo(f.StepRelayFlag)}};
    if (f.StepRelayFlag) {
        if (layout.extended) {
            rows.push_back({Res(ids::RangeForS), f.Text1[0] + " - " + f.Text1[1]});
        } else {
            rows.push_back({Res(ids::StartNoOfS), f.Text1[0]});
        }
    }
    rows.push_back({Res(ids::RunContact), contact(f.Text2[0])});
    rows.push_back({Res(ids::PauseContact), contact(f.Text2[1])});
    rows.push_back({Res(ids::OutputModeAtStopToRun),
                    Res(f.OutputMode == 1 ? ids::After1Scan : ids::BeforeOperation)});
    if (layout.watchdog) rows.push_back({Res(ids::WdtSetting), f.Text3 + " " + Res(ids::WdtUnit)});
    if (layout.endManage) rows.push_back({Res(ids::EndBatchProcess), YesNo(f.EndManageFlag)});
    if (layout.comment) {
        rows.push_back({Res(ids::GeneralDataProcessingMethod) + ": " + Res(ids::WithComment),
                        YesNo(f.CommentFlag)});
    }
    if (layout.xyControl) {
        static constexpr int kXYCaptions[4] = {ids::DirectDirect, ids::RefreshDirect,
                                               ids::DirectRefresh, ids::RefreshRefresh};
        rows.push_back(
            {Res(ids::IoControl) + " (X / Y)", OneLine(Res(kXYCaptions[f.XYControl & 3]), " / ")});
    }
    sheet.AddTable("", {kSetting, kValue}, std::move(rows));

    const auto mode = [](int option) { return Res(option == 1 ? ids::Stop : ids::Continue); };
    sheet.AddTable(Res(ids::OperatingModeAtError), {},
                   {{Res(ids::FuseBlown), mode(f.FuseCut)},
                    {Res(ids::OperationError), mode(f.CalcErr)},
                    {Res(ids::IoModuleVerifyError), mode(f.IOErr)},
                    {Res(ids::FunctionModuleOperationError), mode(f.ActErr)}});
    return sheet;
}

Sheet RemoteSheet(const ParameterImage& image, const DialogContext& context) {
    static constexpr int kModes[3] = {ids::AutomaticReconnection, ids::ManualConnection,
                                      ids::StopAtEmergency};
    const RemoteFields f = ReadRemote(image);
    Sheet sheet = NewSheet(ids::RemoteTitle, context);
    sheet.AddTable("", {kSetting, kValue},
                   {{Res(ids::TotalRemoteStations), f.Text1},
                    {Res(ids::OnlineMode),
                     f.OnlineMode >= 0 && f.OnlineMode < 3 ? Res(kModes[f.OnlineMode]) : ""}});
    Rows entries;
    for (int e = 0; e < kRemoteEntries; ++e) {
        if (f.Text2[e].empty()) continue;
        entries.push_back({std::to_string(e + 1), f.Text2[e], f.Text2[e + kRemoteEntries]});
    }
    if (entries.empty()) {
        sheet.AddTable(Res(ids::StationSettingProtocol), {}, {});
        sheet.AddNote("No remote terminal is set.");
    } else {
        sheet.AddTable(Res(ids::StationSettingProtocol),
                       {Bare(Res(ids::EntryNoHeading)), Res(ids::StartNo), Res(ids::Protocol)},
                       std::move(entries));
    }
    return sheet;
}

Sheet MiniSheet(const ParameterImage& image, const DialogContext& context) {
    const MINIFields f = ReadMINI(image, context);
    Sheet sheet = NewSheet(ids::MiniTitle, context);
    sheet.AddTable("", {kSetting, kValue}, {{Res(ids::NumberOfModules), f.Text1}});
    std::vector<std::string> headings = {"Module"};
    for (int field = 0; field < kMiniFieldsPerRow; ++field) {
        headings.push_back(Res(ColumnCaption(field)));
    }
    Rows modules;
    for (int m = 0; m < kMiniModules; ++m) {
        std::vector<std::string> row = {std::to_string(m + 1)};
        bool any = false;
        for (int field = 0; field < kMiniFieldsPerRow; ++field) {
            row.push_back(f.Text2[m * kMiniFieldsPerRow + field]);
            any = any || !row.back().empty();
        }
        if (any) modules.push_back(std::move(row));
    }
    if (modules.empty()) {
        sheet.AddNote("No module is set.");
    } else {
        sheet.AddTable("", std::move(headings), std::move(modules));
    }
    return sheet;
}

// The CPU types whose parameter menu edits network settings: all but the smallest.
bool HasNetworkSettings(const std::string& cpu) {
    for (const char* code :
         {"A0H", "A1S", "A1 ", "A2C", "A2 ", "A3 ", "A3H", "A2A", "A3A", "A2U", "A3U", "A4U"}) {
        if (cpu == code) return true;
    }
    return false;
}

std::string SumText(const ParameterImage& image) {
    return ByteText(image[2056]) + " " + ByteText(image[2057]) + " " + ByteText(image[2058]);
}

Sheet NetworkLinkSheet(const ParameterImage& image, const DialogContext& context) {
    // The mode as the network menu reads it; -1 stands for bits of no mode.
    const int16_t mode = NetworkModeOf(image, -1);
    std::string modeText;
    switch (mode) {
        case 0:
            modeText = "No network parameters";
            break;
        case 1:
            modeText = Res(ids::MornetIICombinationMode);
            break;
        case 2:
            modeText = Res(ids::MornetIIMode);
            break;
        case 3:
            modeText = Res(ids::MornetMode);
            break;
        default:
            modeText = "No MORNET mode (mode bits " + std::to_string(image[2560] & 0x3F) + ")";
    }
    ParameterImage summed = image;
    SetCheckSum(summed, "", true);  // the network sum alone
    const std::string stored = SumText(image);
    Sheet sheet = NewSheet(ids::NetworkLinkSetting, context);
    sheet.AddTable("", {kSetting, kValue},
                   {{"Network block",
                     image[1024] == 0 ? "Empty (byte 1024 is 0)" : "Holds network parameters"},
                    {"Network mode", modeText + " (byte 2560 = " + ByteText(image[2560]) + ")"},
                    {"Network sum (2056-2058)",
                     stored + (stored == SumText(summed)
                                   ? ", the sum of the block"
                                   : ", not the sum of the block: " + SumText(summed))}});
    const Sheet bytes = NetworkSheet(sheet.name, {image.bytes().begin(), image.bytes().end()});
    sheet.rows.insert(sheet.rows.end(), bytes.rows.begin(), bytes.rows.end());
    return sheet;
}

}  // namespace

DialogContext ReportContext(const std::string& cpuType, const std::string& projectDir) {
    DialogContext context;
    context.CpuType = cpuType;
    context.ProjectDir = projectDir;
    if (const platform::DeviceSizes* sizes = platform::FindDeviceSizes(cpuType)) {
        for (char letter : DeviceMaxSizes::kLetters) {
            context.DeviceMaxSize[letter] = static_cast<int16_t>(sizes->Of(letter).value_or(0));
        }
    }
    return context;
}

std::vector<Sheet> BuildParameterReport(const ParameterImage& image, const DialogContext& context) {
    std::vector<Sheet> sheets;
    sheets.push_back(MemorySheet(image, context));
    sheets.push_back(LatchSheet(image, context));
    if (TimerGroupOf(context.CpuType) != TimerGroup::None) {
        sheets.push_back(TimerCounterSheet(image, context));
    }
    sheets.push_back(IoSheet(image, context));
    sheets.push_back(SupplementarySheet(image, context));
    // The dialog that Supplementary Functions opens for the CPU type.
    const std::string followOn = AssistanceLayoutOf(context.CpuType).followOn;
    if (followOn == "frmRemote") sheets.push_back(RemoteSheet(image, context));
    if (followOn == "frmMINI") sheets.push_back(MiniSheet(image, context));
    if (HasNetworkSettings(context.CpuType)) sheets.push_back(NetworkLinkSheet(image, context));
    return sheets;
}

}  // namespace gantrix
