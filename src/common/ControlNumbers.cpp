// SPDX-License-Identifier: Apache-2.0
#include "common/ControlNumbers.h"

namespace gantrix {
namespace {

// A run of numbers: an array control (indexed) or a single control (count 0).
struct Range {
    std::string_view form;
    std::string_view control;
    int first;  // number of index 0 (or of the single control)
    int count;  // elements of the array; 0 for a single control
};

constexpr Range kRanges[] = {
    {"frmMemory", "Text1", 0, 6},         {"frmMemory", "Text2", 6, 0},
    {"frmMemory", "Text3", 7, 0},         {"frmMemory", "Text4", 8, 0},
    {"frmLatch", "Text1", 9, 24},         {"frmTimerCounter", "Text1", 33, 8},
    {"frmTimerCounter", "Text2", 41, 2},  {"frmTimerCounter", "Text3", 43, 0},
    {"frmTimerCounter", "Combo1", 44, 0}, {"frmTimerCounter", "Combo2", 45, 0},
    {"frmAssistance", "Text1", 46, 2},    {"frmAssistance", "Text2", 48, 2},
    {"frmAssistance", "Text3", 50, 0},    {"frmRemote", "Text1", 51, 0},
    {"frmRemote", "Text2", 52, 28},       {"frmMINI", "Text1", 80, 0},
    {"frmMINI", "Text2", 81, 88},
};

// Splits "Text1(3)" into "Text1" and 3; a name without an index gives -1.
std::pair<std::string_view, int> Split(std::string_view control) {
    const auto open = control.find('(');
    if (open == std::string_view::npos || control.back() != ')') return {control, -1};
    int index = 0;
    const std::string_view digits = control.substr(open + 1, control.size() - open - 2);
    if (digits.empty()) return {control, -2};
    for (char c : digits) {
        if (c < '0' || c > '9') return {control, -2};
        index = index * 10 + (c - '0');
    }
    return {control.substr(0, open), index};
}

}  // namespace

int GetControlNo(std::string_view form, std::string_view control) {
    const auto [name, index] = Split(control);
    for (const Range& range : kRanges) {
        if (range.form != form || range.control != name) continue;
        if (range.count == 0) return index == -1 ? range.first : 0;
        return index >= 0 && index < range.count ? range.first + index : 0;
    }
    return 0;
}

ControlName ControlNameOf(int number) {
    for (const Range& range : kRanges) {
        if (range.count == 0 && number == range.first) {
            return {std::string(range.form), std::string(range.control)};
        }
        if (range.count > 0 && number >= range.first && number < range.first + range.count) {
            return {std::string(range.form),
                    std::string(range.control) + "(" + std::to_string(number - range.first) + ")"};
        }
    }
    return {};
}

}  // namespace gantrix
