// SPDX-License-Identifier: Apache-2.0
#pragma once
// What the subcommands without a display share: their options, refusals, exit statuses and the
// way they name projects and print what they found.

#include <optional>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "headless/Headless.h"
#include "store/ProjectAccess.h"

namespace rkparam {

inline constexpr int kOk = 0;
// check found something, diff a difference, set or import refused, merge a conflict
inline constexpr int kFound = 1;
inline constexpr int kFailed = 2;

// A refusal before anything was done: the text goes to the user, the exit status is 2.
struct Failure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct Options {
    std::string cpu;
    std::string path;
    std::string other;  // diff: the second project; import: the text file; merge: OURS
    std::vector<std::string> assignments;
    bool json = false;
    std::vector<std::string> paths;      // check: the projects; merge: BASE OURS THEIRS
    std::vector<std::string> recursive;  // check: directories to find projects under
    std::string format = "text";         // check: text, json or junit
    std::string output;                  // merge: -o
    std::string gitPath;                 // merge: --path, where git keeps the file
    std::vector<std::string> gitArgs;    // git-diff: what git hands an external diff
};

std::string Quoted(const std::string& text);

// Text from a file or a command line, as a message shows it: control characters escaped.
std::string Printable(const std::string& text);

// A string for JSON or XML: text that is not UTF-8 (a path may be any bytes) has its bytes
// from 0x80 up written as \xHH.
std::string Utf8Text(const std::string& text);

// At most this many refusals or findings are printed, then how many more there are.
inline constexpr size_t kListed = 20;
void PrintList(std::ostream& out, const std::string& prefix,
               const std::vector<gantrix::headless::Violation>& list, size_t unlisted = 0);

// The project at path; a missing parameter file is refused with how to make one.
gantrix::ProjectPath Locate(const std::string& path);

// The CPU type: option, else the note in projectDir, else fallback; refused when none names one
// or it is no known type.
std::string CpuFor(const std::string& option, const std::string& projectDir,
                   const std::string& fallback);

// A field's value in a list of differences: (none) where the dialog has no such field.
std::string Shown(const std::optional<std::string>& value);

// The fields that differ, grouped by dialog, then the byte ranges, as diff prints them.
void PrintDifference(std::ostream& out, const gantrix::headless::Difference& difference);

}  // namespace rkparam
