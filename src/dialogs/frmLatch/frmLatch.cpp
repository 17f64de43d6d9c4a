// SPDX-License-Identifier: Apache-2.0
#include "dialogs/frmLatch/frmLatch.h"

#include <QFontMetrics>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>
#include <cctype>

#include "common/InputRoutines.h"
#include "common/StringTable.h"
#include "common/qt/DialogRegistry.h"
#include "common/qt/FormControls.h"
#include "common/qt/SpinButton.h"

namespace gantrix {
namespace {

constexpr int kPatternCaptions[kLatchPatterns] = {ids::NoLatch, ids::HalfLatch, ids::FullLatch};

// The boxes the fixed patterns fill: rows 0..7.
constexpr int kPatternBoxes = 16;

// Decimal spin buttons run from 9999 at the top to 0; the hexadecimal ones over every word.
constexpr int kDecimalTop = 9999;
constexpr int kHexTop = 65535;

}  // namespace

frmLatch::frmLatch(ModuleState& state) : DialogBase(state, "frmLatch") {
    const DialogContext context = ContextOf(State());
    rows_ = LatchRowCount(context.CpuType);
    limits_ = LatchRowLimits(State().image, context);
    BuildControls();
    SetLatchSettings();
    // The smallest type's ranges come only from the fixed patterns.
    if (context.CpuType == "A0J") LockTypedRanges();
    FinishLoad();
}

void frmLatch::BuildControls() {
    setWindowTitle(ResText(ids::LatchRangeSetting));
    const bool a0j = State().CpuType == "A0J";
    const QFontMetrics metrics(font());
    const int boxWidth = metrics.horizontalAdvance(QStringLiteral("88888")) + 12;

    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(4);
    for (int r = 0; r < kLatchRows; ++r) {
        // The second timer and counter block sits apart from the first.
        const int line = r < 8 ? r : r + 1;
        Label1[r] = new QLabel(ResText(kLatchRowCaptions[r]), this);
        Label1[r]->setObjectName(QString("Label1(%1)").arg(r));
        Label1[12 + r] = new QLabel(ResText(ids::RangeDash), this);
        Label1[12 + r]->setObjectName(QString("Label1(%1)").arg(12 + r));
        Label2[r] = new QLabel(QString::fromStdString(LatchRangeLabel(limits_, r)), this);
        Label2[r]->setObjectName(QString("Label2(%1)").arg(r));
        grid->addWidget(Label1[r], line, 0);
        grid->addWidget(Label1[12 + r], line, 3);
        grid->addWidget(Label2[r], line, 6);
        for (int side = 0; side < 2; ++side) {
            const int i = 2 * r + side;
            Text1[i] = new QLineEdit(this);
            Text1[i]->setObjectName(QString("Text1(%1)").arg(i));
            LimitTyping(Text1[i], 4);
            Text1[i]->setFixedWidth(boxWidth);
            Text1[i]->setAlignment(Qt::AlignRight);
            VScroll1[i] = new SpinButton(this);
            VScroll1[i]->setObjectName(QString("VScroll1(%1)").arg(i));
            VScroll1[i]->SetRange(IsHexLatchBox(i) ? kHexTop : kDecimalTop, 0);
            VScroll1[i]->SetSmallChange(1);
            grid->addWidget(Text1[i], line, 1 + 3 * side);
            grid->addWidget(VScroll1[i], line, 2 + 3 * side);
            NameBox(i);

            connect(Text1[i], &QLineEdit::textChanged, this,
                    [this, i] { Guard([this, i] { Text1_Change(i); }); });
            connect(VScroll1[i], &SpinButton::Change, this,
                    [this, i] { Guard([this, i] { VScroll1_Change(i); }); });
            // An arrow on an empty box shows the number it stands at, even when the value
            // itself did not move (the down arrow at 0).
            for (QToolButton* arrow : {VScroll1[i]->UpButton(), VScroll1[i]->DownButton()}) {
                connect(arrow, &QToolButton::clicked, this, [this, i] {
                    Guard([this, i] {
                        if (Trim(Text1[i]->text().toStdString()).empty()) VScroll1_Change(i);
                    });
                });
            }
            OnKeyPress(Text1[i], [this, i](int& key) { Text1_KeyPress(i, key); });
        }
        if (r >= rows_) {
            const std::initializer_list<QWidget*> row = {
                Label1[r],        Label1[12 + r],  Label2[r],          Text1[2 * r],
                Text1[2 * r + 1], VScroll1[2 * r], VScroll1[2 * r + 1]};
            for (QWidget* w : row) w->hide();
        }
    }
    if (rows_ == kLatchRows) grid->setRowMinimumHeight(8, metrics.height() / 2);
    grid->setColumnMinimumWidth(6, metrics.horizontalAdvance(QStringLiteral(" (256-2047) ")));

    auto* buttons = new QVBoxLayout;
    for (int k = 0; k < kLatchPatterns; ++k) {
        ChangeLatch[k] = new QPushButton(ResText(kPatternCaptions[k]), this);
        ChangeLatch[k]->setObjectName(QString("ChangeLatch(%1)").arg(k));
        ChangeLatch[k]->setVisible(a0j);  // the other types type their ranges
        buttons->addWidget(ChangeLatch[k]);
        connect(ChangeLatch[k], &QPushButton::clicked, this,
                [this, k] { Guard([this, k] { ChangeLatch_Click(k); }); });
    }
    if (a0j) buttons->addSpacing(metrics.height());
    buttons->addStretch();
    MakeStandardButtons(OK, Cancel, &Clear);
    for (QPushButton* button : {OK, Cancel, Clear}) buttons->addWidget(button);

    auto* layout = new QHBoxLayout(this);
    layout->addLayout(grid);
    layout->addSpacing(12);
    layout->addLayout(buttons);

    std::vector<QWidget*> order(Text1.begin(), Text1.end());
    order.insert(order.end(), ChangeLatch.begin(), ChangeLatch.end());
    SetFieldOrder(order);
}

// What a screen reader reads for box i: its row caption (the second timer and counter block
// told apart from the first), start or end, and the row's range when it has one.
void frmLatch::NameBox(int i) {
    const int r = i / 2;
    const QString name =
        FieldName({ResText(kLatchRowCaptions[r]), r >= 8 ? ResText(ids::AccessibleSecondBlock) : "",
                   ResText(i % 2 == 0 ? ids::AccessibleStart : ids::AccessibleEnd)});
    const LatchRowLimit& limit = limits_.row.at(static_cast<size_t>(r));
    const bool hex = IsHexLatchBox(i);
    const QString range = limit.Exists()
                              ? RangeText(QString::fromStdString(LatchBoxText(limit.low, hex)),
                                          QString::fromStdString(LatchBoxText(limit.high, hex)))
                              : QString();
    NameField(Text1[i], name, range);
    NameField(VScroll1[i], name, range);
    if (i % 2 == 0) Label1[r]->setBuddy(Text1[i]);
}

LatchFields frmLatch::FieldsOfControls() const {
    LatchFields fields;
    for (int i = 0; i < kLatchBoxes; ++i) fields.Text1[i] = Text1[i]->text().toStdString();
    return fields;
}

void frmLatch::ShowFields(const LatchFields& fields) {
    for (int i = 0; i < kLatchBoxes; ++i)
        Text1[i]->setText(QString::fromStdString(fields.Text1[i]));
}

void frmLatch::LockTypedRanges() {
    for (int i = 0; i < kPatternBoxes; ++i) {
        Text1[i]->setEnabled(false);
        Text1[i]->setFocusPolicy(Qt::NoFocus);  // out of the tab order
        VScroll1[i]->setEnabled(false);
    }
}

void frmLatch::SetLatchSettings() {
    ShowFields(ReadLatch(State().image, ContextOf(State())));
}

bool frmLatch::CheckLatchSettings() {
    for (QLineEdit* box : Text1) ResetErrorColor(box);
    const ErrorTables errors = ValidateLatch(FieldsOfControls(), limits_, ContextOf(State()));
    return ReportErrors(State(), errors, SetErrorColor);
}

void frmLatch::SaveLatchSettings() {
    WriteLatch(FieldsOfControls(), State().image, ContextOf(State()));
}

void frmLatch::SetDefaultOfLatch() {
    ShowFields(DefaultsLatch(FieldsOfControls(), ContextOf(State())));
}

void frmLatch::ChangeLatchSettings(int index) {
    LatchFields fields = FieldsOfControls();
    ApplyLatchPattern(fields, index);
    ShowFields(fields);
    LockTypedRanges();
}

void frmLatch::ChangeLatch_Click(int index) {
    ChangeLatchSettings(index);
}

void frmLatch::Text1_KeyPress(int index, int& keyAscii) {
    int kind = CheckDecimalKey(keyAscii);
    if (kind == 0 && IsHexLatchBox(index) && keyAscii < 128 &&
        std::isxdigit(static_cast<unsigned char>(keyAscii))) {
        kind = 1;
    }
    if (kind == 0) {
        keyAscii = 0;
    } else if (kind == 2) {
        keyAscii = 0;
        FocusNextField(Text1[index]);
    }
}

void frmLatch::Text1_Change(int index) {
    if (IsHexLatchBox(index)) {
        CheckHexText(Text1[index]);
    } else {
        CheckDecimalText(Text1[index]);
    }
    SyncSpinFromText(index);
    State().DataChanged = true;
}

void frmLatch::SyncSpinFromText(int index) {
    const std::string text = Trim(Text1[index]->text().toStdString());
    // An empty box parks its spin button at the bottom (0).
    const long value = text.empty() ? 0 : LatchBoxValue(text, IsHexLatchBox(index));
    textDrivesSpin_ = true;
    VScroll1[index]->SetValue(static_cast<int>(value));
    textDrivesSpin_ = false;
}

void frmLatch::VScroll1_Change(int index) {
    State().DataChanged = true;
    // While the user types, the box already holds the number; rewriting it from the spin
    // value would strip the digits being typed (a hexadecimal "00" becoming "0").
    if (textDrivesSpin_) return;
    Text1[index]->setText(
        QString::fromStdString(LatchBoxText(VScroll1[index]->Value(), IsHexLatchBox(index))));
}

static DialogRegistrar frmLatchRegistrar("frmLatch", [](ModuleState& s) {
    frmLatch form(s);
    form.exec();
});

}  // namespace gantrix
