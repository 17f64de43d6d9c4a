// SPDX-License-Identifier: Apache-2.0
#pragma once
// The subcommands that read, check and change a project's parameters without a display:
// show, check, set, diff, export and import.

#include <functional>

namespace CLI {
class App;
}

namespace rkparam {

// Adds the subcommands to app. The function returned runs, once app has parsed the command
// line, the subcommand given and returns its exit status; -1 when none of them was given.
std::function<int()> AddHeadlessCommands(CLI::App& app);

}  // namespace rkparam
