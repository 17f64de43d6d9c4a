// SPDX-License-Identifier: Apache-2.0
#include "platform/rkcmnt/DefaultImage.h"

#include <array>
#include <cstring>

#include "platform/rkcmnt/DeviceTable.h"

namespace gantrix::platform {
namespace {

constexpr int kImageSize = 3072;
using Image = std::array<unsigned char, kImageSize>;

bool In(std::string_view cpu, std::initializer_list<std::string_view> list) {
    for (std::string_view c : list) {
        if (c == cpu) return true;
    }
    return false;
}

void Word(Image& image, int index, int value) {
    image[index] = static_cast<unsigned char>(value & 0xFF);
    image[index + 1] = static_cast<unsigned char>((value >> 8) & 0xFF);
}

void Fill(Image& image, int first, int last, unsigned char value) {
    for (int i = first; i <= last; ++i) image[i] = value;
}

void MemoryDefaults(std::string_view cpu, Image& image) {
    const bool a0j = cpu == "A0J";
    const bool a1 = cpu == "A1 ";
    const bool extended = In(cpu, {"A2A", "A3A", "A2U", "A3U", "A4U"});
    const bool u = In(cpu, {"A2U", "A3U", "A4U"});
    Word(image, 64, a0j ? 3 * 1024 : 6 * 1024);
    Word(image, 66, 0);
    if (!a0j && !a1) Word(image, 68, 0);
    Word(image, 70, (a0j || a1) ? 64 * 512 : 0);
    Word(image, 72, 0);
    if (In(cpu, {"A3 ", "A3H"}) || extended) Word(image, 74, 0);
    if (In(cpu, {"A0H", "A1S", "A2C", "A2 ", "A3 ", "A3H"})) {
        image[76] = 0;
        image[78] = 0;
        image[79] = 0;
        image[80] = 0;
    }
    if (extended) {
        image[76] = 0;
        image[80] = 0;
        image[81] = 255;
        Fill(image, 82, 87, 0);
        Fill(image, 88, 131, 255);
    }
    Word(image, 132, 0);
    if (!a0j) {
        Word(image, 134, 0);
        Word(image, 136, 0);
    }
    if (u) {
        Word(image, 138, 0);
        Word(image, 2432, 0);
        Word(image, 2434, 0);
    }
}

void LatchDefaults(std::string_view cpu, Image& image) {
    if (cpu == "A0J") {
        Word(image, 18, 2047);
        return;
    }
    Word(image, 16, 1000);
    Word(image, 18, 2047);
    if (In(cpu, {"A2A", "A3A", "A2U", "A3U", "A4U"})) Word(image, 14, 2048);
}

void TimerDefaults(std::string_view cpu, Image& image) {
    if (cpu == "A0J") {
        Word(image, 192, 0);
        Word(image, 194, 80);
        Word(image, 196, 120);
        return;
    }
    Word(image, 192, 0);
    Word(image, 194, 200);
    if (In(cpu, {"A2A", "A3A"})) {
        Word(image, 210, 256);
        Word(image, 214, 256);
    }
    if (In(cpu, {"A2U", "A3U", "A4U"})) {
        Word(image, 2304, 256);
        Word(image, 2308, 256);
    }
}

void SupplementaryDefaults(std::string_view cpu, Image& image) {
    if (cpu == "A0J") return;
    Word(image, 160, 20);
    image[163] = 1;
    image[164] = 0;
    image[165] = 1;
    image[169] = 0;
    image[170] = 0;
    image[180] = 0;
    image[181] = 255;
    if (In(cpu, {"A2U", "A3U", "A4U"})) image[140] = 0;
    if (In(cpu, {"A3 ", "A3H", "A3A", "A3U", "A4U"})) image[208] = 0;
    if (cpu == "A2C") {
        Fill(image, 141, 158, 0);
        image[159] = 64;
    }
}

// No M-NET/MINI modules: the count word the dialog's Clear gives, in each area the CPU
// group keeps (534 for the extended types, 2312 too for the U types); records stay erased.
void MiniDefaults(std::string_view cpu, Image& image) {
    if (In(cpu, {"A2A", "A3A", "A2U", "A3U", "A4U"})) Word(image, 534, 0);
    if (In(cpu, {"A2U", "A3U", "A4U"})) Word(image, 2312, 0);
}

void MenuFixedBytes(std::string_view cpu, Image& image) {
    static constexpr unsigned char kFixed[8] = {2, 104, 0, 16, 3, 72, 1, 16};
    const bool u = In(cpu, {"A2U", "A3U", "A4U"});
    if (In(cpu, {"A2A", "A3A"})) {
        image[524] = 0;
    } else if (u) {
        image[524] = 15;
    } else {
        image[524] = 255;
        image[182] = 255;
    }
    std::memcpy(&image[536], kFixed, sizeof kFixed);
    if (u) std::memcpy(&image[2314], kFixed, sizeof kFixed);
}

void Sums(std::string_view cpu, Image& image) {
    uint32_t sum = 0;
    for (int i = 0; i <= 524; ++i) sum += image[i];
    const unsigned char b0 = sum & 0xFF, b1 = (sum >> 8) & 0xFF, b2 = (sum >> 16) & 0xFF;
    if (In(cpu, {"A2A", "A3A"})) {
        image[525] = static_cast<unsigned char>(~b0);
        image[526] = static_cast<unsigned char>(~b1);
        image[527] = static_cast<unsigned char>(~b2);
    } else if (In(cpu, {"A2U", "A3U", "A4U"})) {
        image[525] = static_cast<unsigned char>(~b0);
        image[526] = static_cast<unsigned char>(~b1);
        image[527] = static_cast<unsigned char>(b2 + 0x5A);
    } else {
        image[525] = b0;
        image[526] = b1;
        image[527] = b2;
    }
    uint32_t net = 0;
    for (int i = 1024; i <= 2055; ++i) net += image[i];
    image[2056] = net & 0xFF;
    image[2057] = (net >> 8) & 0xFF;
    image[2058] = (net >> 16) & 0xFF;
}

}  // namespace

bool BuildDefaultImage(std::string_view cpuType, unsigned char* out) {
    if (FindDeviceSizes(cpuType) == nullptr) return false;
    Image image;
    image.fill(255);
    MemoryDefaults(cpuType, image);
    LatchDefaults(cpuType, image);
    TimerDefaults(cpuType, image);
    SupplementaryDefaults(cpuType, image);
    Fill(image, 384, 511, 0);
    image[1024] = 0;
    image[1071] = 0;
    MiniDefaults(cpuType, image);
    MenuFixedBytes(cpuType, image);
    Sums(cpuType, image);
    std::memcpy(out, image.data(), image.size());
    return true;
}

}  // namespace gantrix::platform
