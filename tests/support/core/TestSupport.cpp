// SPDX-License-Identifier: Apache-2.0
#include "support/core/TestSupport.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "platform/rkcmnt/DefaultImage.h"
#include "platform/rkcmnt/DeviceTable.h"
#include "platform/rkcmnt/rkcmnt.h"
#include "store/Project.h"

namespace gantrix::test {

namespace fs = std::filesystem;

TempDir::TempDir() {
    std::string pattern = (fs::temp_directory_path() / "gantrix-test-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
    path_ = pattern + "/";
}

TempDir::~TempDir() {
    std::error_code ignored;  // a directory a test made unwritable is removed all the same
    fs::permissions(path_, fs::perms::owner_all, fs::perm_options::add, ignored);
    fs::remove_all(path_, ignored);
}

std::vector<uint8_t> TempDir::Read(const std::string& name) const {
    std::ifstream in(path_ + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void TempDir::Write(const std::string& name, const std::vector<uint8_t>& bytes) const {
    std::ofstream out(path_ + name, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(bytes.data()),
              static_cast<std::streamsize>(bytes.size()));
}

std::vector<std::string> TempDir::List() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(path_))
        names.push_back(entry.path().filename());
    std::sort(names.begin(), names.end());
    return names;
}

TempProject::TempProject(const std::string& cpuType) : cpu_(cpuType) {
    CreateProject(cpuType, Path(), false);
}

ParameterImage TempProject::ParamTmp() const {
    const auto bytes = Read("param.tmp");
    if (bytes.size() != kImageSize) throw std::runtime_error("param.tmp is not 3072 bytes");
    ParameterImage image;
    std::copy(bytes.begin(), bytes.end(), image.bytes().begin());
    return image;
}

ParameterImage DefaultImage(const std::string& cpuType) {
    ParameterImage image;
    if (!platform::BuildDefaultImage(cpuType, image.data()))
        throw std::runtime_error("no default image for \"" + cpuType + "\"");
    return image;
}

ModuleState StateFor(const std::string& cpuType, const std::string& projectDir) {
    ModuleState state;
    state.CpuType = cpuType;
    state.CpuCode = CpuCodeOf(cpuType);
    state.ProjectDir = projectDir;
    std::string dir = projectDir, cpu = cpuType;
    RkSetupGlobal(dir.data(), cpu.data(), state.CpuCode, nullptr);
    if (const auto* sizes = platform::FindDeviceSizes(cpuType)) {
        state.image = DefaultImage(cpuType);
        for (char letter : DeviceMaxSizes::kLetters)
            state.DeviceMaxSize[letter] = static_cast<int16_t>(*sizes->Of(letter));
    }
    return state;
}

DialogContext ContextFor(const std::string& cpuType) {
    return ContextOf(StateFor(cpuType));
}

MessageButton ScriptedMessages::Present(const MessageBoxLook& box) {
    shown.push_back(box);
    if (answers.empty()) {
        return box.style == kStyleYesNoNoDefault    ? MessageButton::No
               : box.style == kStyleYesNoYesDefault ? MessageButton::Yes
                                                    : MessageButton::Ok;
    }
    const MessageButton answer = answers.front();
    answers.pop_front();
    return answer;
}

std::vector<int> ScriptedMessages::Numbers() const {
    std::vector<int> numbers;
    for (const auto& box : shown) numbers.push_back(box.number);
    return numbers;
}

std::vector<int> DifferingBytes(const ParameterImage& a, const ParameterImage& b) {
    std::vector<int> indices;
    for (int i = 0; i < kImageSize; ++i)
        if (a[i] != b[i]) indices.push_back(i);
    return indices;
}

std::string RecordedErrors(const ErrorTables& errors) {
    std::string text;
    for (int m = 0; m <= kMaxMessageNo; ++m)
        for (int c = 0; c <= kMaxControlNo; ++c)
            if (errors.ControlErrorFlags[c][m])
                text += (text.empty() ? "" : " ") + std::to_string(m) + ":" + std::to_string(c);
    return text;
}

}  // namespace gantrix::test
