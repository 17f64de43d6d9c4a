#pragma once
// Helpers shared by the tests: temporary projects, scripted message boxes, module states
// set up as a run would set them.

#include <cstdint>
#include <deque>
#include <string>
#include <vector>

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

    // The directory with its trailing "/".
    const std::string& Path() const { return path_; }
    std::string File(const std::string& name) const { return path_ + name; }
    bool Exists(const std::string& name) const;
    std::vector<uint8_t> Read(const std::string& name) const;
    void Write(const std::string& name, const std::vector<uint8_t>& bytes) const;
    void WriteText(const std::string& name, const std::string& text) const;
    // The names of the entries, sorted.
    std::vector<std::string> List() const;

  private:
    std::string path_;
};

// A project made as "rkparam new" makes it.
class TempProject : public TempDir {
  public:
    explicit TempProject(const std::string& cpuType);
    const std::string& Cpu() const { return cpu_; }
    ParameterImage ParamTmp() const;  // the image in "param.tmp"
    void SetParamTmp(const ParameterImage& image) const;

  private:
    std::string cpu_;
};

// The default image of a CPU type (as "param.tmp" of a new project holds it).
ParameterImage DefaultImage(const std::string& cpuType);

// A module state as a run for cpuType sets it up: default image, device sizes, CPU code,
// and the host libraries set up for the CPU type.
ModuleState StateFor(const std::string& cpuType, const std::string& projectDir = "");

// Message boxes answered from a script: each box takes the next queued answer, or, when the
// queue is empty, the box's default button. Every box shown is recorded.
class ScriptedMessages : public MessagePresenter {
  public:
    MessageButton Present(const MessageBoxLook& box) override;

    ScriptedMessages& Then(MessageButton answer) {
        answers.push_back(answer);
        return *this;
    }

    std::deque<MessageButton> answers;
    std::vector<MessageBoxLook> shown;
    // The numbers of the boxes shown, in order.
    std::vector<int> Numbers() const;
};

// The indices at which two images differ.
std::vector<int> DifferingBytes(const ParameterImage& a, const ParameterImage& b);

}  // namespace gantrix::test
