// SPDX-License-Identifier: Apache-2.0
#include "common/qt/QtMessagePresenter.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>

namespace gantrix {

MessageButton QtMessagePresenter::Present(const MessageBoxLook& box) {
    QMessageBox dialog(QApplication::activeWindow());
    dialog.setObjectName("MessageBox");
    // Tests and hosts read which message this is without parsing its text.
    dialog.setProperty("messageNumber", box.number);
    dialog.setWindowTitle(QString::fromStdString(box.caption));
    // The texts join lines with LF CR; the CR means nothing to a Qt label.
    dialog.setText(QString::fromStdString(box.text).remove(QChar('\r')));
    dialog.setWindowModality(Qt::ApplicationModal);

    switch (box.style) {
        case kStyleStopOk:
        case kStyleExclamationOk:
        case kStyleInformationOk: {
            dialog.setIcon(box.style == kStyleStopOk          ? QMessageBox::Critical
                           : box.style == kStyleExclamationOk ? QMessageBox::Warning
                                                              : QMessageBox::Information);
            QPushButton* ok = dialog.addButton(QMessageBox::Ok);
            ok->setObjectName("OK");
            dialog.setDefaultButton(ok);
            dialog.setEscapeButton(ok);
            dialog.exec();
            return MessageButton::Ok;
        }
        case kStyleYesNoYesDefault:
        case kStyleYesNoNoDefault: {
            dialog.setIcon(QMessageBox::Question);
            QPushButton* yes = dialog.addButton(QMessageBox::Yes);
            QPushButton* no = dialog.addButton(QMessageBox::No);
            yes->setObjectName("Yes");
            no->setObjectName("No");
            QPushButton* preferred = box.style == kStyleYesNoNoDefault ? no : yes;
            dialog.setDefaultButton(preferred);
            // Qt gives the focus to the first button; Enter must press the default.
            preferred->setFocus();
            dialog.exec();
            return dialog.clickedButton() == yes ? MessageButton::Yes : MessageButton::No;
        }
        default:
            return MessageButton::None;
    }
}

QtMessagePresenter& QtMessagePresenter::Instance() {
    static QtMessagePresenter presenter;
    return presenter;
}

}  // namespace gantrix
