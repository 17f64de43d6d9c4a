// SPDX-License-Identifier: Apache-2.0
#include "dialogs/frmIOLayout/frmIOLayout.h"

#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "common/StringTable.h"
#include "common/qt/DialogRegistry.h"
#include "common/qt/FormControls.h"
#include "dialogs/frmTypeNameSet/frmTypeNameSet.h"
#include "store/ParameterFiles.h"

namespace gantrix {
namespace {

constexpr int kRowsPerColumn = 16;
constexpr int kColumns = kSlotsPerPage / kRowsPerColumn;

QLabel* NewLabel(const QString& text, const QString& name, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setObjectName(name);
    return label;
}

// One group of the key legend: its caption, its kind letter and the captions of its keys.
QFrame* LegendGroup(int group, int captionId, int kindId, int firstKey, int keys, QWidget* parent) {
    auto* frame = new QFrame(parent);
    frame->setObjectName(QString("Group(%1)").arg(group));
    frame->setFrameShape(QFrame::StyledPanel);
    auto* grid = new QGridLayout(frame);
    grid->addWidget(NewLabel(ResText(captionId), QString("GroupCaption(%1)").arg(group), frame), 0,
                    0, keys, 1, Qt::AlignVCenter);
    grid->addWidget(NewLabel(ResText(kindId), QString("KindLabel(%1)").arg(group), frame), 0, 1,
                    keys, 1, Qt::AlignVCenter);
    for (int k = 0; k < keys; ++k) {
        const int key = firstKey + k;
        grid->addWidget(
            NewLabel(ResText(ids::KeyEmptySlot0 + key), QString("KeyCaption(%1)").arg(key), frame),
            k, 2);
    }
    return frame;
}

}  // namespace

frmIOLayout::frmIOLayout(ModuleState& state) : DialogBase(state, "frmIOLayout") {
    BuildControls();
    std::vector<QWidget*> order(Text1.begin(), Text1.end());
    SetFieldOrder(order);
    Guard([this] { Form_Load(); });
    if (!Unloaded()) FinishLoad();  // a failed load was reported and unloaded the dialog
}

void frmIOLayout::BuildControls() {
    setWindowTitle(ResText(ids::IoAssignmentTitle));

    auto* legend = new QHBoxLayout;
    legend->addWidget(LegendGroup(0, ids::EmptySlotGroup, ids::KindEmptySlot, 0, 5, this));
    legend->addWidget(LegendGroup(1, ids::InputModuleGroup, ids::KindInput, 5, 4, this));
    legend->addWidget(LegendGroup(2, ids::OutputModuleGroup, ids::KindOutput, 9, 4, this));
    legend->addWidget(LegendGroup(3, ids::FunctionModuleGroup, ids::KindFunction, 13, 4, this));
    Label1 = NewLabel(ResText(ids::SlotKeyHint), "Label1", this);

    // Four columns of sixteen slots, numbered down each column.
    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(6);
    grid->setVerticalSpacing(2);
    const int fieldWidth = fontMetrics().horizontalAdvance("F64") + 24;
    for (int c = 0; c < kColumns; ++c) {
        Label2[c] = NewLabel(ResText(ids::SlotNo), QString("Label2(%1)").arg(c), this);
        Label3[c] = NewLabel(ResText(ids::IoModule), QString("Label3(%1)").arg(c), this);
        grid->addWidget(Label2[c], 0, 3 * c, Qt::AlignRight);
        grid->addWidget(Label3[c], 0, 3 * c + 1, Qt::AlignHCenter);
        if (c + 1 < kColumns) grid->setColumnMinimumWidth(3 * c + 2, 18);
        for (int r = 0; r < kRowsPerColumn; ++r) {
            const int i = c * kRowsPerColumn + r;
            SlotNo[i] = NewLabel(QString(), QString("SlotNo(%1)").arg(i), this);
            Text1[i] = new QLineEdit(this);
            Text1[i]->setObjectName(QString("Text1(%1)").arg(i));
            Text1[i]->setFixedWidth(fieldWidth);
            Text1[i]->setAlignment(Qt::AlignCenter);
            LimitTyping(Text1[i], 3);
            // Codes come from the key entry only: no pasting or dropping of other text.
            Text1[i]->setContextMenuPolicy(Qt::NoContextMenu);
            Text1[i]->setAcceptDrops(false);
            SlotNo[i]->setBuddy(Text1[i]);
            grid->addWidget(SlotNo[i], r + 1, 3 * c, Qt::AlignRight);
            grid->addWidget(Text1[i], r + 1, 3 * c + 1, Qt::AlignHCenter);
            OnKeyPress(Text1[i], [this, i](int& key) { Text1_KeyPress(i, key); });
            connect(Text1[i], &QLineEdit::textChanged, this,
                    [this, i] { Guard([this, i] { Text1_Change(i); }); });
        }
    }
    // The page is told by the slot numbers; the marker only holds the page start.
    PageMarker = NewLabel("0", "PageMarker", this);
    PageMarker->hide();

    ChangePage = new QPushButton(ResText(ids::Next), this);
    ChangePage->setObjectName("ChangePage");
    Type = new QPushButton(ResText(ids::Model), this);
    Type->setObjectName("Type");
    MakeStandardButtons(OK, Cancel, &Clear);
    connect(ChangePage, &QPushButton::clicked, this,
            [this] { Guard([this] { ChangePage_Click(); }); });
    connect(Type, &QPushButton::clicked, this, [this] { Guard([this] { Type_Click(); }); });

    QHBoxLayout* buttons = StandardButtonRow();
    buttons->insertWidget(0, ChangePage);
    buttons->insertWidget(1, Type);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(legend);
    layout->addWidget(Label1);
    layout->addSpacing(6);
    layout->addLayout(grid);
    layout->addSpacing(6);
    layout->addLayout(buttons);
}

void frmIOLayout::Form_Load() {
    MergeParameterFile(State(), kParamWork);
    SetIOLayoutSettings();
}

void frmIOLayout::SetIOLayoutSettings() {
    slots_ = ReadIOLayout(State().image, ContextOf(State()));
    page_ = 0;
    FillPage();
}

void frmIOLayout::FillPage() {
    const int start = PageStart();
    for (int i = 0; i < kSlotsPerPage; ++i) {
        SlotNo[i]->setText(QString::number(start + i));
        Text1[i]->setText(QString::fromStdString(slots_.codes[start + i]));
        // A screen reader reads the slot the field shows on this page, and the keys it takes.
        NameField(
            Text1[i],
            FieldName({ResText(ids::SlotNo) + " " + SlotNo[i]->text(), ResText(ids::IoModule)}),
            ResText(ids::SlotKeyHint));
    }
    PageMarker->setText(QString::number(start));
    ChangePage->setText(ResText(page_ == 0 ? ids::Next : ids::IoAssignmentPrevious));
}

void frmIOLayout::StorePage() {
    const int start = PageStart();
    for (int i = 0; i < kSlotsPerPage; ++i)
        slots_.codes[start + i] = Text1[i]->text().toStdString();
}

void frmIOLayout::ChangeShowPage() {
    StorePage();
    page_ = 1 - page_;
    FillPage();
}

void frmIOLayout::ChangePage_Click() {
    // Refilling the fields is no edit.
    const bool changed = DataChangedFlag();
    ChangeShowPage();
    DataChangedFlag() = changed;
}

void frmIOLayout::ChangePageKey(bool) {
    // With two pages, Page Up and Page Down alike turn to the other one.
    ChangePage_Click();
}

void frmIOLayout::Type_Click() {
    // Model names exist for slots 0..63 only: on the second page the button does nothing.
    if (PageMarker->text() != "0") return;
    StorePage();
    frmTypeNameSet names(State(), slots_);
    names.exec();
    FillPage();
}

int frmIOLayout::FieldIndex(const QWidget* widget) const {
    for (int i = 0; i < kSlotsPerPage; ++i) {
        if (Text1[i] == widget) return i;
    }
    return -1;
}

void frmIOLayout::Text1_KeyPress(int index, int& keyAscii) {
    if (keyAscii == 27) return;  // Escape cancels the dialog
    if (keyAscii == 13) {
        keyAscii = 0;
        FocusNextField(Text1[index]);
        return;
    }
    const auto code = SlotCodeForKey(keyAscii);
    keyAscii = 0;
    if (!code) return;
    Text1[index]->setText(QString::fromStdString(*code));
    if (index + 1 < kSlotsPerPage) Text1[index + 1]->setFocus();
}

void frmIOLayout::Text1_Change(int index) {
    const QString text = Text1[index]->text();
    if (text.size() == 1) {
        if (const auto code = SlotCodeForKey(text.at(0).unicode())) {
            Text1[index]->setText(QString::fromStdString(*code));
        }
    }
    DataChangedFlag() = true;
}

bool frmIOLayout::FormKeyDown(QKeyEvent* event, QWidget* focus) {
    const int i = FieldIndex(focus);
    if (i >= 0 && (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier)) == 0) {
        switch (event->key()) {
            // Left and Right go along the row to the neighbouring column and stop at the
            // outer columns; Up and Down (the base) go along the slot numbers.
            case Qt::Key_Left:
                if (i >= kRowsPerColumn) Text1[i - kRowsPerColumn]->setFocus();
                return true;
            case Qt::Key_Right:
                if (i + kRowsPerColumn < kSlotsPerPage) Text1[i + kRowsPerColumn]->setFocus();
                return true;
            case Qt::Key_Delete:
                // The one way to take a single slot's module out again.
                Text1[i]->clear();
                return true;
            default:
                break;
        }
    }
    return DialogBase::FormKeyDown(event, focus);
}

