// SPDX-License-Identifier: Apache-2.0
#pragma once
// Supplementary functions: step relays carved out of the internal relays, the RUN and PAUSE
// contacts, the output mode at STOP to RUN, the operating mode at four kinds of error, the
// watchdog, END batch processing, "With Comment" and the I/O control method.
//
// Image bytes (words 16-bit little endian):
//   14-15    first number after the step relays (extended types; 65535 reads as 2048)
//   18-19    end of the latch relays L = first step relay - 1 (also the end of latch row L)
//   140      END batch process: 255 yes, 0 no (A2U A3U A4U)
//   160-161  watchdog in 10 ms units (fixed at 20 on the extended types)
//   163 164 165 169   I/O verify error, fuse blown, function module error, operation error:
//                     0 continue, 1 stop
//   170      contacts in use: 0 none, 1 RUN, 2 RUN and PAUSE
//   172-173, 174  PAUSE contact word and bit mask     176-177, 178  RUN contact
//   180      output mode at STOP to RUN: 0 before operation, 1 after one scan
//   181      I/O control X/Y: 255 direct/direct, 15 refresh/direct, 240 direct/refresh,
//            0 refresh/refresh (A3H; fixed at 255 on the extended types)
//   208      "With Comment": 1 yes, 0 no (A3 A3H A3A A3U A4U)

#include <array>
#include <string>

#include "common/DialogContext.h"
#include "common/ErrorTables.h"
#include "store/ParameterImage.h"

namespace gantrix {

// The controls' contents. Option groups hold the index of the selected option; a new dialog
// shows the values of Clear until the image says otherwise.
struct AssistanceFields {
    bool StepRelayFlag = false;
    std::array<std::string, 2> Text1;  // first and (extended types) last step relay
    std::array<std::string, 2> Text2;  // RUN and PAUSE contact, hexadecimal X numbers
    int OutputMode = 0;                // 0 before operation, 1 after one scan
    int FuseCut = 0;                   // the four error modes: 0 continue, 1 stop
    int CalcErr = 0;
    int IOErr = 1;
    int ActErr = 1;
    std::string Text3;  // watchdog
    bool EndManageFlag = false;
    bool CommentFlag = false;
    int XYControl = 0;  // 0..3 as the I/O control bytes 255, 15, 240, 0

    bool operator==(const AssistanceFields&) const = default;
};

// What the dialog shows for a CPU type.
struct AssistanceLayout {
    bool extended = false;    // A2A A3A A2U A3U A4U: S as a range (Text1(1)), fixed watchdog
    bool watchdog = false;    // Text3 (A0H A1S A1 A2C A2 A3; the A3H has neither)
    bool xyControl = false;   // XYControl
    bool comment = false;     // CommentFlag
    bool endManage = false;   // EndManageFlag
    int hint = 0;             // string id of the hint
    std::string followOn;     // dialog AssistMenuItem opens; "" for none
    int followOnCaption = 0;  // string id of AssistMenuItem's caption
};
AssistanceLayout AssistanceLayoutOf(const std::string& cpuType);

// A contact as stored: the X number's word and bit mask.
struct ContactCode {
    int word = kErased;
    int mask = 255;
    bool operator==(const ContactCode&) const = default;
};
// text: an X number in hexadecimal, at most four digits, or the six digits DecodeContact
// shows for bytes no X number gives, which come back as they were.
ContactCode EncodeContact(const std::string& text);
// The X number of a stored contact. Bytes no X number gives (a word below X0's 32768 or odd, a
// mask that names no single bit) show as the word and the mask in six hexadecimal digits: no
// X number has that many, so the check refuses the box and the user decides what it holds.
std::string DecodeContact(int word, int mask);

// The lowest first step relay: the first latch relay (word 16), 0 when L is not latched.
int FirstStepRelayLimit(const ParameterImage& image);

// What unticking StepRelayFlag does: the step relay boxes are emptied (and, in the form,
// greyed out until the box is ticked again).
void ApplyStepRelayFlag(AssistanceFields& fields);

AssistanceFields ReadAssistance(const ParameterImage& image, const DialogContext& context);

// The module's field checks. CheckAssistanceField: empty records 2, out of min..max 3.
// CheckAssistanceRange: out of min..max records 3, an empty text counting as 0. Both return
// true when the text passes.
bool CheckAssistanceField(ErrorTables& errors, int control, const std::string& text, long min,
                          long max);
bool CheckAssistanceRange(ErrorTables& errors, int control, const std::string& text, long min,
                          long max);

// CheckAssistanceSettings without the reporting; image gives the first latch relay.
ErrorTables ValidateAssistance(const AssistanceFields& fields, const ParameterImage& image,
                               const DialogContext& context);

// The bytes SaveAssistanceSettings writes.
void WriteAssistance(const AssistanceFields& fields, ParameterImage& image,
                     const DialogContext& context);

// The fields after Clear (SetDefaltOfAssistance); controls the CPU type does not show keep
// what they hold.
AssistanceFields DefaultsAssistance(const AssistanceFields& current, const DialogContext& context);

}  // namespace gantrix
