// SPDX-License-Identifier: Apache-2.0
#include "common/qt/SpinButton.h"

#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>

namespace gantrix {

SpinButton::SpinButton(QWidget* parent) : QWidget(parent) {
    setFocusPolicy(Qt::NoFocus);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    up_ = new QToolButton(this);
    down_ = new QToolButton(this);
    for (QToolButton* button : {up_, down_}) {
        button->setFocusPolicy(Qt::NoFocus);
        button->setAutoRepeat(true);
        button->setFixedSize(16, 11);
        layout->addWidget(button);
    }
    up_->setArrowType(Qt::UpArrow);
    down_->setArrowType(Qt::DownArrow);
    for (QToolButton* button : {up_, down_}) {
        connect(button, &QToolButton::pressed, this, [this] {
            if (textBox_ && textBox_->isEnabled()) textBox_->setFocus(Qt::OtherFocusReason);
        });
    }
    connect(up_, &QToolButton::clicked, this, &SpinButton::StepUp);
    connect(down_, &QToolButton::clicked, this, &SpinButton::StepDown);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

int SpinButton::Clamp(int value) const {
    return std::clamp(value, std::min(min_, max_), std::max(min_, max_));
}

void SpinButton::SetMin(int min) {
    SetRange(min, max_);
}
void SpinButton::SetMax(int max) {
    SetRange(min_, max);
}

void SpinButton::SetRange(int min, int max) {
    min_ = min;
    max_ = max;
    Move(value_);
}

void SpinButton::SetValue(int value) {
    // A value beyond the arrows' range (a stored value out of its limits, mirrored from the
    // text box) leaves the text box as it is: the arrows only sit at their nearest end.
    if (value != Clamp(value)) {
        value_ = Clamp(value);
        return;
    }
    Move(value);
}

void SpinButton::Move(int value) {
    value = Clamp(value);
    if (value == value_) return;
    value_ = value;
    emit Change(value_);
}

void SpinButton::StepUp() {
    Move(min_ >= max_ ? value_ + smallChange_ : value_ - smallChange_);
}

void SpinButton::StepDown() {
    Move(min_ >= max_ ? value_ - smallChange_ : value_ + smallChange_);
}

}  // namespace gantrix
