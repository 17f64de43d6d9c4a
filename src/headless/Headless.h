// SPDX-License-Identifier: Apache-2.0
#pragma once
// The parameters of a project without a display: shown, checked, set, compared, exported and
// imported through the dialogs' pure halves (headless/Page.h), so that a field's rule lives
// in its dialog alone.
//
// The text form (ExportText, ImportText) lists every field as "key = value" in dialog order,
// then the bytes the fields do not give. The fields give an image W: the default image of the
// CPU type (which holds the fixed bytes of the menu's OK) with each dialog opened on it in
// turn, the listed values typed into its fields as set types them, and its OK applied. Every
// byte where the image differs from W is listed with its value and W's ("bytes 1024..1027 =
// 01 02 03 04 (fields give 00 FF FF FF)"), except the check bytes and the network sum when
// the image's own bytes give them: the text says "computed" for those, and import computes
// them. Import builds W from the fields read and puts the listed bytes over it, which gives
// the exported image back byte for byte. Where an edited field changes W under a listed
// byte, the field wins and the import says so.
//
// Set and import save nothing their dialogs would refuse: each dialog takes the values as it
// takes them typed, runs its check and its write, the parameter menu's OK runs its checks,
// and then the whole check runs on the result; a finding it did not have before refuses the
// change (findings it had already are warnings).

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
    // The buttons that fill the fields with what they show (the fixed latch patterns of the
    // smallest CPU type, whose boxes take nothing typed).
    std::vector<ShownField> actions = {};
};

// Every field of every dialog of the CPU type as the dialog shows it when opened on image.
std::vector<ShownDialog> Show(const ParameterImage& image, const DialogContext& context);

// One finding of a check or one reason a change is refused.
struct Violation {
    std::string dialog;  // page name, "menu" for the parameter menu's OK, "file" for the file
    std::string key;     // the field, "" for the dialog as a whole
    int message = -1;    // the dialog's message number; -1 for a finding of this tool
    std::string text;    // the message text as the dialog shows it, or the tool's reason
    int line = 0;        // the line of the text form it is about; 0 for none
};

// "line 12: [latch] latch.D.start: The device No. is out of range."
std::string Describe(const Violation& violation);

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
    ParameterImage image;                  // the changed image with fresh check bytes
    std::vector<Violation> refusals;       // empty when every change was taken
    std::vector<Violation> warnings = {};  // findings of the whole check the image had before
};

// Types each value into its field: each dialog is opened once, in the order of its first
// key, on the image as the dialogs before it left it; then OK. Any refusal (an unknown key,
// a value the field does not take, a message of a dialog's check or of the menu's OK, a
// finding of the whole check the image did not have) refuses the whole change.
SetOutcome Set(const ParameterImage& image, const DialogContext& context,
               const std::vector<Assignment>& assignments, const EndPositions& endPositions = {});

// The whole check of an image after a change, set against the image before it: the findings
// it did not have refuse the change, those it had already are kept as warnings. Findings are
// the same when dialog, key and message are.
struct Findings {
    std::vector<Violation> added;
    std::vector<Violation> kept;
};
Findings CompareChecks(const ParameterImage& before, const ParameterImage& after,
                       const DialogContext& context, const EndPositions& endPositions);

std::string ExportText(const ParameterImage& image, const DialogContext& context);

// The text form read line by line, strictly: "key = value" lines, "[name] title" headers,
// comments, and "bytes FIRST..LAST = hh .. (fields give hh ..)" lines with decimal indexes
// 0..3071 in ascending ranges that do not overlap, two hexadecimal digits per byte. A UTF-8
// byte-order mark and CR line ends are taken; a control character is not.
struct TextField {
    std::string key;
    std::string value;
    int line = 0;
};
struct TextBytes {
    int first = 0;
    int last = 0;
    std::vector<uint8_t> value;
    std::vector<uint8_t> fieldsGive;
    int line = 0;
};
struct ParsedText {
    std::string cpu;  // "" when the text names none
    bool checkBytesComputed = true;
    bool networkSumComputed = true;
    std::vector<TextField> fields;
    std::vector<TextBytes> bytes;
    std::vector<Violation> errors;  // the first ones, with their lines
    size_t unlisted = 0;            // errors beyond those
};
ParsedText ParseText(const std::string& text);

// The CPU type a text form names, "" when none.
std::string CpuOfText(const std::string& text);

// W of the text form: the default image of the CPU type, then each dialog opened on it in
// turn with the values typed as set types them (a value equal to what the field shows is
// left as it is; the buttons are pressed), its check and its write. Every field the dialog
// shows must be given, and must show the value given once the dialog's lines are typed.
// Refusals name the line; a dialog refused keeps its bytes of the default image.
struct FieldsImage {
    ParameterImage image;
    std::vector<Violation> refusals;
};
FieldsImage TypeFields(const std::vector<TextField>& fields, const DialogContext& context);

// The listed bytes put over W where W gives what the text says the fields give; notes name
// the ranges where an edited field won.
std::vector<std::string> PutListedBytes(const std::vector<TextBytes>& bytes, ParameterImage& image);

struct ImportOutcome {
    std::optional<ParameterImage> image;  // none when refused
    std::vector<Violation> refusals;      // the text's errors, the dialogs' and the checks'
    size_t unlisted = 0;                  // refusals beyond those listed
    std::vector<Violation> warnings;      // findings the image before had already
    std::vector<std::string> notes;       // listed bytes an edited field overrode
};

// The parameters of text for a project whose image is before: read, typed, the listed bytes
// and sums, the menu's OK and the whole check, as set.
ImportOutcome ImportText(const std::string& text, const ParameterImage& before,
                         const DialogContext& context, const EndPositions& endPositions = {});

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
