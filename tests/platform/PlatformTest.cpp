#include <gtest/gtest.h>

#include <map>

#include "platform/excel/Excel.h"
#include "platform/rkcmnt/DefaultImage.h"
#include "platform/rkcmnt/DeviceTable.h"
#include "platform/rkcmnt/rkcmnt.h"
#include "platform/rkpara/rkpara.h"
#include "platform/user32/user32.h"
#include "store/CheckSum.h"
#include "support/core/TestSupport.h"

namespace gantrix {
namespace {

using platform::kCpuTypes;
using test::DefaultImage;

bool In(const std::string& cpu, std::initializer_list<const char*> list) {
    for (const char* c : list) {
        if (cpu == c) return true;
    }
    return false;
}

int Word(const ParameterImage& image, int index) {
    return image.GetParamWord(index);
}

TEST(DefaultImage, MemoryLatchAndTimerValuesPerCpuType) {
    for (std::string_view code : kCpuTypes) {
        const std::string cpu(code);
        SCOPED_TRACE(cpu);
        const ParameterImage image = DefaultImage(cpu);
        const bool extended = In(cpu, {"A2A", "A3A", "A2U", "A3U", "A4U"});
        const bool u = In(cpu, {"A2U", "A3U", "A4U"});
        EXPECT_EQ(Word(image, 64), cpu == "A0J" ? 3072 : 6144);
        EXPECT_EQ(Word(image, 66), 0);
        EXPECT_EQ(Word(image, 70), In(cpu, {"A0J", "A1 "}) ? 32768 : 0);
        EXPECT_EQ(Word(image, 68), In(cpu, {"A0J", "A1 "}) ? 65535 : 0);
        EXPECT_EQ(Word(image, 72), 0);
        EXPECT_EQ(Word(image, 132), 0);
        EXPECT_EQ(Word(image, 134), cpu == "A0J" ? 65535 : 0);
        EXPECT_EQ(image[81], 255);
        EXPECT_EQ(image[82], extended ? 0 : 255);
        EXPECT_EQ(Word(image, 138), u ? 0 : 65535);
        EXPECT_EQ(Word(image, 2434), u ? 0 : 65535);
        // Latch: L1000-L2047 except on the smallest type, whose patterns are fixed.
        EXPECT_EQ(Word(image, 16), cpu == "A0J" ? 65535 : 1000);
        EXPECT_EQ(Word(image, 18), 2047);
        for (int row = 1; row < 12; ++row) EXPECT_EQ(Word(image, 16 + 4 * row), 65535) << row;
        EXPECT_EQ(Word(image, 14), extended ? 2048 : 65535);
        // Timer partition.
        EXPECT_EQ(Word(image, 192), 0);
        EXPECT_EQ(Word(image, 194), cpu == "A0J" ? 80 : 200);
        EXPECT_EQ(Word(image, 196), cpu == "A0J" ? 120 : 65535);
        EXPECT_EQ(Word(image, 210), In(cpu, {"A2A", "A3A"}) ? 256 : 65535);
        EXPECT_EQ(Word(image, 2304), u ? 256 : 65535);
        EXPECT_EQ(Word(image, 2306), 65535);
        // No interrupt counters, nothing assigned, no network.
        for (int i = 188; i <= 191; ++i) EXPECT_EQ(image[i], 255);
        for (int i = 384; i <= 511; ++i) ASSERT_EQ(image[i], 0) << i;
        EXPECT_EQ(image[1024], 0);
        EXPECT_EQ(image[1071], 0);
        // The menu's fixed bytes.
        EXPECT_EQ(image[524], extended ? (u ? 15 : 0) : 255);
        EXPECT_EQ(image[536], 2);
        EXPECT_EQ(image[543], 16);
        EXPECT_EQ(image[2314], u ? 2 : 255);
    }
}

TEST(DefaultImage, SupplementaryDefaults) {
    for (std::string_view code : kCpuTypes) {
        const std::string cpu(code);
        SCOPED_TRACE(cpu);
        const ParameterImage image = DefaultImage(cpu);
        if (cpu == "A0J") {
            EXPECT_EQ(Word(image, 160), 65535);
            continue;
        }
        EXPECT_EQ(Word(image, 160), 20);
        EXPECT_EQ(image[163], 1);
        EXPECT_EQ(image[164], 0);
        EXPECT_EQ(image[165], 1);
        EXPECT_EQ(image[169], 0);
        EXPECT_EQ(image[170], 0);
        EXPECT_EQ(Word(image, 172), 65535);
        EXPECT_EQ(image[181], 255);
        EXPECT_EQ(image[159], cpu == "A2C" ? 64 : 255);
    }
}

TEST(DefaultImage, CarriesTheCheckBytesOfItsFamilyAndTheNetworkSum) {
    for (std::string_view code : kCpuTypes) {
        const std::string cpu(code);
        const ParameterImage image = DefaultImage(cpu);
        ParameterImage resummed = image;
        SetCheckSum(resummed, cpu, true);
        EXPECT_EQ(test::DifferingBytes(image, resummed), std::vector<int>{}) << cpu;
    }
    ParameterImage untouched;
    untouched.bytes().fill(3);
    EXPECT_FALSE(platform::BuildDefaultImage("A4 ", untouched.data()));
    EXPECT_FALSE(platform::BuildDefaultImage("A1", untouched.data()));
    EXPECT_EQ(untouched[0], 3);
}

TEST(DeviceTable, SizesFitTheDeviceCodeRangesOfTheExtendedTypes) {
    // Code ranges in which set-value and refresh devices are stored (first, last).
    const std::map<char, std::pair<int, int>> groupA = {
        {'B', {1536, 1791}},  {'C', {3072, 4095}},   {'W', {4096, 8191}},
        {'D', {8192, 14335}}, {'T', {14336, 16383}}, {'R', {16384, 24575}}};
    const std::map<char, std::pair<int, int>> groupU = {
        {'B', {2048, 2559}},   {'C', {4096, 5119}},   {'W', {5120, 13311}},
        {'D', {13312, 21503}}, {'T', {21504, 23551}}, {'R', {32768, 40959}}};
    for (const char* cpu : {"A2A", "A3A", "A2U", "A3U", "A4U"}) {
        const auto* sizes = platform::FindDeviceSizes(cpu);
        ASSERT_NE(sizes, nullptr);
        const bool u = cpu[2] == 'U';
        for (const auto& [letter, range] : u ? groupU : groupA) {
            const int codes = range.second - range.first + 1;
            EXPECT_EQ(*sizes->Of(letter), letter == 'B' ? codes * 16 : codes) << cpu << letter;
        }
        EXPECT_EQ(sizes->M, 8192) << cpu;  // 512 codes of 16 points
    }
    const auto* a0j = platform::FindDeviceSizes("A0J");
    // The fixed latch patterns run to L2047, B3FF, T127, C127, D511 and W3FF.
    EXPECT_EQ(a0j->M, 2048);
    EXPECT_EQ(a0j->B, 0x400);
    EXPECT_EQ(a0j->T, 128);
    EXPECT_EQ(a0j->C, 128);
    EXPECT_EQ(a0j->D, 512);
    EXPECT_EQ(a0j->W, 0x400);
    EXPECT_EQ(platform::FindDeviceSizes("A1"), nullptr);
    EXPECT_FALSE(a0j->Of('Z').has_value());
}

TEST(Rkcmnt, DeviceSizesFollowTheCpuOfTheSetup) {
    char dir[] = "/tmp/";
    char cpu[] = "A3U";
    RkSetupGlobal(dir, cpu, 0xA4, nullptr);
    char m[] = "M", r[] = "R", none[] = "Q", two[] = "MX";
    EXPECT_EQ(RkGetDeviceMaxSize(m), 8192);
    EXPECT_EQ(RkGetDeviceMaxSize(r), 8192);
    EXPECT_EQ(RkGetDeviceMaxSize(none), 0);
    EXPECT_EQ(RkGetDeviceMaxSize(two), 0);
    char unknown[] = "A9 ";
    RkSetupGlobal(dir, unknown, 0xA4, nullptr);
    EXPECT_EQ(RkGetDeviceMaxSize(m), 0);
}

TEST(Rkcmnt, EndPositionsComeFromTheProjectsProgramEndFile) {
    test::TempDir dir;
    dir.Write("param.tmp", std::vector<uint8_t>(3072, 0));
    ParameterImage image;
    std::string path = dir.File("param.tmp");
    char cpuText[] = "          ";
    int16_t value = 0, end[4] = {9, 9, 9, 9};
    ASSERT_EQ(RkLoadParameter(path.data(), image.data()), kRkLoadOk);
    RkGetFileParameter(cpuText, &value, end);
    EXPECT_EQ(end[0], 0);
    EXPECT_EQ(end[3], 0);

    dir.WriteText("program.end", "2049\n  100 7");
    RkGetFileParameter(cpuText, &value, end);
    EXPECT_EQ(end[0], 2049);
    EXPECT_EQ(end[1], 100);
    EXPECT_EQ(end[2], 7);
    EXPECT_EQ(end[3], 0);  // missing number

    dir.WriteText("program.end", "12 x 5 5");
    RkGetFileParameter(cpuText, &value, end);
    EXPECT_EQ(end[0], 12);
    EXPECT_EQ(end[1], 0);
    EXPECT_EQ(end[2], 0);
}

TEST(Rkpara, IoAssignmentIsCheckedAgainstTheCpusPoints) {
    char dir[] = "/tmp/";
    char cpu[] = "A2 ";  // 512 I/O points
    RkSetupGlobal(dir, cpu, 0xA2, nullptr);
    unsigned char slots[512] = {};
    unsigned char network[1032] = {};
    for (int i = 0; i < 8; ++i) slots[i] = 0x24;  // X64 x 8 = 512
    EXPECT_EQ(RkCheckIoAssign(slots, network), 0);
    slots[8] = 0x10;  // an empty slot of 0 points adds nothing
    EXPECT_EQ(RkCheckIoAssign(slots, network), 0);
    slots[9] = 0x31;  // Y16: 528 points
    EXPECT_EQ(RkCheckIoAssign(slots, network), -100);
    slots[9] = 0x15;  // a step above 4 has no points
    EXPECT_EQ(RkCheckIoAssign(slots, network), 0);
    slots[9] = 0x11;  // S16 occupies its points too
    EXPECT_EQ(RkCheckIoAssign(slots, network), -100);
}

TEST(Rkpara, MicroProgramPresentOnlyWhenTheFileHasContent) {
    test::TempDir dir;
    std::string path = dir.File("Mmicro.bin");
    EXPECT_EQ(RkCheckMicro(path.data(), 0, 0), 0);
    dir.Write("Mmicro.bin", {});
    EXPECT_EQ(RkCheckMicro(path.data(), 0, 0), 0);
    dir.Write("Mmicro.bin", {1, 2});
    EXPECT_EQ(RkCheckMicro(path.data(), 0, 0), 1);
}

struct Received {
    std::vector<std::tuple<intptr_t, uint32_t, uintptr_t, intptr_t>> calls;
};

void Record(intptr_t hwnd, uint32_t msg, uintptr_t wParam, intptr_t lParam, void* context) {
    static_cast<Received*>(context)->calls.emplace_back(hwnd, msg, wParam, lParam);
}

TEST(User32, SendDeliversAtOncePostWaitsAndUnknownWindowsDropMessages) {
    Received received;
    User32RegisterWindow(77, Record, &received);
    EXPECT_EQ(PostMessageA(77, WM_COMMAND, 60000, 0), 1);
    EXPECT_EQ(PostMessageA(78, WM_COMMAND, 60000, 0), 0);
    SendMessageA(77, WM_COMMAND, 60000, 5);
    SendMessageA(78, WM_COMMAND, 60000, 5);
    ASSERT_EQ(received.calls.size(), 1u);
    EXPECT_EQ(std::get<3>(received.calls[0]), 5);
    EXPECT_EQ(User32DispatchPosted(), 1);
    ASSERT_EQ(received.calls.size(), 2u);
    EXPECT_EQ(std::get<3>(received.calls[1]), 0);

    PostMessageA(77, WM_COMMAND, 1, 0);
    User32RegisterWindow(77, nullptr, nullptr);
    EXPECT_EQ(User32DispatchPosted(), 0);  // the window went away before delivery
    EXPECT_EQ(received.calls.size(), 2u);
}

TEST(Excel, NothingRegisteredMeansNoApplication) {
    EXPECT_EQ(excel::GetObject("excel.application"), nullptr);
    EXPECT_EQ(excel::CreateObject("Excel.Application"), nullptr);
}

}  // namespace
}  // namespace gantrix
