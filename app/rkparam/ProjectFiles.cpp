// SPDX-License-Identifier: Apache-2.0
#include "ProjectFiles.h"

#include "store/ProjectAccess.h"

namespace rkparam {

std::string WithSeparator(std::string dir) {
    if (!dir.empty() && dir.back() != '/') dir += '/';
    return dir;
}

std::string ReadCpuNote(const std::string& dir) {
    const auto text = gantrix::ReadProjectNote(WithSeparator(dir), kCpuFile);
    if (!text) return "";
    // "A3 \n" as new writes it; a CR of an editor goes too, other characters stay to be named.
    std::string code = text->substr(0, text->find('\n'));
    if (!code.empty() && code.back() == '\r') code.pop_back();
    return code;
}

}  // namespace rkparam
