// SPDX-License-Identifier: Apache-2.0
#pragma once
// Module model names of the slots 0..63: the 40-symbol alphabet, the packed 6-byte record
// each name has in the parameter image, the model names offered per slot code, and the
// clean-up of a typed name.
//
// Packed record of slot n at image 640 + 6n: the name, upper-cased and padded with blanks
// to nine symbols c1..c9, becomes w1 = (c1*40 + c2)*40 + c3, w2 from c4..c6, w3 from c7..c9,
// stored low byte first as w3, w2, w1. An empty name is nine blanks: C4 E6 three times.

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "common/InputRoutines.h"

namespace gantrix {

inline constexpr int kModelNameLength = 9;
inline constexpr int kModelNameRecordSize = 6;
inline constexpr int kNamesPerPage = 8;
inline constexpr int kLastNamePageStart = 56;

using ModelNameRecord = std::array<uint8_t, kModelNameRecordSize>;

// The symbol code of a character: "0".."9" 0..9, "A".."Z" 10..35, blank 36, "-" 37; -1 for
// any other character (lower case included: names are upper-cased before they are coded).
int ModelNameSymbol(char c);

// Packs at most the first nine characters of name. A character outside the alphabet (which
// the name box never lets through) is packed as a blank.
ModelNameRecord PackModelName(const std::string& name);

// The name of a record; a record whose bytes 0, 2 and 4 are all 255 (erased) is empty.
std::string UnpackModelName(const ModelNameRecord& record);

// The model names offered for a slot code, in the order the list shows them; empty for a
// code without models ("S0".."S64", "X48", "Y48", "F16", "").
const std::vector<std::string>& ModelNamesFor(const std::string& slotCode);

// Whether a key may be typed into a name box whose slot has a code: the symbols of the
// alphabet in either case, and control characters (Backspace, the clipboard shortcuts).
bool IsModelNameKey(int keyAscii);

// The name box clean-up: upper-cased, characters outside the alphabet dropped, cut to nine
// characters; the caret stays after the same kept characters it followed.
void FilterModelName(TextBoxState& box);

// The first slot of the page before or after the page starting at start; the pages stop at
// slot 0 and slot 56 rather than wrap, so that Page Down held down ends on the last page.
int NextNamePageStart(int start, bool forward);

}  // namespace gantrix
