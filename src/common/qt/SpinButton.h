// SPDX-License-Identifier: Apache-2.0
#pragma once
// A pair of up/down arrows beside a text box, with the semantics of a vertical scroll bar: Min is
// the value at the top, Max the value at the bottom, and Min may be above Max. The up arrow moves
// Value toward Min, the down arrow toward Max, by SmallChange. Change is emitted whenever Value
// changes, by the arrows or by code.
//
// The widget never keeps the focus: pressing an arrow gives it to the text box it belongs
// to, so that the box's focus rules run and Enter goes on from there.

#include <QWidget>

class QToolButton;

namespace gantrix {

class SpinButton : public QWidget {
    Q_OBJECT

  public:
    explicit SpinButton(QWidget* parent = nullptr);

    int Min() const { return min_; }
    int Max() const { return max_; }
    int Value() const { return value_; }
    int SmallChange() const { return smallChange_; }

    // Changing a bound brings Value back within the new range (emitting Change if it moves).
    void SetMin(int min);
    void SetMax(int max);
    void SetRange(int min, int max);
    // A value outside the range puts Value at the nearest end without emitting Change, so
    // that the text box mirroring it keeps the value it shows.
    void SetValue(int value);
    void SetSmallChange(int step) { smallChange_ = step; }

    QWidget* TextBox() const { return textBox_; }
    void SetTextBox(QWidget* box) { textBox_ = box; }

    QToolButton* UpButton() const { return up_; }
    QToolButton* DownButton() const { return down_; }

  signals:
    void Change(int value);

  private:
    void StepUp();    // the up arrow
    void StepDown();  // the down arrow
    int Clamp(int value) const;
    void Move(int value);  // clamps, and emits Change when Value moves

    int min_ = 0;
    int max_ = 32767;
    int value_ = 0;
    int smallChange_ = 1;
    QToolButton* up_;
    QToolButton* down_;
    QWidget* textBox_ = nullptr;
};

}  // namespace gantrix
