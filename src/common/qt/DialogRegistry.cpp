// SPDX-License-Identifier: Apache-2.0
#include "common/qt/DialogRegistry.h"

#include <map>

namespace gantrix {
namespace {

std::map<std::string, DialogOpener>& Registry() {
    static std::map<std::string, DialogOpener> registry;
    return registry;
}

}  // namespace

void RegisterDialog(const std::string& name, DialogOpener opener) {
    Registry()[name] = std::move(opener);
}

bool OpenDialog(const std::string& name, ModuleState& state) {
    const auto it = Registry().find(name);
    if (it == Registry().end()) return false;
    it->second(state);
    return true;
}

bool IsDialogRegistered(const std::string& name) {
    return Registry().count(name) != 0;
}

}  // namespace gantrix
