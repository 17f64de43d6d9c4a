#pragma once
// The monkey: seeded random sessions of the parameter mode through the C interface.
//
// A session makes a project for one CPU type (sometimes with END positions of its programs,
// sometimes with a sub program open in the host) and runs the parameter mode on it one to
// three times. In each run the monkey presses menu items, sends random keys and clicks to
// whatever modal window is active (nested dialogs included), answers every message box with
// a random button and leaves the menu with OK or Cancel. It knows no dialog by name: a
// dialog that joins the menu or opens from a dialog's button is walked as it appears.
// After every run it checks:
//   - a run that did not save, and any run left with Cancel before the menu's OK, leaves
//     "param.tmp" byte-identical and the host's change flag as it was; a save sets the flag;
//     no working file stays behind;
//   - a saved file, opened again and taken through every dialog with OK and no edit, does
//     not change by a byte;
//   - a dialog's OK either closes it or shows a message;
//   - no window stops answering, no runtime error reaches the host or the user.
// Everything it does comes from a random stream seeded by (seed, session index), so one
// seed and one index replay a session exactly.

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace gantrix::monkey {

// splitmix64: small, fast, and the same on every platform and standard library.
class Random {
  public:
    Random(uint64_t seed, uint64_t session);
    uint64_t Next();
    int Below(int n);  // 0..n-1
    bool Chance(int percent) { return Below(100) < percent; }

  private:
    uint64_t state_;
};

// What a session did, for the report and for a replay.
struct SessionLog {
    uint64_t seed = 0;
    int index = 0;
    std::string cpu;
    bool verbose = false;  // print every event as it happens (replay)
    std::vector<std::string> events;
    std::vector<std::string> failures;
    int actions = 0;                     // keys, clicks and answers sent
    int messages = 0;                    // message boxes answered
    std::map<std::string, int> windows;  // windows shown, by name

    void Event(const std::string& text);  // an action sent to a window
    void Note(const std::string& text);   // what happened, between the actions
    void Fail(const std::string& text);
    bool Failed() const { return !failures.empty(); }
};

// Runs session index of seed on a fresh project; everything it did and found is in the log.
void RunSession(SessionLog& log);

// The thirteen CPU types; session index i uses kCpuTypes[i % 13].
extern const std::vector<std::string> kCpuTypes;

// Called at every step of the driver; the watchdog of the test's main watches it.
void SetHeartbeat(std::function<void()> beat);

}  // namespace gantrix::monkey
