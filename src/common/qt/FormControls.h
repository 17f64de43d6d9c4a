// SPDX-License-Identifier: Apache-2.0
#pragma once
// Small bridges between the pure input routines and Qt widgets.

#include <QString>
#include <initializer_list>
#include <string>

class QKeyEvent;
class QLineEdit;
class QWidget;

namespace gantrix {

inline QString Q(const std::string& text) {
    return QString::fromStdString(text);
}

// The string table's text of id, for a caption.
QString ResText(int id);

// What a screen reader reads for a field: its name, built from the captions that the window
// shows beside it (frame, row, column), and its range when it has one. name and range are
// kept as given; a spin button's arrows are named after it ("<name>, up" / "<name>, down"),
// and an editable combo box's text box takes the combo box's name.
void NameField(QWidget* field, const QString& name, const QString& range = {});

// Captions joined into one field name with ", ": blanks and line breaks inside a caption
// become single blanks and empty captions are left out ("Number of Points (Multiples of 16)",
// " No." + "3" -> "No. 3").
QString FieldName(std::initializer_list<QString> captions);

// A range as a screen reader reads it: "0 to 2047".
QString RangeText(const QString& low, const QString& high);
QString RangeText(long low, long high);

// The range a caption such as " (0-8) " or "(1 to 200)" shows, read out: "0 to 8"; the
// caption's text itself (blanks trimmed) when it is no such pair.
QString RangeOfCaption(const QString& caption);

// The character code a key press delivers: Enter 13, Backspace 8, a typed character as its
// code point (letters outside ASCII too, so that the filters refuse them rather than let them
// through unseen), control characters; -1 for a key that delivers none (arrows, function keys).
int KeyAsciiOf(const QKeyEvent* event);

// CheckDecimalText / CheckHexText on a line edit; the text is set only when it changes, so
// a clean text does not raise a second change.
void CheckDecimalText(QLineEdit* box);
void CheckHexText(QLineEdit* box);

// Limits what the user types or pastes into box to maxLength characters. Text set by code
// is never cut, so a stored value too long for its box shows whole and the dialog's check
// refuses it; such a text may still be shortened. Use this instead of setMaxLength, which
// cuts loaded text too.
void LimitTyping(QLineEdit* box, int maxLength);

// The decimal value of a line edit's text (blanks skipped, empty is 0).
long ValueOf(const QLineEdit* box);

// The global control number of a widget, from its form's and its own object names; -1 when
// it has none.
int ControlNumberOf(const QWidget* widget);

// Paints the live control with that number yellow (red 255, green 255, blue 0).
void SetErrorColor(int number);

// Gives a control the system window-background colour again.
void ResetErrorColor(QWidget* control);

// Whether a control is painted as an error (for tests and for the dialogs' own checks).
bool HasErrorColor(const QWidget* control);

// The live control of a number, or nullptr.
QWidget* ControlOfNumber(int number);

// Makes a control known under its number (done by DialogBase for its numbered controls).
void RegisterNumberedControl(QWidget* control);

}  // namespace gantrix
