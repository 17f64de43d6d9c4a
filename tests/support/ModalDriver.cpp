#include "support/ModalDriver.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDateTime>
#include <QDialog>
#include <QPushButton>
#include <QTest>
#include <QWidget>

namespace gantrix::test {

ModalDriver::ModalDriver() {
    timer_.setInterval(2);
    connect(&timer_, &QTimer::timeout, this, &ModalDriver::Poll);
}

ModalDriver::~ModalDriver() {
    timer_.stop();
}

ModalDriver& ModalDriver::On(const QString& objectName, Action action) {
    steps_.push_back({objectName, -1, std::move(action), "window " + objectName.toStdString()});
    return *this;
}

ModalDriver& ModalDriver::Message(int number, const QString& button) {
    Step step;
    step.objectName = "MessageBox";
    step.messageNumber = number;
    step.description = "message " + std::to_string(number) + " answered " + button.toStdString();
    step.action = [this, number, button](QWidget* box) {
        messages.push_back(number);
        if (button == "Enter") {
            QTest::keyClick(QApplication::focusWidget() ? QApplication::focusWidget() : box,
                            Qt::Key_Return);
            return;
        }
        auto* target = box->findChild<QPushButton*>(button);
        if (target == nullptr) {
            ADD_FAILURE() << "message " << number << " has no button " << button.toStdString();
            static_cast<QDialog*>(box)->done(QDialog::Rejected);
            return;
        }
        target->click();
    };
    steps_.push_back(std::move(step));
    return *this;
}

void ModalDriver::Run(const std::function<void()>& body, int timeoutMs) {
    timeoutMs_ = timeoutMs;
    waitingSince_ = QDateTime::currentMSecsSinceEpoch();
    timer_.start();
    body();
    timer_.stop();
    if (!steps_.empty()) {
        ADD_FAILURE() << "the run ended before this step: " << steps_.front().description;
        steps_.clear();
    }
}

void ModalDriver::Poll() {
    if (steps_.empty() || busy_) return;
    QWidget* modal = QApplication::activeModalWidget();
    const Step& step = steps_.front();
    const bool matches =
        modal && modal->isVisible() && modal->objectName() == step.objectName &&
        (step.messageNumber < 0 || modal->property("messageNumber").toInt() == step.messageNumber);
    if (!matches) {
        if (QDateTime::currentMSecsSinceEpoch() - waitingSince_ > timeoutMs_) {
            const QString seen =
                modal ? modal->objectName() + " " + modal->property("messageNumber").toString()
                      : QString("none");
            Abort("timed out waiting for " + step.description +
                  "; active modal widget: " + seen.toStdString());
        }
        return;
    }
    Step current = steps_.front();
    steps_.pop_front();
    // Queued: the action may enter a nested modal loop, in which the timer must keep running.
    QWidget* target = modal;
    QTimer::singleShot(0, this, [this, current, target] {
        waitingSince_ = QDateTime::currentMSecsSinceEpoch();
        current.action(target);
        waitingSince_ = QDateTime::currentMSecsSinceEpoch();
    });
    waitingSince_ = QDateTime::currentMSecsSinceEpoch();
}

void ModalDriver::Abort(const std::string& why) {
    ADD_FAILURE() << why;
    steps_.clear();
    busy_ = true;
    while (QWidget* modal = QApplication::activeModalWidget()) {
        auto* dialog = qobject_cast<QDialog*>(modal);
        if (dialog == nullptr) break;
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
    if (child == nullptr) {
        ADD_FAILURE() << window->objectName().toStdString() << " has no control "
                      << objectName.toStdString();
    }
    return child;
}

}  // namespace gantrix::test
