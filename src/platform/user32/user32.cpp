// SPDX-License-Identifier: Apache-2.0
#include "platform/user32/user32.h"

#include <deque>
#include <map>
#include <utility>

namespace {

struct Window {
    User32WndProc proc;
    void* context;
};

struct Posted {
    intptr_t hwnd;
    uint32_t msg;
    uintptr_t wParam;
    intptr_t lParam;
};

std::map<intptr_t, Window>& Windows() {
    static std::map<intptr_t, Window> windows;
    return windows;
}

std::deque<Posted>& Queue() {
    static std::deque<Posted> queue;
    return queue;
}

void (*g_postHook)(void) = nullptr;

}  // namespace

extern "C" void User32RegisterWindow(intptr_t hwnd, User32WndProc proc, void* context) {
    if (proc == nullptr) {
        Windows().erase(hwnd);
    } else {
        Windows()[hwnd] = Window{proc, context};
    }
}

extern "C" intptr_t SendMessageA(intptr_t hwnd, uint32_t msg, uintptr_t wParam, intptr_t lParam) {
    const auto it = Windows().find(hwnd);
    if (it == Windows().end()) return 0;
    const Window window = it->second;  // the procedure may unregister itself
    window.proc(hwnd, msg, wParam, lParam, window.context);
    return 0;
}

extern "C" int32_t PostMessageA(intptr_t hwnd, uint32_t msg, uintptr_t wParam, intptr_t lParam) {
    if (Windows().count(hwnd) == 0) return 0;
    Queue().push_back(Posted{hwnd, msg, wParam, lParam});
    if (g_postHook) g_postHook();
    return 1;
}

extern "C" int32_t User32DispatchPosted(void) {
    int32_t delivered = 0;
    while (!Queue().empty()) {
        const Posted m = Queue().front();
        Queue().pop_front();
        // A window that went away since the post no longer receives it.
        if (Windows().count(m.hwnd) == 0) continue;
        SendMessageA(m.hwnd, m.msg, m.wParam, m.lParam);
        ++delivered;
    }
    return delivered;
}

extern "C" void User32SetPostHook(void (*hook)(void)) {
    g_postHook = hook;
}
