// SPDX-License-Identifier: Apache-2.0
#include "dialogs/frmTypeNameSet/frmTypeNameSet.h"

#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "common/StringTable.h"
#include "common/qt/FormControls.h"

namespace gantrix {
namespace {

constexpr int kLastRow = kNamesPerPage - 1;

}  // namespace

frmTypeNameSet::frmTypeNameSet(ModuleState& state, IOLayoutFields& assignment)
    : FormBase(state, "frmTypeNameSet"), slots_(assignment) {
    BuildControls();
    Guard([this] { Form_Load(); });
    Text1[0]->setFocus();
}

void frmTypeNameSet::BuildControls() {
    setWindowTitle(ResText(ids::ModuleNameTitle));
    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(10);
    grid->setVerticalSpacing(4);
    const int headers[3] = {ids::SlotNo, ids::Module, ids::ModuleNameColumn};
    for (int c = 0; c < 3; ++c) {
        Label1[c] = new QLabel(ResText(headers[c]), this);
        Label1[c]->setObjectName(QString("Label1(%1)").arg(c));
        grid->addWidget(Label1[c], 0, c, c == 0 ? Qt::AlignRight : Qt::AlignLeft);
    }
    const int fieldWidth = fontMetrics().horizontalAdvance("F64") + 24;
    for (int row = 0; row < kNamesPerPage; ++row) {
        Label2[row] = new QLabel(this);
        Label2[row]->setObjectName(QString("Label2(%1)").arg(row));
        Text1[row] = new QLineEdit(this);
        Text1[row]->setObjectName(QString("Text1(%1)").arg(row));
        Text1[row]->setFixedWidth(fieldWidth);
        Text1[row]->setAlignment(Qt::AlignCenter);
        LimitTyping(Text1[row], 3);
        Text1[row]->setContextMenuPolicy(Qt::NoContextMenu);
        Text1[row]->setAcceptDrops(false);
        Combo1[row] = new QComboBox(this);
        Combo1[row]->setObjectName(QString("Combo1(%1)").arg(row));
        Combo1[row]->setEditable(true);
        // The list offers names; typing never adds to it or completes from it.
        Combo1[row]->setInsertPolicy(QComboBox::NoInsert);
        Combo1[row]->setCompleter(nullptr);
        Combo1[row]->setMinimumContentsLength(kModelNameLength + 2);
        Combo1[row]->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        Combo1[row]->setMaxVisibleItems(20);
        Label2[row]->setBuddy(Text1[row]);
        grid->addWidget(Label2[row], row + 1, 0, Qt::AlignRight);
        grid->addWidget(Text1[row], row + 1, 1);
        grid->addWidget(Combo1[row], row + 1, 2);

        OnKeyPress(Text1[row], [this, row](int& key) { Text1_KeyPress(row, key); });
        OnKeyPress(Combo1[row], [this, row](int& key) { Combo1_KeyPress(row, key); });
        connect(Text1[row], &QLineEdit::textChanged, this,
                [this, row] { Guard([this, row] { Text1_Change(row); }); });
        connect(Combo1[row], &QComboBox::editTextChanged, this,
                [this, row] { Guard([this, row] { Combo1_Change(row); }); });
    }

    ChangePage[0] = new QPushButton(ResText(ids::ModuleNamePrevious), this);
    ChangePage[1] = new QPushButton(ResText(ids::Next), this);
    Close = new QPushButton(ResText(ids::Close), this);
    Close->setObjectName("Close");
    auto* buttons = new QHBoxLayout;
    for (int i = 0; i < 2; ++i) {
        ChangePage[i]->setObjectName(QString("ChangePage(%1)").arg(i));
        buttons->addWidget(ChangePage[i]);
        connect(ChangePage[i], &QPushButton::clicked, this,
                [this, i] { Guard([this, i] { ChangePage_Click(i); }); });
    }
    buttons->addStretch();
    buttons->addWidget(Close);
    connect(Close, &QPushButton::clicked, this, [this] { Guard([this] { Close_Click(); }); });
    for (QPushButton* button : findChildren<QPushButton*>()) {
        // Enter presses the focused button (FormBase), never a dialog default.
        button->setAutoDefault(false);
        button->setDefault(false);
    }

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    layout->addSpacing(8);
    layout->addLayout(buttons);
}

void frmTypeNameSet::Form_Load() {
    slots_.namesEdited = true;
    pageStart_ = 0;
    ShowPage();
    changed_ = false;
}

void frmTypeNameSet::AddName(const std::string& slotCode, int row) {
    const bool showing = showing_;
    showing_ = true;
    Combo1[row]->clear();
    for (const std::string& name : ModelNamesFor(slotCode)) {
        Combo1[row]->addItem(QString::fromStdString(name));
    }
    Combo1[row]->setCurrentIndex(-1);  // offered, not chosen
    showing_ = showing;
}

void frmTypeNameSet::ShowPage() {
    showing_ = true;
    for (int row = 0; row < kNamesPerPage; ++row) {
        const int slot = pageStart_ + row;
        Label2[row]->setText(QString::number(slot));
        // A screen reader reads the slot of the row and the column of the field.
        const QString slotName = ResText(ids::SlotNo) + " " + Label2[row]->text();
        NameField(Text1[row], FieldName({slotName, ResText(ids::Module)}));
        NameField(Combo1[row], FieldName({slotName, ResText(ids::ModuleNameColumn)}));
        Text1[row]->setText(QString::fromStdString(slots_.codes[slot]));
        AddName(slots_.codes[slot], row);
        Combo1[row]->setEditText(QString::fromStdString(slots_.names[slot]));
    }
    showing_ = false;
    // The pages stop at the first and the last rather than wrap.
    ChangePage[0]->setEnabled(pageStart_ > 0);
    ChangePage[1]->setEnabled(pageStart_ < kLastNamePageStart);
}

void frmTypeNameSet::StorePage() {
    for (int row = 0; row < kNamesPerPage; ++row) {
        slots_.codes[pageStart_ + row] = Text1[row]->text().toStdString();
        slots_.names[pageStart_ + row] = Combo1[row]->currentText().toStdString();
    }
}

void frmTypeNameSet::ChangeShowPage(bool forward) {
    StorePage();
    pageStart_ = NextNamePageStart(pageStart_, forward);
    ShowPage();
}

void frmTypeNameSet::ChangePage_Click(int index) {
    ChangeShowPage(index == 1);
}

void frmTypeNameSet::Close_Click() {
    StorePage();
    if (changed_) State().DataChanged = true;
    Unload(true);
}

void frmTypeNameSet::reject() {
    Guard([this] { Close_Click(); });
}

// Enter: the next row's slot code, from the last row Close.
void frmTypeNameSet::FocusNextRow(int row) {
    if (row < kLastRow) {
        Text1[row + 1]->setFocus();
    } else {
        Close->setFocus();
    }
}

void frmTypeNameSet::Text1_KeyPress(int row, int& keyAscii) {
    if (keyAscii == 27) return;  // Escape closes
    if (keyAscii == 13) {
        keyAscii = 0;
        FocusNextRow(row);
        return;
    }
    const auto code = SlotCodeForKey(keyAscii);
    keyAscii = 0;
    if (!code) return;
    Text1[row]->setText(QString::fromStdString(*code));
    if (row < kLastRow) Text1[row + 1]->setFocus();
}

void frmTypeNameSet::Text1_Change(int row) {
    if (showing_) return;
    const QString text = Text1[row]->text();
    if (text.size() == 1) {
        if (const auto code = SlotCodeForKey(text.at(0).unicode())) {
            Text1[row]->setText(QString::fromStdString(*code));
            return;  // the change of that text does the rest
        }
    }
    // Another module: the models offered change and the old name no longer fits.
    AddName(text.toStdString(), row);
    showing_ = true;
    Combo1[row]->setEditText(QString());
    showing_ = false;
    changed_ = true;
}

void frmTypeNameSet::Combo1_KeyPress(int row, int& keyAscii) {
    if (keyAscii == 27) return;
    if (keyAscii == 13) {
        keyAscii = 0;
        FocusNextRow(row);
        return;
    }
    // A slot without a module has no model name.
    if (Text1[row]->text().isEmpty() || !IsModelNameKey(keyAscii)) keyAscii = 0;
}

void frmTypeNameSet::Combo1_Change(int row) {
    if (showing_) return;
    QLineEdit* edit = Combo1[row]->lineEdit();
    TextBoxState box{edit->text().toStdString(), edit->cursorPosition()};
    if (Text1[row]->text().isEmpty()) {
        box = {};  // a pasted name for a slot without a module does not stay either
    } else {
        FilterModelName(box);
    }
    const QString cleaned = QString::fromStdString(box.text);
    if (cleaned != edit->text()) {
        edit->setText(cleaned);
        edit->setCursorPosition(box.caret);
    }
}

int frmTypeNameSet::RowOf(const QWidget* widget, bool& inName) const {
    for (const QWidget* w = widget; w && w != this; w = w->parentWidget()) {
        for (int row = 0; row < kNamesPerPage; ++row) {
            if (w == Text1[row] || w == Combo1[row]) {
                inName = w == Combo1[row];
                return row;
            }
        }
    }
    return -1;
}

void frmTypeNameSet::FocusRow(int row, bool name) {
    if (name) {
        Combo1[row]->setFocus();
    } else {
        Text1[row]->setFocus();
    }
}

bool frmTypeNameSet::FormKeyDown(QKeyEvent* event, QWidget* focus) {
    switch (event->key()) {
        case Qt::Key_End:
            Close_Click();
            return true;
        case Qt::Key_PageUp:
        case Qt::Key_PageDown:
            ChangeShowPage(event->key() == Qt::Key_PageDown);
            return true;
        default:
            break;
    }
    // Alt+Down opens a name list; with modifiers the keys keep their own meaning.
    if ((event->modifiers() & (Qt::ControlModifier | Qt::AltModifier)) != 0) return false;
    bool inName = false;
    const int row = RowOf(focus, inName);
    if (row < 0) return false;
    // A grid of two columns: Up and Down go along a column (Down from the last row to
    // Close), Right goes from a module to its name, Left from the start of a name back to
    // its module; elsewhere in a name Left and Right move the caret.
    switch (event->key()) {
        case Qt::Key_Up:
            if (row > 0) FocusRow(row - 1, inName);
            return true;
        case Qt::Key_Down:
            if (row < kLastRow) {
                FocusRow(row + 1, inName);
            } else {
                Close->setFocus();
            }
            return true;
        case Qt::Key_Right:
            if (inName) return false;
            FocusRow(row, true);
            return true;
        case Qt::Key_Left:
            if (!inName) return true;
            if (Combo1[row]->lineEdit()->cursorPosition() > 0) return false;
            FocusRow(row, false);
            return true;
        default:
            return false;
    }
}

}  // namespace gantrix
