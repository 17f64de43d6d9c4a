// SPDX-License-Identifier: Apache-2.0
#include "spreadsheet/NetworkWindow.h"

#include <QEvent>
#include <QFontMetrics>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QTabWidget>
#include <QTableWidget>
#include <QTimer>
#include <QVBoxLayout>
#include <exception>
#include <stdexcept>

#include "common/qt/FormControls.h"
#include "report/NetworkBytes.h"
#include "report/ParameterReport.h"
#include "spreadsheet/SpreadsheetApplication.h"
#include "store/ParameterFiles.h"
#include "store/ProjectAccess.h"

namespace gantrix::spreadsheet {
namespace {

const QColor kEdited(0xFF, 0xF0, 0xA0);
const QColor kFixed(0xE8, 0xE8, 0xE8);

int FirstRow(const ByteRange& range) {
    return range.first - range.first % kBytesPerRow;
}

}  // namespace

NetworkWindow::NetworkWindow(SpreadsheetWorkbook& book,
                             std::weak_ptr<SpreadsheetApplication> application)
    : WorkbookWindow(book, std::move(application)) {
    for (excel::Worksheet* sheet : book.Worksheets()) {
        if (sheet->Name() != "TEMP") {
            sheetName_ = sheet->Name();
            break;
        }
    }
    Ranges = new QTabWidget(this);
    Ranges->setObjectName("Ranges");
    QStringList columns;
    for (int c = 0; c < kBytesPerRow; ++c) columns << QString("+%1").arg(c, 0, 16).toUpper();
    for (std::size_t r = 0; r < Bytes.size(); ++r) {
        const ByteRange& range = kNetworkRanges[r];
        const int rows = (range.last - FirstRow(range)) / kBytesPerRow + 1;
        auto* table = new QTableWidget(rows, kBytesPerRow, Ranges);
        table->setObjectName(QString("Bytes(%1)").arg(r));
        table->setHorizontalHeaderLabels(columns);
        QStringList starts;
        for (int row = 0; row < rows; ++row) {
            starts << QString::number(FirstRow(range) + row * kBytesPerRow);
        }
        table->setVerticalHeaderLabels(starts);
        // Fixed widths: sizing to the contents would measure every cell on every change.
        table->horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
        table->horizontalHeader()->setDefaultSectionSize(
            table->fontMetrics().horizontalAdvance("+WW") + 10);
        table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
        table->verticalHeader()->setDefaultSectionSize(table->fontMetrics().height() + 8);
        connect(table, &QTableWidget::itemChanged, this,
                [this](QTableWidgetItem* item) { CellChanged(item); });
        Bytes[r] = table;
        Ranges->addTab(table,
                       QString("%1 (%2-%3)").arg(range.title).arg(range.first).arg(range.last));
    }
    Save = new QPushButton("Save", this);
    Save->setObjectName("Save");
    connect(Save, &QPushButton::clicked, this, [this] { SaveClicked(); });
    Save->setEnabled(false);

    Heading->setText(QString("%1: the network parameters appear when the workbook's macro "
                             "auto_open runs.")
                         .arg(Q(sheetName_)));
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(Save);
    buttons->addStretch();
    buttons->addWidget(Close);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(Heading);
    layout->addWidget(Ranges, 1);
    layout->addWidget(Status);
    layout->addLayout(buttons);
    // Wide enough for the sixteen columns of a row, its index and the scroll bar.
    const QFontMetrics metrics = Bytes[0]->fontMetrics();
    resize(kBytesPerRow * (metrics.horizontalAdvance("+WW") + 10) +
               metrics.horizontalAdvance("00000") + 80,
           600);
}

void NetworkWindow::AutoOpen() {
    if (Book() == nullptr) return;
    const std::string projectDir = Book()->TempCell(30, 2);
    // Without a project directory there is no working file to show, and none to guess.
    path_ = projectDir.empty() ? "" : projectDir + kParamWork;
    const std::string mode = Book()->TempCell(32, 2);
    modeIndex_ = mode.size() == 1 && mode[0] >= '0' && mode[0] <= '3' ? mode[0] - '0' : -1;
    const int bits = WorkbookModeBits(modeIndex_);
    const QString modeNote =
        bits < 0 ? QString()
                 : QString(
                       " and, while byte 1024 is not 0, the mode bits %1 of this workbook in "
                       "the low six bits of byte 2560")
                       .arg(bits);
    Heading->setText(
        QString("<b>%1</b> (CPU type %2)<br>%3<br>The fields of the network block are not "
                "decoded here: each byte is shown and edited as a hexadecimal value 00 to FF. "
                "Save writes the changed bytes into this file with the sum of the block "
                "(bytes 2056-2058)%4; the parameter menu's OK takes them over.")
            .arg(Q(sheetName_).toHtmlEscaped(), Q(Book()->TempCell(31, 2)).toHtmlEscaped(),
                 Q(path_).toHtmlEscaped(), modeNote));
    Load();
}

void NetworkWindow::Reactivate() {
    CatchUp(false);
}

void NetworkWindow::changeEvent(QEvent* event) {
    WorkbookWindow::changeEvent(event);
    if (event->type() != QEvent::ActivationChange || !isActiveWindow()) return;
    // Asked once the activation is through: the question is a window of its own.
    QTimer::singleShot(0, this, [this] {
        if (isActiveWindow()) CatchUp(true);
    });
}

void NetworkWindow::Load() {
    edits_.clear();
    try {
        if (path_.empty()) throw std::runtime_error("No project directory in TEMP!B30.");
        const ParameterImage image = LoadParameterImage(path_);
        file_.assign(image.bytes().begin(), image.bytes().end());
        Status->clear();
    } catch (const std::exception& error) {
        file_.clear();
        Status->setText(Q(error.what()));
    }
    ShowBytes();
    UpdateSheet();
    Save->setEnabled(false);
}

bool NetworkWindow::CatchUp(bool ask) {
    if (asking_) return false;
    if (path_.empty()) return true;
    std::vector<uint8_t> now;
    try {
        const ParameterImage image = LoadParameterImage(path_);
        now.assign(image.bytes().begin(), image.bytes().end());
    } catch (const std::exception& error) {
        Status->setText(Q(error.what()));  // and Save says so again
        return true;
    }
    if (now == file_) return true;
    QString news = QString("%1 was changed since it was shown; it is shown as it is now.");
    // Bytes outside the ranges shown change nothing on the screen, and a Save keeps them.
    if (!edits_.empty() && NetworkBytesDiffer(now, file_)) {
        if (!ask) {
            Status->setText(QString("%1 was changed since it was shown. You will be asked what "
                                    "to do with your %2 changed byte(s).")
                                .arg(Q(path_))
                                .arg(edits_.size()));
            return false;
        }
        QMessageBox box(QMessageBox::Question, windowTitle(),
                        QString("The network data in %1 were changed outside this workbook "
                                "after you changed %2 byte(s) here (the network menu clears "
                                "them when the network mode changes).")
                            .arg(Q(path_))
                            .arg(edits_.size()),
                        QMessageBox::NoButton, this);
        box.setObjectName("FileChanged");
        box.setInformativeText(
            "Keep your changes over the bytes the file holds now, or "
            "discard them and show the file as it is?");
        QPushButton* keep = box.addButton("Keep my changes", QMessageBox::AcceptRole);
        keep->setObjectName("Keep");
        QPushButton* discard = box.addButton("Discard my changes", QMessageBox::RejectRole);
        discard->setObjectName("Discard");
        box.setDefaultButton(discard);
        box.setEscapeButton(discard);
        asking_ = true;
        box.exec();
        asking_ = false;
        if (box.clickedButton() == keep) {
            news = "Your changes are shown over the bytes %1 holds now.";
        } else {
            edits_.clear();
            news = "Your changes were discarded; %1 is shown as it is now.";
        }
    }
    file_ = std::move(now);
    std::erase_if(edits_, [this](const auto& edit) { return file_[edit.first] == edit.second; });
    ShowBytes();
    UpdateSheet();
    Save->setEnabled(!edits_.empty());
    Status->setText(news.arg(Q(path_)));
    return true;
}

void NetworkWindow::ShowBytes() {
    // Every cell a table takes signals a change; those are not the user's edits.
    filling_ = true;
    for (std::size_t r = 0; r < Bytes.size(); ++r) {
        const ByteRange& range = kNetworkRanges[r];
        QTableWidget* table = Bytes[r];
        table->setUpdatesEnabled(false);
        for (int row = 0; row < table->rowCount(); ++row) {
            for (int column = 0; column < kBytesPerRow; ++column) {
                const int index = FirstRow(range) + row * kBytesPerRow + column;
                auto* item = new QTableWidgetItem;
                item->setTextAlignment(Qt::AlignCenter);
                const bool inRange = index >= range.first && index <= range.last;
                const bool known = index < static_cast<int>(file_.size());
                const auto edit = edits_.find(index);
                if (edit != edits_.end()) item->setBackground(kEdited);
                if (inRange && known) {
                    item->setText(Q(ByteText(edit != edits_.end() ? edit->second : file_[index])));
                }
                item->setData(Qt::UserRole, index);
                const std::string meaning = NetworkByteMeaning(index);
                item->setToolTip(QString("Byte %1").arg(index) +
                                 (meaning.empty() ? QString() : ": " + Q(meaning)));
                if (!inRange || !known || !IsEditableNetworkByte(index)) {
                    item->setFlags(item->flags() & ~Qt::ItemIsEditable);
                    item->setBackground(kFixed);
                }
                table->setItem(row, column, item);
            }
        }
        table->setUpdatesEnabled(true);
    }
    filling_ = false;
}

QTableWidgetItem* NetworkWindow::CellOf(int index) const {
    for (std::size_t r = 0; r < Bytes.size(); ++r) {
        const ByteRange& range = kNetworkRanges[r];
        if (index < range.first || index > range.last) continue;
        const int offset = index - FirstRow(range);
        return Bytes[r]->item(offset / kBytesPerRow, offset % kBytesPerRow);
    }
    return nullptr;
}

void NetworkWindow::CellChanged(QTableWidgetItem* item) {
    if (filling_) return;
    const int index = item->data(Qt::UserRole).toInt();
    if (index < 0 || index >= static_cast<int>(file_.size())) return;
    const std::optional<uint8_t> value = ParseByteText(item->text().toStdString());
    const uint8_t shown = value.value_or(edits_.count(index) ? edits_[index] : file_[index]);
    if (value) {
        if (*value == file_[index]) {
            edits_.erase(index);
        } else {
            edits_[index] = *value;
        }
        Status->setText(QString("%1 changed byte(s) not saved yet.").arg(edits_.size()));
    } else {
        Status->setText(QString("Byte %1: enter a hexadecimal value from 00 to FF.").arg(index));
    }
    filling_ = true;
    item->setText(Q(ByteText(shown)));
    item->setBackground(edits_.count(index) ? QBrush(kEdited) : QBrush());
    filling_ = false;
    if (edits_.empty() && value) Status->clear();
    Save->setEnabled(!edits_.empty());
    UpdateSheet();
}

void NetworkWindow::UpdateSheet() {
    if (Book() == nullptr) return;
    CellSheet* sheet = Book()->FindSheet(sheetName_);
    if (sheet == nullptr) return;
    std::vector<uint8_t> shown = file_;
    for (const auto& [index, value] : edits_) shown[static_cast<std::size_t>(index)] = value;
    sheet->Fill(NetworkSheet(sheetName_, shown));
}

bool NetworkWindow::SaveClicked() {
    // Never the edits of bytes the file no longer holds, unless the user says so.
    if (!CatchUp(true)) return false;
    if (edits_.empty()) return true;
    const std::size_t count = edits_.size();
    try {
        WriteNetworkBytes(path_, edits_, modeIndex_);
    } catch (const std::exception& error) {
        Status->setText(Q(error.what()));
        QMessageBox::warning(this, windowTitle(), Q(error.what()));
        return false;
    }
    Load();
    Status->setText(QString("Saved %1 byte(s) into %2.").arg(count).arg(Q(path_)));
    return true;
}

bool NetworkWindow::MayClose() {
    if (edits_.empty()) return true;
    QMessageBox box(
        QMessageBox::Question, windowTitle(),
        QString("Save the %1 changed byte(s) into %2?").arg(edits_.size()).arg(Q(path_)),
        QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, this);
    box.setObjectName("SaveChanges");
    box.setDefaultButton(QMessageBox::Save);
    switch (box.exec()) {
        case QMessageBox::Save:
            return SaveClicked();
        case QMessageBox::Discard:
            return true;
        default:
            return false;
    }
}

}  // namespace gantrix::spreadsheet
