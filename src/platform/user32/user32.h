// SPDX-License-Identifier: Apache-2.0
#pragma once
// Stand-in for the two window-message calls the component makes to its host. A host
// registers a window procedure for its handle; a message to a handle nobody registered is
// dropped, as one to an invalid window would be.
//
// SendMessageA calls the procedure at once. PostMessageA queues the message; it is delivered
// by User32DispatchPosted, which the Qt layer runs from its event loop (User32SetPostHook
// tells it that something was queued).

#include <cstdint>

extern "C" {

enum : uint32_t { WM_COMMAND = 0x0111 };

typedef void (*User32WndProc)(intptr_t hwnd, uint32_t msg, uintptr_t wParam, intptr_t lParam,
                              void* context);

// Registers (or, with proc == nullptr, removes) the window procedure of a handle.
void User32RegisterWindow(intptr_t hwnd, User32WndProc proc, void* context);

// Delivers the message now. Returns 0 (the procedures here return nothing).
intptr_t SendMessageA(intptr_t hwnd, uint32_t msg, uintptr_t wParam, intptr_t lParam);

// Queues the message. Returns 1 when queued, 0 when the handle has no procedure.
int32_t PostMessageA(intptr_t hwnd, uint32_t msg, uintptr_t wParam, intptr_t lParam);

// Delivers every queued message in the order posted; returns how many were delivered.
int32_t User32DispatchPosted(void);

// Called after each successful PostMessageA, so that an event loop can schedule delivery.
void User32SetPostHook(void (*hook)(void));

}  // extern "C"
