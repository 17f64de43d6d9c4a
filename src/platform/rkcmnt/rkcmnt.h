// SPDX-License-Identifier: Apache-2.0
#pragma once
// Stand-in for the host product's common library. It keeps the call shapes the component
// was written against (C linkage, NUL-terminated 8-bit buffers, a pointer to byte 0 of the
// 3072-byte parameter image, 16- and 32-bit results) and does the least the callers expect.
//
// Device sizes and default images come from the tables in DeviceTable.h and DefaultImage.h;
// their documentation there is the reference for what each CPU type offers.

#include <cstdint>

extern "C" {

// Result codes of RkLoadParameter.
enum : int32_t {
    kRkLoadOk = 0,
    kRkLoadMissing = 1,    // no file at the path
    kRkLoadWrongSize = 2,  // the file does not hold exactly 3072 bytes
    kRkLoadReadError = 3,  // the file exists but cannot be read
};

// Reads the 3072-byte parameter file at path into image. On any result but kRkLoadOk the
// image is untouched. Remembers the file's directory for RkGetFileParameter.
int32_t RkLoadParameter(char* path, unsigned char* image);

// Writes the END instruction positions (steps) of the main program and sub programs 1..3
// into endPositions[0..3], read from the text file "program.end" of the directory of the last
// RkLoadParameter call: four decimal numbers separated by white space. A missing file or a
// missing or unreadable number gives 0. cpuText and value are left as they are; the result
// is always 0.
int32_t RkGetFileParameter(char* cpuText, int16_t* value, int16_t* endPositions);

// Remembers the project directory, CPU type and image for the calls that follow
// (RkGetDeviceMaxSize, RkCheckIoAssign). Always returns 0.
int32_t RkSetupGlobal(char* projectDir, char* cpuType, int16_t cpuCode, unsigned char* image);

// Number of device points of the given letter ("X", "Y", "M", "B", "T", "C", "D", "W", "R")
// for the CPU given to RkSetupGlobal; 0 for an unknown letter or CPU type.
int32_t RkGetDeviceMaxSize(char* device);

// Writes the default image of the CPU type in cpuBuffer (the CPU code followed by NULs) into
// the whole image, check bytes included. Returns 0 on success and 1 for an unknown CPU type,
// in which case the image is untouched. componentDir and cpuCode are not needed here.
int32_t RkSetParameter2Default(char* componentDir, char* cpuBuffer, int16_t cpuCode,
                               unsigned char* image);

}  // extern "C"
