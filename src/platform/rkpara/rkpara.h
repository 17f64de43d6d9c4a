// SPDX-License-Identifier: Apache-2.0
#pragma once
// Stand-in for the host product's parameter-check library (same conventions as rkcmnt.h).

#include <cstdint>

extern "C" {

// Checks an I/O assignment. slots holds 512 bytes: the encoded slot bytes of slots 0..127
// (high nibble kind 1..4 = S, X, Y, F; low nibble 0..4 = 0, 16, 32, 48, 64 points), then
// zeros. networkBlock points at image byte 1024. Returns -100 when the points of all slots
// add up to more than the I/O points of the CPU given to RkSetupGlobal, else 0. The checks
// against the network block (-101..-104) need the layout of the network data, which is
// edited outside this component, so this stand-in never reports them.
int16_t RkCheckIoAssign(unsigned char* slots, unsigned char* networkBlock);

// Returns 1 when the microcomputer program file at path exists and is not empty, else 0.
// mainWord and microWord (image words 64 and 72 as stored) are not needed here.
int16_t RkCheckMicro(char* path, int16_t mainWord, int16_t microWord);

}  // extern "C"
