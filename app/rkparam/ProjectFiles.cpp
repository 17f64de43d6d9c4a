#include "ProjectFiles.h"

#include <sys/stat.h>

#include <cstdint>
#include <vector>

#include "store/ParameterFiles.h"

namespace rkparam {

std::string WithSeparator(std::string dir) {
    if (!dir.empty() && dir.back() != '/') dir += '/';
    return dir;
}

std::string ReadCpuNote(const std::string& dir) {
    const std::string path = WithSeparator(dir) + kCpuFile;
    struct stat info {};
    if (::lstat(path.c_str(), &info) != 0) return "";
    const std::vector<uint8_t> bytes = gantrix::ReadWholeFile(path);
    std::string text(bytes.begin(), bytes.end());
    return text.substr(0, text.find('\n'));
}

}  // namespace rkparam
