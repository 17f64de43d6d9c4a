// SPDX-License-Identifier: Apache-2.0
#pragma once
// The one way into a project, for the run and for every command: where its parameter file
// is, the hold a writer takes on it, the checked load and the safe save.
//
// A project is a directory holding "param.tmp" (found without regard to case), which may be
// a symbolic link; a path may also name a parameter file directly, its directory then being
// the project's. Loads look at a file before they read it and read only what such a file
// can hold; every write goes through StagedFile, which replaces nothing but a regular file.

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "store/ParameterImage.h"
#include "store/RuntimeError.h"

namespace gantrix {

class ProjectLock;

struct ProjectPath {
    std::string projectDir;  // ending in "/"
    // The parameter file as the directory spells it ("PARAM.TMP" too), or projectDir +
    // "param.tmp" when there is none yet.
    std::string file;
    // file with its symbolic links followed: what a load reads and a save replaces.
    std::string target;
    bool exists = false;  // whether there is an entry (of any kind) at file
};

// The parameter file of path, a project directory or a parameter file. A path where nothing
// is raises a RuntimeError naming it.
ProjectPath LocateProject(const std::string& path);

// The projects under root: root and every directory below it that holds a parameter file
// (found without regard to case), in the order of their paths. Directories whose names begin
// with "." (a repository's own) and links to directories are not entered, so that the walk
// ends and finds each project once. A directory below root that cannot be read is named in
// unreadable with the reason; root itself not being a directory raises a RuntimeError.
struct FoundProjects {
    struct Unreadable {
        std::string directory;
        std::string why;
    };
    std::vector<ProjectPath> projects;
    std::vector<Unreadable> unreadable;
};
FoundProjects FindProjects(const std::string& root);

// A project held by a run: another run, or this process, has it.
class ProjectInUse : public RuntimeError {
  public:
    explicit ProjectInUse(const std::string& description)
        : RuntimeError(kErrFileAlreadyOpen, description) {}
};

// A parameter file that is a regular file of the wrong size.
class WrongParameterFileSize : public RuntimeError {
  public:
    explicit WrongParameterFileSize(const std::string& description)
        : RuntimeError(kErrPathFileAccess, description) {}
};

// What a process that may write a project holds for as long as it lives: the lock of the
// project directory and, where the parameter file's links lead to another directory, the
// lock of that one too, since the save replaces the file there. Once both are held, the
// temporary files that killed writers left in them are removed.
class ProjectHold {
  public:
    // Raises ProjectInUse when a run holds either directory, a RuntimeError when a lock
    // cannot be taken (its file not a regular one, a directory that is not there).
    explicit ProjectHold(ProjectPath path);
    ~ProjectHold();
    ProjectHold(const ProjectHold&) = delete;
    ProjectHold& operator=(const ProjectHold&) = delete;

    const ProjectPath& Path() const { return path_; }

    // The parameter file, checked (see LoadParameterImage).
    ParameterImage Load() const;
    // Writes image whole beside the file, syncs it, renames it over the file and syncs the
    // directories. Refused when the file's links now lead elsewhere than when the hold was
    // taken. Returns warnings (a directory that could not be synced).
    std::vector<std::string> Save(const ParameterImage& image) const;

  private:
    ProjectPath path_;
    std::vector<std::unique_ptr<ProjectLock>> locks_;
};

// The parameter file at file, read checked: a regular file (links followed) of exactly 3072
// bytes, its size looked at before it is read. Raises WrongParameterFileSize for a regular
// file of another size, a RuntimeError naming the file and the reason otherwise.
ParameterImage LoadParameterImage(const std::string& file);

// Writes image as the parameter file at file, whole beside it and renamed over it (a working
// file of a run, such as the one the network workbook saves into; the run holds the project).
void SaveParameterImage(const std::string& file, const ParameterImage& image);

// The largest "program.end" and note file (such as "rkparam.cpu") read: a few numbers or a
// code, never more.
inline constexpr size_t kSmallFileLimit = 256;

// Raises a RuntimeError naming "program.end" of projectDir when it is there but cannot be
// what the host library reads the END positions from: not a regular file (a FIFO would
// hang the reader), larger than kSmallFileLimit, or unreadable (taken for "no programs", it
// would let a memory size through that the programs do not fit).
void CheckProgramEnd(const std::string& projectDir);

// The END positions of the programs (main, sub programs 1..3) as the host library gives them
// for the project of path, after CheckProgramEnd; all 0 when the file cannot be loaded.
std::array<int16_t, 4> ReadEndPositions(const ProjectPath& path);

// The text of the small file name in projectDir (a note kept beside the parameter file),
// nullopt when there is none. Anything but a regular file of at most kSmallFileLimit bytes
// raises a RuntimeError naming it.
std::optional<std::string> ReadProjectNote(const std::string& projectDir, const std::string& name);

// A text file the user names for input, read whole when it is a regular file of at most
// limit bytes; a RuntimeError naming it otherwise.
std::string ReadInputFile(const std::string& path, size_t limit);

// A file the user names for output, written as parameter files are (whole, then renamed, only
// over a regular file). The name of a parameter or working file of a project is refused: the
// output of a command never takes the place of one.
void WriteOutputFile(const std::string& path, const std::string& text);

}  // namespace gantrix
