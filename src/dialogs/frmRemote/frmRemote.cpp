// SPDX-License-Identifier: Apache-2.0
#include "dialogs/frmRemote/frmRemote.h"

#include <QButtonGroup>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include "common/InputRoutines.h"
#include "common/StringTable.h"
#include "common/qt/DialogRegistry.h"
#include "common/qt/FormControls.h"
#include "common/qt/SpinButton.h"

namespace gantrix {
namespace {

constexpr int kRows = 7;  // entries per half of the station table
constexpr int kDigits = 2;

}  // namespace

frmRemote::frmRemote(ModuleState& state) : DialogBase(state, "frmRemote") {
    setWindowTitle(ResText(ids::RemoteTitle));
    BuildControls();
    Guard([this] { SetRemoteSettings(); });
    FinishLoad();
}

void frmRemote::BuildControls() {
    const int labelIds[5] = {ids::TotalRemoteStations, ids::Range1To64, ids::StationSettingProtocol,
                             ids::ProtocolKeyHint, ids::RemoteIoStationsNotAllowed};
    for (int i = 0; i < 5; ++i) {
        Label1[i] = new QLabel(ResText(labelIds[i]), this);
        Label1[i]->setObjectName(QString("Label1(%1)").arg(i));
    }
    // Headings " No.", "Start No.", "Protocol" of each half, then the entry numbers 1..14.
    const int headingIds[3] = {ids::EntryNoHeading, ids::StartNo, ids::Protocol};
    for (int i = 0; i < 20; ++i) {
        const QString text = i < 6 ? ResText(headingIds[i % 3]) : QString::number(i - 5);
        Label2[i] = new QLabel(text, this);
        Label2[i]->setObjectName(QString("Label2(%1)").arg(i));
    }

    Text1 = new QLineEdit(this);
    Text1->setObjectName("Text1");
    LimitTyping(Text1, kDigits);
    Text1->setFixedWidth(36);
    VScroll1 = new SpinButton(this);
    VScroll1->setObjectName("VScroll1");
    VScroll1->SetRange(99, 0);  // the upper arrow raises the total
    connect(Text1, &QLineEdit::textChanged, this, [this] { Guard([this] { Text1_Change(); }); });
    connect(VScroll1, &SpinButton::Change, this,
            [this](int value) { Guard([this, value] { VScroll1_Change(value); }); });
    OnKeyPress(Text1, [this](int& key) { Text1_KeyPress(key); });

    Frame1 = new QGroupBox(ResText(ids::OnlineMode), this);
    Frame1->setObjectName("Frame1");
    onlineModes_ = new QButtonGroup(this);
    auto* modes = new QVBoxLayout(Frame1);
    const int modeIds[3] = {ids::AutomaticReconnection, ids::ManualConnection,
                            ids::StopAtEmergency};
    for (int i = 0; i < 3; ++i) {
        OnlineMode[i] = new QRadioButton(ResText(modeIds[i]), Frame1);
        OnlineMode[i]->setObjectName(QString("OnlineMode(%1)").arg(i));
        onlineModes_->addButton(OnlineMode[i], i);
        modes->addWidget(OnlineMode[i]);
        connect(OnlineMode[i], &QRadioButton::toggled, this, [this](bool checked) {
            if (checked) Guard([this] { OnlineMode_Click(); });
        });
        OnKeyPress(OnlineMode[i], [this](int& key) {
            if (key != 13) return;
            key = 0;
            Text2[0]->setFocus();
        });
    }

    for (int e = 0; e < kRemoteEntries; ++e) {
        QLineEdit* start = Text2[e] = new QLineEdit(this);
        LimitTyping(start, kDigits);
        start->setObjectName(QString("Text2(%1)").arg(e));
        start->setFixedWidth(36);
        // The protocol cells show names longer than anything typed into them; their keys
        // are filtered, so they need no length limit.
        QLineEdit* protocol = Text2[e + kRemoteEntries] = new QLineEdit(this);
        protocol->setObjectName(QString("Text2(%1)").arg(e + kRemoteEntries));
        protocol->setMinimumWidth(protocol->fontMetrics().horizontalAdvance(Q(NonProcedureName())) +
                                  16);
        connect(start, &QLineEdit::textChanged, this,
                [this, e] { Guard([this, e] { StartCell_Change(e); }); });
        connect(protocol, &QLineEdit::textChanged, this,
                [this, e] { Guard([this, e] { ProtocolCell_Change(e); }); });
        OnKeyPress(start, [this, e](int& key) { StartCell_KeyPress(e, key); });
        OnKeyPress(protocol, [this, e](int& key) { ProtocolCell_KeyPress(e, key); });
    }

    MakeStandardButtons(OK, Cancel, &Clear);

    auto* total = new QHBoxLayout;
    total->addWidget(Label1[0]);
    auto* spin = new QHBoxLayout;
    spin->setSpacing(1);
    spin->addWidget(Text1);
    spin->addWidget(VScroll1);
    total->addLayout(spin);
    total->addWidget(Label1[1]);
    total->addStretch();
    auto* top = new QHBoxLayout;
    top->addLayout(total);
    top->addWidget(Frame1);

    // Two halves of seven entries: No., Start No., Protocol on each side.
    auto* table = new QGridLayout;
    table->setHorizontalSpacing(6);
    table->setVerticalSpacing(2);
    for (int half = 0; half < 2; ++half) {
        const int column = half * 4;
        for (int k = 0; k < 3; ++k) table->addWidget(Label2[half * 3 + k], 0, column + k);
        for (int row = 0; row < kRows; ++row) {
            const int e = half * kRows + row;
            table->addWidget(Label2[6 + e], 1 + row, column, Qt::AlignRight);
            table->addWidget(Text2[e], 1 + row, column + 1);
            table->addWidget(Text2[e + kRemoteEntries], 1 + row, column + 2);
        }
    }
    table->setColumnMinimumWidth(3, 24);
    table->setColumnStretch(7, 1);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(Label1[2]);
    layout->addLayout(table);
    layout->addWidget(Label1[3]);
    layout->addWidget(Label1[4]);
    layout->addLayout(StandardButtonRow());
    layout->setSizeConstraint(QLayout::SetFixedSize);

    // Tab: the total, the online mode, then the entries, each start before its protocol.
    std::vector<QWidget*> order = {Text1, OnlineMode[0], OnlineMode[1], OnlineMode[2]};
    for (int e = 0; e < kRemoteEntries; ++e) {
        order.push_back(Text2[e]);
        order.push_back(Text2[e + kRemoteEntries]);
    }
    SetFieldOrder(order);
    NameFields();
}

// What a screen reader reads for each field: its caption, or the entry number with its column,
// and the range or the keys it takes.
void frmRemote::NameFields() {
    NameField(Text1, Label1[0]->text(), RangeOfCaption(Label1[1]->text()));
    NameField(VScroll1, Label1[0]->text(), RangeOfCaption(Label1[1]->text()));
    Label1[0]->setBuddy(Text1);
    for (QRadioButton* option : OnlineMode) {
        NameField(option, FieldName({Frame1->title(), option->text()}));
    }
    for (int e = 0; e < kRemoteEntries; ++e) {
        const QString entry = FieldName({Label2[0]->text() + " " + Label2[6 + e]->text()});
        NameField(Text2[e], FieldName({entry, Label2[1]->text()}));
        NameField(Text2[e + kRemoteEntries], FieldName({entry, Label2[2]->text()}),
                  Label1[3]->text());
        Label2[6 + e]->setBuddy(Text2[e]);
    }
}

RemoteFields frmRemote::Fields() const {
    RemoteFields f;
    f.Text1 = Text1->text().toStdString();
    for (size_t i = 0; i < Text2.size(); ++i) f.Text2[i] = Text2[i]->text().toStdString();
    f.OnlineMode = onlineModes_->checkedId();
    return f;
}

void frmRemote::ShowFields(const RemoteFields& f) {
    Text1->setText(Q(f.Text1));
    if (f.OnlineMode >= 0 && f.OnlineMode <= 2) {
        OnlineMode[f.OnlineMode]->setChecked(true);
    } else {
        onlineModes_->setExclusive(false);
        for (QRadioButton* option : OnlineMode) option->setChecked(false);
        onlineModes_->setExclusive(true);
    }
    // Start cells first: a protocol cell keeps a text only beside a start.
    for (int e = 0; e < kRemoteEntries; ++e) Text2[e]->setText(Q(f.Text2[e]));
    for (int e = 0; e < kRemoteEntries; ++e) {
        Text2[e + kRemoteEntries]->setText(Q(f.Text2[e + kRemoteEntries]));
    }
}

void frmRemote::SetRemoteSettings() {
    ShowFields(ReadRemote(State().image));
}

bool frmRemote::CheckRemoteSettings() {
    ResetErrorColor(Text1);
    for (QLineEdit* cell : Text2) ResetErrorColor(cell);
    return ReportErrors(State(), ValidateRemote(Fields()),
                        [](int control) { SetErrorColor(control); });
}

void frmRemote::SaveRemoteSettings() {
    WriteRemote(Fields(), State().image);
}

void frmRemote::SetDefaultOfRemote() {
    ShowFields(DefaultsRemote());
}

void frmRemote::FocusSelectedOnlineMode() {
    if (QAbstractButton* selected = onlineModes_->checkedButton()) selected->setFocus();
}

QLineEdit* frmRemote::Cell(int column, int row) const {
    const int e = (column / 2) * kRows + row;
    return Text2[column % 2 == 0 ? e : e + kRemoteEntries];
}

int frmRemote::IndexOfCell(const QWidget* widget) const {
    for (size_t i = 0; i < Text2.size(); ++i) {
        if (Text2[i] == widget) return static_cast<int>(i);
    }
    return -1;
}

// The station table is four columns of seven rows: Up and Down move within a column, Left
// at the start and Right at the end of a cell's text to the same row of the next column.
bool frmRemote::FormKeyDown(QKeyEvent* event, QWidget* focus) {
    const int key = event->key();
    const int index = IndexOfCell(focus);
    if (key == Qt::Key_Delete) return index >= kRemoteEntries;  // protocols are set by keys
    if (key != Qt::Key_Up && key != Qt::Key_Down && key != Qt::Key_Left && key != Qt::Key_Right) {
        return DialogBase::FormKeyDown(event, focus);
    }
    if (focus == Text1) {
        if (key == Qt::Key_Down) {
            FocusSelectedOnlineMode();
            return true;
        }
        if (key == Qt::Key_Right && Text1->cursorPosition() == Text1->text().size()) {
            Text2[0]->setFocus();
            return true;
        }
        return key == Qt::Key_Up;
    }
    if (index < 0) return false;  // option buttons and buttons keep their own arrow keys

    const int e = index % kRemoteEntries;
    const int column = (e / kRows) * 2 + (index >= kRemoteEntries ? 1 : 0);
    const int row = e % kRows;
    const auto* cell = Text2[index];
    switch (key) {
        case Qt::Key_Up:
            if (row > 0) Cell(column, row - 1)->setFocus();
            return true;
        case Qt::Key_Down:
            if (row < kRows - 1) {
                Cell(column, row + 1)->setFocus();
            } else if (index == 2 * kRemoteEntries - 1) {
                Clear->setFocus();
            }
            return true;
        case Qt::Key_Left:
            if (cell->cursorPosition() != 0) return false;
            if (column > 0) Cell(column - 1, row)->setFocus();
            return true;
        default:  // Right
            if (cell->cursorPosition() != cell->text().size()) return false;
            if (column < 3) Cell(column + 1, row)->setFocus();
            return true;
    }
}

void frmRemote::Text1_Change() {
    CheckDecimalText(Text1);
    if (!Text1->text().isEmpty()) {
        const bool was = updating_;
        updating_ = true;
        VScroll1->SetValue(static_cast<int>(ValueOf(Text1)));
        updating_ = was;
    }
    DataChanged = true;
}

void frmRemote::Text1_KeyPress(int& keyAscii) {
    switch (CheckDecimalKey(keyAscii)) {
        case 2:
            keyAscii = 0;
            FocusSelectedOnlineMode();
            return;
        case 1:
            return;
        default:
            keyAscii = 0;
    }
}

// An arrow on an empty total starts it from the spin button's end value 0.
void frmRemote::VScroll1_Change(int value) {
    if (updating_) return;
    const bool wasEmpty = Text1->text().isEmpty();
    Text1->setText(QString::number(wasEmpty ? VScroll1->Max() : value));
    DataChanged = true;
}

void frmRemote::OnlineMode_Click() {
    DataChanged = true;
}

void frmRemote::StartCell_Change(int e) {
    CheckDecimalText(Text2[e]);
    if (Text2[e]->text().isEmpty()) Text2[e + kRemoteEntries]->clear();
    DataChanged = true;
}

void frmRemote::StartCell_KeyPress(int e, int& keyAscii) {
    if (keyAscii == 13) {
        keyAscii = 0;
        if (!Text2[e]->text().isEmpty()) {
            Text2[e + kRemoteEntries]->setFocus();
        } else if (e + 1 < kRemoteEntries) {
            Text2[e + 1]->setFocus();
        } else {
            OK->setFocus();
        }
        return;
    }
    if (keyAscii < 32) return;
    if (keyAscii < '0' || keyAscii > '9') keyAscii = 0;
}

void frmRemote::ProtocolCell_Change(int e) {
    QLineEdit* cell = Text2[e + kRemoteEntries];
    const QString cleaned =
        Q(CleanProtocolText(cell->text().toStdString(), Text2[e]->text().isEmpty()));
    if (cleaned != cell->text()) cell->setText(cleaned);
    DataChanged = true;
}

void frmRemote::ProtocolCell_KeyPress(int e, int& keyAscii) {
    QLineEdit* cell = Text2[e + kRemoteEntries];
    if (keyAscii == 13) {
        keyAscii = 0;
        if (e + 1 < kRemoteEntries) {
            Text2[e + 1]->setFocus();
        } else {
            OK->setFocus();
        }
        return;
    }
    if ((keyAscii == '0' || keyAscii == '1') && !Text2[e]->text().isEmpty()) {
        cell->setText(Q(keyAscii == '0' ? MiniStandardName() : NonProcedureName()));
    }
    if (keyAscii == 8 || keyAscii >= 32) keyAscii = 0;
}

static DialogRegistrar frmRemoteRegistrar("frmRemote", [](ModuleState& s) {
    frmRemote form(s);
    form.exec();
});

}  // namespace gantrix
