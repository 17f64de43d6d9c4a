// SPDX-License-Identifier: Apache-2.0
#include "support/ModalDriver.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDateTime>
#include <QDialog>
#include <QPushButton>
#include <QTest>
#include <QWidget>

namespace gantrix::test {

static const auto Now = &QDateTime::currentMSecsSinceEpoch;

ModalDriver::ModalDriver() {
    timer_.setInterval(2);
    connect(&timer_, &QTimer::timeout, this, &ModalDriver::Poll);
}

ModalDriver& ModalDriver::On(const QString& objectName, Action action) {
    steps_.push_back({objectName, -1, std::move(action), "window " + objectName.toStdString()});
    return *this;
}

ModalDriver& ModalDriver::Message(int number, const QString& button) {
    On("MessageBox", [this, number, button](QWidget* box) {
        messages.push_back(number);
        QWidget* focus = QApplication::focusWidget();
        if (button == "Enter") return QTest::keyClick(focus ? focus : box, Qt::Key_Return);
        if (auto* target = box->findChild<QPushButton*>(button)) return target->click();
        ADD_FAILURE() << "message " << number << " has no button " << button.toStdString();
        static_cast<QDialog*>(box)->done(QDialog::Rejected);
    });
    steps_.back().messageNumber = number;
    steps_.back().description =
        "message " + std::to_string(number) + " answered " + button.toStdString();
    return *this;
}

void ModalDriver::Run(const std::function<void()>& body, int timeoutMs) {
    timeoutMs_ = timeoutMs;
    waitingSince_ = Now();
    timer_.start();
    body();
    timer_.stop();
    if (!steps_.empty())
        ADD_FAILURE() << "the run ended before this step: " << steps_.front().description;
    steps_.clear();
}

void ModalDriver::Poll() {
    if (steps_.empty() || busy_) return;
    QWidget* modal = QApplication::activeModalWidget();
    const Step step = steps_.front();
    if (modal && modal->isVisible() && modal->objectName() == step.objectName &&
        (step.messageNumber < 0 ||
         modal->property("messageNumber").toInt() == step.messageNumber)) {
        steps_.pop_front();
        // Queued: the action may enter a nested modal loop, in which the timer must keep running.
        QTimer::singleShot(0, this, [this, step, modal] {
            waitingSince_ = Now();
            step.action(modal);
            waitingSince_ = Now();
        });
        waitingSince_ = Now();
        return;
    }
    if (Now() - waitingSince_ <= timeoutMs_) return;
    const QString seen =
        modal ? modal->objectName() + " " + modal->property("messageNumber").toString() : "none";
    ADD_FAILURE() << "timed out waiting for " << step.description
                  << "; active modal widget: " << seen.toStdString();
    steps_.clear();
    busy_ = true;
    while (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
        dialog->done(QDialog::Rejected);
        QApplication::processEvents();
    }
    busy_ = false;
}

void TypeKeys(QWidget* widget, const QString& text) {
    widget->setFocus();
    QTest::keyClicks(widget, text);
}

void PressKey(QWidget* widget, int key, Qt::KeyboardModifiers modifiers) {
    QTest::keyClick(widget, static_cast<Qt::Key>(key), modifiers);
}

QWidget* Child(QWidget* window, const QString& objectName) {
    auto* child = window->findChild<QWidget*>(objectName);
    if (!child)
        ADD_FAILURE() << window->objectName().toStdString() << " has no control "
                      << objectName.toStdString();
    return child;
}

}  // namespace gantrix::test
