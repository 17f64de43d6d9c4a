#pragma once
// The parameters of a project without a display: shown, checked, set, compared, exported and
// imported through the dialogs' pure halves (headless/Page.h), so that a field's rule lives
// in its dialog alone.
//
// The text form (ExportText, ImportText) lists every field as "key = value" in dialog order,
// then the bytes the fields do not give. The fields give an image W: the default image of the
// CPU type (which holds the fixed bytes of the menu's OK) with each dialog's OK applied in
// dialog order with the listed values. Every byte where the image differs from W is listed
// with its value and W's ("bytes 1024..1027 = 01 02 03 04 (fields give 00 FF FF FF)"), except
// the check bytes and the network sum when the image's own bytes give them: the text says
// "computed" for those, and import computes them. Import builds W from the fields read and
// puts the listed bytes over it, which gives the exported image back byte for byte. Where an
// edited field changes W under a listed byte, the field wins and the import says so.

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "common/DialogContext.h"
#include "store/ParameterImage.h"

namespace gantrix::headless {

struct ShownField {
    std::string key;
    std::string value;
};

struct ShownDialog {
    std::string name;   // "memory"
    std::string form;   // "frmMemory"
    std::string title;  // "Memory Capacity Setting"
    std::vector<ShownField> fields;
};

// Every field of every dialog of the CPU type as the dialog shows it when opened on image.
std::vector<ShownDialog> Show(const ParameterImage& image, const DialogContext& context);

// One finding of a check or one reason a change is refused.
struct Violation {
    std::string dialog;  // page name, "menu" for the parameter menu's OK, "file" for the file
    std::string key;     // the field, "" for the dialog as a whole
    int message = -1;    // the dialog's message number; -1 for a finding of this tool
    std::string text;    // the message text as the dialog shows it, or the tool's reason
};

// The text of message number as its box shows it, the lines of a three-line message joined
// by a blank.
std::string MessageText(int number);

// The END positions of the programs (main, sub programs 1..3), as the project's host
// library gives them; all 0 when there is no program.
using EndPositions = std::array<int16_t, 4>;

// Every dialog's check on the stored values, as if each dialog had been opened on image and
// OK pressed; then the parameter menu's OK (END positions, total memory) and the main check
// bytes. In dialog order, each dialog's messages in ascending number.
std::vector<Violation> Check(const ParameterImage& image, const DialogContext& context,
                             const EndPositions& endPositions = {});

struct Assignment {
    std::string key;
    std::string value;
};

struct SetOutcome {
    ParameterImage image;             // the changed image with fresh check bytes
    std::vector<Violation> refusals;  // empty when every change was taken
};

// Types each value into its field: each dialog is opened once, in the order of its first
// key, on the image as the dialogs before it left it; then OK. Any refusal (an unknown key,
// a value the field does not take, a message of a dialog's check or of the menu's OK)
// refuses the whole change.
SetOutcome Set(const ParameterImage& image, const DialogContext& context,
               const std::vector<Assignment>& assignments, const EndPositions& endPositions = {});

std::string ExportText(const ParameterImage& image, const DialogContext& context);

struct ImportOutcome {
    std::optional<ParameterImage> image;  // none when the text cannot be read
    std::string cpu;                      // the CPU type the text names ("" when it names none)
    std::vector<std::string> errors;      // why the text cannot be read, with line numbers
    std::vector<std::string> notes;       // listed bytes an edited field overrode
};

// The CPU type a text form names, "" when none.
std::string CpuOfText(const std::string& text);

ImportOutcome ImportText(const std::string& text, const DialogContext& context);

struct FieldDifference {
    std::string dialog;
    std::string key;
    std::optional<std::string> a;  // none where the CPU type of that side has no such field
    std::optional<std::string> b;
};

struct ByteDifference {
    int first = 0;
    int last = 0;
    std::vector<uint8_t> a;
    std::vector<uint8_t> b;
};

struct Difference {
    std::vector<FieldDifference> fields;
    std::vector<ByteDifference> bytes;  // differing bytes the fields do not account for
    bool differ = false;                // whether the two images differ at all
};

Difference Diff(const ParameterImage& a, const DialogContext& contextA, const ParameterImage& b,
                const DialogContext& contextB);

// Value quoting of the text form: a value is written as it is unless it is empty of meaning
// at its ends (leading or trailing blanks), holds a quote, backslash or control character;
// then it is written in double quotes with backslash escapes.
std::string QuoteValue(const std::string& value);
// The inverse of QuoteValue for the text after "=" (trimmed); nullopt for a broken quote.
std::optional<std::string> UnquoteValue(const std::string& text);

}  // namespace gantrix::headless
