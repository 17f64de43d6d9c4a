// SPDX-License-Identifier: Apache-2.0
#pragma once
// The subcommands for pipelines and version control: check of many projects in one call, the
// three-way merge, and git's merge and diff drivers with their set-up.

#include "CommandSupport.h"

namespace rkparam {

// check PATH... [--recursive DIR]... [--format text|json|junit]
int CheckCommand(const Options& options);
// merge BASE OURS THEIRS [-o OUT] [--path P]
int MergeCommand(const Options& options);
// git-setup [REPO]
int GitSetupCommand(const Options& options);
// git-diff PATH OLD-FILE OLD-HEX OLD-MODE NEW-FILE NEW-HEX NEW-MODE, as git calls a diff command
int GitDiffCommand(const Options& options);

}  // namespace rkparam
