// SPDX-License-Identifier: Apache-2.0
#pragma once
// Temporary projects, scripted message boxes and module states as a run sets them up.

#include <cstdint>
#include <deque>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "common/DialogContext.h"
#include "common/ErrorTables.h"
#include "common/Messages.h"
#include "common/ModuleState.h"
#include "store/ParameterImage.h"

namespace gantrix::test {

// A fresh directory under the system's temporary directory, removed with everything in it.
class TempDir {
  public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    const std::string& Path() const { return path_; }  // with its trailing "/"
    std::string File(const std::string& name) const { return path_ + name; }
    bool Exists(const std::string& name) const { return std::filesystem::exists(path_ + name); }
    std::vector<uint8_t> Read(const std::string& name) const;
    void Write(const std::string& name, const std::vector<uint8_t>& bytes) const;
    void WriteText(const std::string& name, const std::string& text) const {
        std::ofstream(path_ + name) << text;
    }
    std::vector<std::string> List() const;  // the entries' names, sorted
  private:
    std::string path_;
};

// A project made as "rkparam new" makes it.
class TempProject : public TempDir {
  public:
    explicit TempProject(const std::string& cpuType);
    const std::string& Cpu() const { return cpu_; }
    ParameterImage ParamTmp() const;  // the image in "param.tmp"
    void SetParamTmp(const ParameterImage& image) const {
        Write("param.tmp", {image.bytes().begin(), image.bytes().end()});
    }

  private:
    std::string cpu_;
};

// The default image of a CPU type, as "param.tmp" of a new project holds it.
ParameterImage DefaultImage(const std::string& cpuType);

// A module state as a run for cpuType sets it up, the host libraries included.
ModuleState StateFor(const std::string& cpuType, const std::string& projectDir = "");
// The dialog context of a run on cpuType.
DialogContext ContextFor(const std::string& cpuType);

// Records every box; each takes the next queued answer, else its default button.
class ScriptedMessages : public MessagePresenter {
  public:
    MessageButton Present(const MessageBoxLook& box) override;
    ScriptedMessages& Then(MessageButton answer) {
        answers.push_back(answer);
        return *this;
    }
    std::deque<MessageButton> answers;
    std::vector<MessageBoxLook> shown;
    std::vector<int> Numbers() const;  // of the boxes shown, in order
};

std::vector<int> DifferingBytes(const ParameterImage& a, const ParameterImage& b);  // indices

// "message:control ..." of every recorded pair, by message, then control.
std::string RecordedErrors(const ErrorTables& errors);

}  // namespace gantrix::test
