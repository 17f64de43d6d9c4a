// SPDX-License-Identifier: Apache-2.0
#include "common/qt/FormControls.h"

#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPointer>
#include <QRegularExpression>
#include <QToolButton>
#include <QValidator>
#include <QWidget>
#include <map>

#include "common/ControlNumbers.h"
#include "common/InputRoutines.h"
#include "common/StringTable.h"
#include "common/qt/SpinButton.h"

namespace gantrix {
namespace {

std::map<int, QPointer<QWidget>>& Numbered() {
    static std::map<int, QPointer<QWidget>> controls;
    return controls;
}

const QColor kErrorYellow(255, 255, 0);

template <typename Clean>
void CleanLineEdit(QLineEdit* box, Clean clean) {
    TextBoxState state{box->text().toStdString(), box->cursorPosition()};
    clean(state);
    const QString cleaned = QString::fromStdString(state.text);
    if (cleaned != box->text()) box->setText(cleaned);
    box->setCursorPosition(state.caret);
}

class TypingLimit : public QValidator {
  public:
    TypingLimit(QLineEdit* box, int maxLength)
        : QValidator(box), max_(maxLength), shown_(box->text().size()) {
        connect(box, &QLineEdit::textChanged, this,
                [this](const QString& text) { shown_ = text.size(); });
    }

    State validate(QString& input, int&) const override {
        // An edit may not grow the text past the limit; one that keeps or shortens a longer
        // loaded text is fine.
        return input.size() <= max_ || input.size() <= shown_ ? Acceptable : Invalid;
    }

  private:
    int max_;
    qsizetype shown_;  // the length of the text the box shows, before the edit
};

}  // namespace

QString ResText(int id) {
    return QString::fromStdString(LoadResString(id));
}

void NameField(QWidget* field, const QString& name, const QString& range) {
    field->setAccessibleName(name);
    field->setAccessibleDescription(range);
    if (auto* spin = qobject_cast<SpinButton*>(field)) {
        spin->UpButton()->setAccessibleName(FieldName({name, ResText(ids::AccessibleUp)}));
        spin->DownButton()->setAccessibleName(FieldName({name, ResText(ids::AccessibleDown)}));
        spin->UpButton()->setAccessibleDescription(range);
        spin->DownButton()->setAccessibleDescription(range);
    } else if (auto* combo = qobject_cast<QComboBox*>(field); combo && combo->lineEdit()) {
        combo->lineEdit()->setAccessibleName(name);
        combo->lineEdit()->setAccessibleDescription(range);
    }
}

QString FieldName(std::initializer_list<QString> captions) {
    QStringList parts;
    for (const QString& caption : captions) {
        const QString part = caption.simplified();
        if (!part.isEmpty()) parts << part;
    }
    return parts.join(", ");
}

QString RangeText(const QString& low, const QString& high) {
    return ResText(ids::AccessibleRange).arg(low, high);
}

QString RangeText(long low, long high) {
    return RangeText(QString::number(low), QString::number(high));
}

QString RangeOfCaption(const QString& caption) {
    static const QRegularExpression pair(
        R"(^\(?\s*([0-9A-Fa-f]+)\s*(?:-|--|to)\s*([0-9A-Fa-f]+)\s*\)?$)");
    const QString text = caption.simplified();
    const QRegularExpressionMatch match = pair.match(text);
    return match.hasMatch() ? RangeText(match.captured(1), match.captured(2)) : text;
}

int KeyAsciiOf(const QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            return 13;
        case Qt::Key_Backspace:
            return 8;
        case Qt::Key_Escape:
            return 27;
        case Qt::Key_Tab:
        case Qt::Key_Backtab:
            return -1;  // moves the focus; delivers no character
        default:
            break;
    }
    const QList<uint> codePoints = event->text().toUcs4();
    return codePoints.size() == 1 ? static_cast<int>(codePoints.front()) : -1;
}

void CheckDecimalText(QLineEdit* box) {
    CleanLineEdit(box, [](TextBoxState& s) { gantrix::CheckDecimalText(s); });
}

void CheckHexText(QLineEdit* box) {
    CleanLineEdit(box, [](TextBoxState& s) { gantrix::CheckHexText(s); });
}

void LimitTyping(QLineEdit* box, int maxLength) {
    box->setValidator(new TypingLimit(box, maxLength));
}

long ValueOf(const QLineEdit* box) {
    return gantrix::ValueOf(box->text().toStdString());
}

int ControlNumberOf(const QWidget* widget) {
    if (widget == nullptr || widget->window() == nullptr) return -1;
    const std::string form = widget->window()->objectName().toStdString();
    const std::string name = widget->objectName().toStdString();
    const int number = GetControlNo(form, name);
    const ControlName back = ControlNameOf(number);
    return back.form == form && back.control == name ? number : -1;
}

void RegisterNumberedControl(QWidget* control) {
    const int number = ControlNumberOf(control);
    if (number >= 0) Numbered()[number] = control;
}

QWidget* ControlOfNumber(int number) {
    const auto it = Numbered().find(number);
    return it == Numbered().end() ? nullptr : it->second.data();
}

void SetErrorColor(int number) {
    if (QWidget* control = ControlOfNumber(number)) {
        QPalette palette = control->palette();
        palette.setColor(QPalette::Base, kErrorYellow);
        control->setPalette(palette);
    }
}

void ResetErrorColor(QWidget* control) {
    QPalette palette = control->palette();
    palette.setColor(QPalette::Base, QApplication::palette(control).color(QPalette::Base));
    control->setPalette(palette);
}

bool HasErrorColor(const QWidget* control) {
    return control->palette().color(QPalette::Base) == kErrorYellow;
}

}  // namespace gantrix
