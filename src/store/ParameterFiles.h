// SPDX-License-Identifier: Apache-2.0
#pragma once
// The parameter files of a project and the host-library calls that load and default them.
//
// Every file is written whole to a new file beside its target and renamed over it, so a
// failing write (full disk, no permission) or a crash leaves the previous file as it was. A
// failing file operation raises a RuntimeError whose description names the file and the
// reason.

#include <cstdint>
#include <functional>
#include <optional>
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
// A directory that cannot be read is not taken for an empty one: it raises a RuntimeError
// naming the path.
std::string Dir(const std::string& path);

// The same lookup for an entry of any kind (a directory, a FIFO, a dangling link too).
std::string FindEntry(const std::string& path);

// The file a write to path replaces: path itself, or the end of the chain of symbolic links
// that starts there (a link to nothing leads to the file to be made).
std::string ResolveLinks(const std::string& path);

// "a FIFO", "a character device", ... for the file type bits of a st_mode, for messages.
std::string KindOf(unsigned mode);

// The directory part of path, ending in "/"; "./" for a bare name.
std::string DirectoryOf(const std::string& path);

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

// Loading "param.tmp" at the start of a run (spelled in any case). A project without one runs
// on as before, with the image as the library leaves it. One that exists but cannot be loaded
// whole is refused with the reason, naming the file, so that the run never saves over it.
struct ParamLoad {
    bool loaded = false;
    std::string refusal;  // empty unless refused
};
ParamLoad LoadParamTmp(const std::string& projectDir, ParameterImage& image);

// Deletes the working files of a run that exist: "param.$$p", "temp.dat", "netpara.$$$",
// "param.$$$", "netpara.net", "param.net". A file that cannot be deleted does not stop the
// others; each failure comes back as a text naming the file.
std::vector<std::string> DeleteWorkFiles(const StoreState& state);

// Deletes the temporary files that a killed writer left in the project directory (the
// ".<name>.<pid>.<n>.part" files of StagedFile). Only for a run that holds the project.
void RemoveStaleParts(const std::string& projectDir);

// Start of a run, after the image is loaded: copies "param.tmp" to "param.$$$" and, when no
// "netpara.$$$" exists yet, "netpara.tmp" to "netpara.$$$".
void CopyWorkFiles(const StoreState& state);

// The save of a run left with OK: check bytes, then "netpara.$$$" copied over "netpara.tmp"
// (or "netpara.tmp" deleted when there is no "netpara.$$$"), then "param.tmp" last. Until
// "param.tmp" is in place a failure raises and "param.tmp" is as it was; once it is, the
// save stands, and a failure to sync the directory comes back as a warning.
std::vector<std::string> SaveRunFiles(StoreState& state);

// After a file was renamed into place at target: syncs its directory and projectDir (when it
// is another), so that the rename survives a power loss. A failure comes back as a warning.
std::vector<std::string> SyncAfterSave(const std::string& target, const std::string& projectDir);

// End of a run: SaveRunFiles when save, then, saved or not, DeleteWorkFiles. Returns the
// warnings of both; a failed save raises, with the clean-up's failures added to its text.
std::vector<std::string> FinishRunFiles(StoreState& state, bool save);

// A file written whole, and synced, beside the file it is to replace, not yet in place. When
// path is a symbolic link, the file replaced is the one the link leads to, so that the link
// stays and its target is updated. The temporary file is removed unless committed.
//
// Only a regular file is ever replaced: when the target exists and is anything else (a device,
// a FIFO, a directory, also through links), the write is refused naming the path and the
// kind, before anything is written, and again at Commit for a target changed meanwhile.
class StagedFile {
  public:
    StagedFile(const std::string& path, const std::vector<uint8_t>& bytes);
    ~StagedFile();
    StagedFile(const StagedFile&) = delete;
    StagedFile& operator=(const StagedFile&) = delete;

    // Renames the temporary file over the target.
    void Commit();
    // The file that is replaced.
    const std::string& Target() const { return target_; }

  private:
    std::string path_;  // as the caller named it, for messages
    std::string target_;
    std::string temp_;
    bool committed_ = false;
};

// File primitives, raising RuntimeError on failure.
void WriteFileAtomically(const std::string& path, const std::vector<uint8_t>& bytes);
// Reads a regular file whole; anything else (a FIFO would block) is refused, and so is a file
// of more than limit bytes, whose size is looked at before it is read.
std::vector<uint8_t> ReadWholeFile(const std::string& path, size_t limit = SIZE_MAX);
// The same, nullopt when there is no file at path.
std::optional<std::vector<uint8_t>> ReadFileIfAny(const std::string& path, size_t limit);
void CopyFileAtomically(const std::string& from, const std::string& to);
void RemoveFile(const std::string& path);
// Makes the renames in directory durable.
void SyncDirectory(const std::string& directory);

}  // namespace gantrix
