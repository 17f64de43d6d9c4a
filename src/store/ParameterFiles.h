#pragma once
// The parameter files of a project and the host-library calls that load and default them.
//
// Every file is written whole to a new file beside its target and renamed over it, so a
// failing write (full disk, no permission) leaves the previous file as it was. A failing
// file operation raises a RuntimeError whose description names the file and the reason.

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "store/StoreState.h"

namespace gantrix {

// The file names of a run, in the project directory.
inline constexpr const char* kParamTmp = "param.tmp";
inline constexpr const char* kParamWork = "param.$$$";
inline constexpr const char* kNetparaTmp = "netpara.tmp";
inline constexpr const char* kNetparaWork = "netpara.$$$";

// The name part of the regular file at path, spelled as the directory stores it, or "" when
// there is none. Names are looked up without regard to case (projects move between file
// systems that fold case and ones that do not); callers compare the result exactly or in
// lower case as each test requires, and use the returned spelling for any operation on it.
std::string Dir(const std::string& path);

// Writes image bytes 0..3071 to ProjectDir & name.
void SaveParameterFile(const StoreState& state, const std::string& name);
void SaveParameterTemp(const StoreState& state);

// Takes the network part of ProjectDir & name into the image (merge rule in the .cpp).
// A file shorter than 3072 bytes reads as zeros past its end.
void MergeParameterFile(StoreState& state, const std::string& name);

// RkLoadParameter on path; the image is filled only on result 0.
int32_t LoadParameter(const std::string& path, ParameterImage& image);

// RkGetDeviceMaxSize; a size above 32767 does not fit the 16-bit module value and raises
// the overflow error.
int16_t GetDeviceMaxSize(const std::string& device);
// The check GetDeviceMaxSize makes on the library's answer.
int16_t DeviceSizeToModuleValue(int32_t size, const std::string& device);

// RkSetParameter2Default with the component's directory; 0 on success.
int32_t SetParameterDefault(const std::string& cpuBuffer, int16_t cpuCode, ParameterImage& image);

// The directory of the component's own library (or executable), ending in "/".
std::string GetAppPath();

// "Clear All": asks message 12 through showMessage, writes the defaults of the CPU type into
// the image and "param.$$$", deletes "netpara.$$$", shows message 10. Returns true when the
// defaults were written (the caller then sets ParamChanged).
bool ClearAllParameters(StoreState& state, const std::function<std::string(int)>& showMessage);

// Deletes the working files of a run that exist: "param.$$p", "temp.dat", "netpara.$$$",
// "param.$$$", "netpara.net", "param.net".
void DeleteWorkFiles(const StoreState& state);

// Start of a run, after the image is loaded: copies "param.tmp" to "param.$$$" and, when no
// "netpara.$$$" exists yet, "netpara.tmp" to "netpara.$$$".
void CopyWorkFiles(const StoreState& state);

// End of a run. When save: check bytes, "param.tmp", then "netpara.$$$" copied over
// "netpara.tmp" (or "netpara.tmp" deleted when there is no "netpara.$$$"). Then, saved or
// not, DeleteWorkFiles.
void FinishRunFiles(StoreState& state, bool save);

// File primitives, raising RuntimeError on failure.
void WriteFileAtomically(const std::string& path, const std::vector<uint8_t>& bytes);
std::vector<uint8_t> ReadWholeFile(const std::string& path);
void CopyFileAtomically(const std::string& from, const std::string& to);
void RemoveFile(const std::string& path);

}  // namespace gantrix
