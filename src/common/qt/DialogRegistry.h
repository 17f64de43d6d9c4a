// SPDX-License-Identifier: Apache-2.0
#pragma once
// The windows the menus open, by name. Each dialog joins when it is built into the
// component (DialogRegistrar in its own source file); an item whose dialog has not joined
// does nothing.

#include <functional>
#include <string>

#include "common/ModuleState.h"

namespace gantrix {

// Shows the dialog modally; returns when it has closed.
using DialogOpener = std::function<void(ModuleState&)>;

void RegisterDialog(const std::string& name, DialogOpener opener);

// Opens the named dialog; false (and nothing shown) when none is registered under it.
bool OpenDialog(const std::string& name, ModuleState& state);

bool IsDialogRegistered(const std::string& name);

struct DialogRegistrar {
    DialogRegistrar(const char* name, DialogOpener opener) {
        RegisterDialog(name, std::move(opener));
    }
};

}  // namespace gantrix