void frmIOLayout::OK_Click() {
    StorePage();
    DialogBase::OK_Click();
}

bool frmIOLayout::CheckIOLayoutSettings() {
    const ErrorTables errors = ValidateIOLayout(slots_, State().image, ContextOf(State()));
    return ReportErrors(State(), errors, [](int) {});
}

void frmIOLayout::SaveSettings() {
    SaveIOLayoutSettings();
    SetIOValue();
}

void frmIOLayout::SaveIOLayoutSettings() {
    for (int n = 0; n < kNamedSlotCount; ++n) {
        if (slots_.codes[n].empty()) slots_.names[n].clear();
    }
    WriteIOLayout(slots_, State().image, ContextOf(State()));
}

void frmIOLayout::SetIOValue() {
    gantrix::SetIOValue(State().image, ContextOf(State()));
}

void frmIOLayout::SetDefaultOfIOLayout() {
    // Clear empties codes and names; whether the names are written still depends on the
    // model-name dialog having been opened.
    const bool namesEdited = slots_.namesEdited;
    slots_ = DefaultsIOLayout(ContextOf(State()));
    slots_.namesEdited = namesEdited;
    FillPage();
}

static DialogRegistrar frmIOLayoutRegistrar("frmIOLayout", [](ModuleState& s) {
    frmIOLayout form(s);
    form.exec();
});

}  // namespace gantrix
