// SPDX-License-Identifier: Apache-2.0
#include "common/qt/DialogBase.h"

#include <algorithm>

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>

#include "common/Messages.h"
#include "common/StringTable.h"
#include "common/qt/FormControls.h"
#include "common/qt/SpinButton.h"

namespace gantrix {

DialogBase::DialogBase(ModuleState& state, const QString& formName)
    : FormBase(state, formName), loaded_(state.image) {}

bool& DialogBase::DataChangedFlag() {
    return State().DataChanged;
}

void DialogBase::FinishLoad() {
    DataChangedFlag() = false;
    loaded_ = State().image;
    for (QWidget* child : findChildren<QWidget*>()) RegisterNumberedControl(child);
    // A spin button VScrollN or VScrollN(i) belongs to the text box TextN or TextN(i).
    static const QRegularExpression spinName(R"(^VScroll(\d+(\(\d+\))?)$)");
    for (SpinButton* spin : findChildren<SpinButton*>()) {
        const QRegularExpressionMatch match = spinName.match(spin->objectName());
        if (spin->TextBox() || !match.hasMatch()) continue;
        spin->SetTextBox(findChild<QLineEdit*>("Text" + match.captured(1)));
    }
    for (QPushButton* button : findChildren<QPushButton*>()) {
        // Enter presses the focused button (FormBase), never a dialog default.
        button->setAutoDefault(false);
        button->setDefault(false);
    }
    // Tab walks the fields in the same order as Enter and the arrow keys, then the dialog's
    // other buttons in the order they were made, then OK, Cancel and Clear.
    std::vector<QWidget*> chain = order_;
    const auto chained = [&chain](QWidget* w) {
        return std::find(chain.begin(), chain.end(), w) != chain.end();
    };
    for (QPushButton* button : findChildren<QPushButton*>()) {
        if (button != ok_ && button != cancel_ && button != clear_ && !chained(button)) {
            chain.push_back(button);
        }
    }
    for (QPushButton* button : {ok_, cancel_, clear_}) {
        if (button) chain.push_back(button);
    }
    for (size_t i = 1; i < chain.size(); ++i) QWidget::setTabOrder(chain[i - 1], chain[i]);
    for (QWidget* field : order_) {
        if (field->isEnabled() && !field->isHidden()) {
            field->setFocus();
            break;
        }
    }
}

void DialogBase::SetFieldOrder(std::vector<QWidget*> order) {
    order_ = std::move(order);
}

void DialogBase::SetButtons(QPushButton* ok, QPushButton* cancel, QPushButton* clear) {
    ok_ = ok;
    cancel_ = cancel;
    clear_ = clear;
    if (ok_) connect(ok_, &QPushButton::clicked, this, [this] { Guard([this] { OK_Click(); }); });
    if (cancel_) {
        connect(cancel_, &QPushButton::clicked, this,
                [this] { Guard([this] { Cancel_Click(); }); });
    }
    if (clear_) {
        connect(clear_, &QPushButton::clicked, this, [this] { Guard([this] { Clear_Click(); }); });
    }
}

void DialogBase::MakeStandardButtons(QPushButton*& ok, QPushButton*& cancel, QPushButton** clear) {
    const auto make = [this](int caption, const char* name) {
        auto* button = new QPushButton(ResText(caption), this);
        button->setObjectName(name);
        return button;
    };
    ok = make(ids::OK, "OK");
    cancel = make(ids::Cancel, "Cancel");
    if (clear) *clear = make(ids::Clear, "Clear");
    SetButtons(ok, cancel, clear ? *clear : nullptr);
}

QHBoxLayout* DialogBase::StandardButtonRow() {
    auto* row = new QHBoxLayout;
    row->addStretch();
    for (QPushButton* button : {ok_, cancel_, clear_}) {
        if (button) row->addWidget(button);
    }
    return row;
}

int DialogBase::IndexInOrder(QWidget* widget) const {
    for (QWidget* w = widget; w; w = w->parentWidget()) {
        for (size_t i = 0; i < order_.size(); ++i) {
            if (order_[i] == w) return static_cast<int>(i);
        }
    }
    return -1;
}

void DialogBase::FocusNextField(QWidget* from) {
    const int index = IndexInOrder(from);
    for (size_t i = static_cast<size_t>(index + 1); i < order_.size(); ++i) {
        if (order_[i]->isEnabled() && order_[i]->isVisibleTo(this)) {
            order_[i]->setFocus();
            return;
        }
    }
    if (ok_) ok_->setFocus();
}

void DialogBase::FocusPreviousField(QWidget* from) {
    const int index = IndexInOrder(from);
    for (int i = index - 1; i >= 0; --i) {
        if (order_[i]->isEnabled() && order_[i]->isVisibleTo(this)) {
            order_[i]->setFocus();
            return;
        }
    }
}

bool DialogBase::FormKeyDown(QKeyEvent* event, QWidget* focus) {
    switch (event->key()) {
        case Qt::Key_End:
            OK_Click();
            return true;
        case Qt::Key_Left:
        case Qt::Key_Up:
            if (IndexInOrder(focus) < 0) return false;
            FocusPreviousField(focus);
            return true;
        case Qt::Key_Right:
        case Qt::Key_Down:
            if (IndexInOrder(focus) < 0) return false;
            FocusNextField(focus);
            return true;
        case Qt::Key_PageUp:
            ChangePageKey(false);
            return true;
        case Qt::Key_PageDown:
            ChangePageKey(true);
            return true;
        default:
            return false;
    }
}

void DialogBase::OK_Click() {
    if (!CheckSettings()) return;
    SaveSettings();
    DataChangedFlag() = false;
    State().ParamChanged = true;
    Unload(true);
}

void DialogBase::Cancel_Click() {
    if (DataChangedFlag()) {
        if (ShowMessage(State(), 1) != "YES") return;
        DataChangedFlag() = false;
    }
    Unload(false);
}

void DialogBase::Clear_Click() {
    if (ShowMessage(State(), 12) != "YES") return;
    SetDefaults();
    ShowMessage(State(), 10);
}

void DialogBase::reject() {
    Guard([this] { Cancel_Click(); });
}

void DialogBase::ErrorExit(const std::string& description) {
    if (Unloaded()) return;
    // Nothing of a dialog that failed may stay in the image: neither its edits nor, when it
    // failed while loading, the bytes its load had rewritten.
    State().image = loaded_;
    State().PendingErrorDescription = description;
    ShowMessage(State(), 0);
    State().PendingErrorDescription.clear();
    Unload(false);
}

}  // namespace gantrix
