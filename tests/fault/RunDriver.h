#pragma once
// One run of the parameter mode through the C interface, driven as a person who presses OK:
// End on the menu, and OK (or Yes) on every message box that comes, whatever it says.

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace gantrix::test {

struct RunOutcome {
    int status = -1;                 // of RKParam_Param_main
    int16_t result = -1;             // 1 saved
    std::string error;               // RKParam_ErrorDescription
    std::vector<std::string> boxes;  // the texts of the message boxes, in order
    bool menuShown = false;
    bool timedOut = false;

    bool Saved() const { return status == 0 && result == 1; }
    // The error and every box, one per line.
    std::string Messages() const;
};

// Runs Param_main on projectDir; whileMenuOpen runs when the menu first shows, before End.
RunOutcome RunWithOk(const std::string& projectDir, const std::string& cpu,
                     const std::function<void()>& whileMenuOpen = {});

}  // namespace gantrix::test
