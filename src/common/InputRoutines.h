// SPDX-License-Identifier: Apache-2.0
#pragma once
// Key filters and text clean-up shared by the dialogs' input fields.

#include <string>

namespace gantrix {

// A text box's text and caret (SelStart), for the routines that clean a box in place.
struct TextBoxState {
    std::string text;
    int caret = 0;
};

// 2 for Enter (13); 1 for "0".."9" and control characters below 32; 0 for anything else
// (the caller discards the key).
int CheckDecimalKey(int keyAscii);

// Trims the box; any character other than a digit or blank empties it; then leading zeros
// go (CutLeadingZero). The caret goes back where it was, within the new text.
void CheckDecimalText(TextBoxState& box);

// The text from its first character that is not "0"; texts shorter than two characters are
// kept, and a text of two or more zeros gives "".
std::string CutLeadingZero(const std::string& text);

// Trims and upper-cases the box; any character other than 0-9, A-F or blank empties it.
void CheckHexText(TextBoxState& box);

// Left-fills with zeros to four characters; "" for an empty text or one longer than four.
std::string PadZero4(const std::string& text);

// d1 x 4096 + d2 x 256 + d3 x 16 + d4 for the first four characters; a character that is
// not a hexadecimal digit, and a missing position of a shorter text, counts 0. Callers pass
// texts cleaned by CheckHexText and padded by PadZero4.
long HexToValue(const std::string& text);

// Leading and trailing blanks removed (blanks only: tabs and other white space stay).
std::string Trim(const std::string& text);
// Whether text holds nothing but blanks.
bool IsBlank(const std::string& text);

// Decimal value of a field: blanks are skipped, digits are
// read up to the first other character; an empty text is 0.
long ValueOf(const std::string& text);

}  // namespace gantrix
