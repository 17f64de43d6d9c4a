// SPDX-License-Identifier: Apache-2.0
#pragma once
// The default parameter image of each CPU type, as RkSetParameter2Default writes it.
//
// Every byte starts at 255 (erased). Then, per region (words are 16-bit little endian):
//
//  Memory capacity
//    64   main program        3 K steps (3072) for A0J, 6 K steps (6144) for every other type
//    66   sub program 1       0
//    68   file register       0, except A0J and A1 (no file register: left erased)
//    70   comment             64 K bytes (32768) for A0J and A1, 0 for the others
//    72   microcomputer       0
//    74   sub microcomputer   0 for A3, A3H and the extended types (A2A A3A A2U A3U A4U)
//    76, 78-79, 80            0 for A0H A1S A2C A2 A3 A3H (status latch, sampling trace)
//    76, 80                   0 for the extended types; 81 = 255, 82-87 = 0, 88-131 = 255
//    132  extension comment   0
//    134, 136 sub programs 2, 3  0 for every type except A0J
//    138, 2432, 2434          0 for A2U A3U A4U (reserved area, doubled size, micro as typed)
//  Latch ranges (16..63)
//    A0J: everything erased except the end of L, word 18 = 2047 (no step relays)
//    others: L1000-L2047 (words 16 = 1000, 18 = 2047), the other rows erased;
//    word 14 = 2048 for the 12-row types (A2A A3A A2U A3U A4U)
//  Timer and counter partition
//    A0J: low speed from T0, high speed from T80, integration from T120 (192/194/196 =
//         0/80/120), which is what its fixed latch patterns assume
//    others: 192 = 0, 194 = 200, 196 erased (low speed T0-199, high speed T200-255)
//    A2A A3A: timer points 210 = 256, counter points 214 = 256, devices 212/216 erased
//    A2U A3U A4U: timer points 2304 = 256, counter points 2308 = 256, devices erased
//  Interrupt counters 188..191 erased: no interrupt counters
//  I/O assignment 384..511 = 0 (nothing assigned); model names 640..1023 erased
//  Supplementary functions (every type except A0J)
//    160 watchdog 20 x 10 ms; 163 I/O verify error stop (1); 164 fuse blown continue (0);
//    165 special module error stop (1); 169 operation error continue (0); 170 = 0 and
//    172-174, 176-178 erased (no RUN/PAUSE contacts); 180 = 0; 181 = 255;
//    140 = 0 for A2U A3U A4U; 208 = 0 for A3 A3H A3A A3U A4U
//  Remote stations (A2C): 141 = 0, 142 = 0, 143..158 = 0, 159 = 64
//  M-NET/MINI auto-refresh: no modules, count word 534 = 0 for the extended types and
//    2312 = 0 for A2U A3U A4U; the module records 544..639 and 2322..2417 erased
//  Fixed bytes the parameter menu writes on OK: 524, 536..543, 2314..2321 (U types), 182
//  Network block: 1024 = 0 (no network parameters), 1071 = 0 (no I/O assignment), the rest
//  erased; its sum at 2056..2058 is written.
//  Main check bytes 525..527 in the form of the CPU family.

#include <cstdint>
#include <string_view>

namespace gantrix::platform {

// Writes the default image of cpuType into image[0..3071]. Returns false, leaving the
// image untouched, for a code that is not one of the thirteen CPU types.
bool BuildDefaultImage(std::string_view cpuType, unsigned char* image);

}  // namespace gantrix::platform
