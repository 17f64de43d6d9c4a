// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

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

TEST(DefaultImage, CarriesTheCheckBytesOfItsFamilyAndTheNetworkSum) {
    for (std::string_view code : platform::kCpuTypes) {
        const std::string cpu(code);
        const ParameterImage image = test::DefaultImage(cpu);
        ParameterImage resummed = image;
        SetCheckSum(resummed, cpu, true);
        EXPECT_EQ(test::DifferingBytes(image, resummed), std::vector<int>{}) << cpu;
        EXPECT_EQ(image[1024], 0) << cpu;  // a new project has no network parameters
    }
    ParameterImage untouched;
    untouched.bytes().fill(3);
    EXPECT_FALSE(platform::BuildDefaultImage("A1", untouched.data()));
    EXPECT_EQ(untouched[0], 3);
}

TEST(Rkcmnt, DeviceSizesFollowTheCpuOfTheSetupAndEndPositionsTheProjectsFile) {
    test::TempDir dir;
    std::string path = dir.File("param.tmp"), cpu = "A4U";
    char m[] = "M", none[] = "Q", two[] = "MX";
    RkSetupGlobal(path.data(), cpu.data(), 0, nullptr);
    EXPECT_EQ(RkGetDeviceMaxSize(m), 8192);
    EXPECT_EQ(RkGetDeviceMaxSize(none) + RkGetDeviceMaxSize(two), 0);
    cpu = "A9 ";
    RkSetupGlobal(path.data(), cpu.data(), 0, nullptr);
    EXPECT_EQ(RkGetDeviceMaxSize(m), 0);

    dir.Write("param.tmp", std::vector<uint8_t>(3072, 0));
    ParameterImage image;
    char cpuText[] = "          ";
    int16_t value = 0, end[4] = {9, 9, 9, 9};
    ASSERT_EQ(RkLoadParameter(path.data(), image.data()), kRkLoadOk);
    using End = std::pair<const char*, std::vector<int16_t>>;
    for (const auto& [text, expected] :
         {End{nullptr, {0, 0, 0, 0}}, End{"2049\n  100 7", {2049, 100, 7, 0}},
          End{"12 x 5 5", {12, 0, 0, 0}}, End{"-3 40000", {0, 32767, 0, 0}},
          End{"32767 32768", {32767, 32767, 0, 0}}}) {
        if (text) dir.WriteText("program.end", text);
        RkGetFileParameter(cpuText, &value, end);
        EXPECT_EQ(std::vector<int16_t>(end, end + 4), expected) << text;
    }
}

TEST(Rkpara, IoPointsAndTheMicrocomputerFile) {
    std::string dir = "/tmp/", cpu = "A2 ";  // 512 I/O points
    RkSetupGlobal(dir.data(), cpu.data(), 0, nullptr);
    unsigned char slots[512] = {}, network[1032] = {};
    for (int i = 0; i < 8; ++i) slots[i] = 0x24;  // X64 x 8 = 512
    EXPECT_EQ(RkCheckIoAssign(slots, network), 0);
    for (const auto& [slot9, result] :
         {std::pair{0x10, 0}, {0x31, -100}, {0x15, 0}, {0x11, -100}}) {
        slots[9] = static_cast<unsigned char>(slot9);  // S0 and steps above 4 have no points
        EXPECT_EQ(RkCheckIoAssign(slots, network), result) << slot9;
    }
    slots[9] = 0;
    slots[128] = 0x24;  // the byte after the last slot is not a slot
    EXPECT_EQ(RkCheckIoAssign(slots, network), 0);
    test::TempDir project;
    std::string micro = project.File("Mmicro.bin");
    EXPECT_EQ(RkCheckMicro(micro.data(), 0, 0), 0);
    project.Write("Mmicro.bin", {});  // an empty file holds no program
    EXPECT_EQ(RkCheckMicro(micro.data(), 0, 0), 0);
}

void Record(intptr_t, uint32_t, uintptr_t, intptr_t lParam, void* context) {
    static_cast<std::vector<intptr_t>*>(context)->push_back(lParam);
}

TEST(User32, UnknownWindowsDropMessages) {
    std::vector<intptr_t> received;
    User32RegisterWindow(77, Record, &received);
    EXPECT_EQ(PostMessageA(78, WM_COMMAND, 60000, 0), 0);
    SendMessageA(78, WM_COMMAND, 60000, 5);
    PostMessageA(77, WM_COMMAND, 1, 3);
    User32RegisterWindow(77, nullptr, nullptr);
    EXPECT_EQ(User32DispatchPosted(), 0);  // the window went away before delivery
    EXPECT_TRUE(received.empty());
    EXPECT_EQ(excel::GetObject("excel.application"), nullptr);  // no spreadsheet either
}

}  // namespace
}  // namespace gantrix
