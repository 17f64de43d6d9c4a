// SPDX-License-Identifier: Apache-2.0
#include "spreadsheet/WorkbookWindow.h"

#include <QApplication>
#include <QCloseEvent>
#include <QLabel>
#include <QPushButton>

#include "common/StringTable.h"
#include "common/qt/FormControls.h"
#include "spreadsheet/SpreadsheetApplication.h"

namespace gantrix::spreadsheet {

WorkbookWindow::WorkbookWindow(SpreadsheetWorkbook& book,
                               std::weak_ptr<SpreadsheetApplication> application)
    : book_(&book), application_(std::move(application)) {
    setObjectName("frmSpreadsheet");
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(QString::fromStdString(book.Name()));
    Heading = new QLabel(this);
    Heading->setObjectName("Heading");
    Heading->setWordWrap(true);
    Heading->setTextInteractionFlags(Qt::TextSelectableByMouse);
    Status = new QLabel(this);
    Status->setObjectName("Status");
    Status->setWordWrap(true);
    Close = new QPushButton(ResText(ids::Close), this);
    Close->setObjectName("Close");
    connect(Close, &QPushButton::clicked, this, &QWidget::close);
    Follow(QApplication::activeModalWidget());
}

WorkbookWindow::~WorkbookWindow() {
    Detach();
}

void WorkbookWindow::Follow(QWidget* owner) {
    if (owner_) owner_->removeEventFilter(this);
    owner_ = owner;
    // A window of its own, above its owner and not blocked by the owner's modality.
    const QRect place = geometry();
    const bool shown = isVisible();
    setParent(owner, Qt::Window);
    if (shown) {
        setGeometry(place);
        show();
    }
    if (owner != nullptr) owner->installEventFilter(this);
}

bool WorkbookWindow::eventFilter(QObject* watched, QEvent* event) {
    // The owner closing (not merely minimised): the modal window beneath takes the window
    // over, so that it is neither deleted with its owner nor blocked by the next modal loop.
    if (watched == owner_ && event->type() == QEvent::Hide && !event->spontaneous()) {
        QWidget* next = QApplication::activeModalWidget();
        if (next == owner_ || next == this || isAncestorOf(next)) next = nullptr;
        Follow(next);
    }
    return QWidget::eventFilter(watched, event);
}

void WorkbookWindow::closeEvent(QCloseEvent* event) {
    if (!MayClose()) {
        event->ignore();
        return;
    }
    event->accept();
    Detach();
}

void WorkbookWindow::Detach() {
    SpreadsheetWorkbook* book = std::exchange(book_, nullptr);
    if (book == nullptr) return;
    if (const auto application = application_.lock()) application->WorkbookClosed(book);
}

}  // namespace gantrix::spreadsheet
