// SPDX-License-Identifier: Apache-2.0
#include "dialogs/frmMINI/frmMINI.h"

#include <QFontMetrics>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>
#include <cctype>
#include <string_view>

#include "common/DialogContext.h"
#include "common/InputRoutines.h"
#include "common/StringTable.h"
#include "common/qt/DialogRegistry.h"
#include "common/qt/FormControls.h"
#include "common/qt/SpinButton.h"

namespace gantrix {
namespace {

// The widest text each field shows, for its cell's width.
constexpr const char* kWidestText[kMiniFieldsPerRow] = {
    "FFF0", "MINI-S3", "------", "W1FFF", "W1FFF", "32", "Link", "Clear", "W1FFF", "W1FFF", "Hold"};

// The names a digit key writes into a selection cell, by position; empty for the other cells.
std::vector<std::string> ChoicesOf(int field) {
    const MiniNames& n = MiniName();
    switch (field) {
        case kModel:
            return {n.mini, n.miniS3};
        case kResponse:
            return {n.link, n.cpu};
        case kDataClear:
            return {n.hold, n.clear};
        case kLineError:
            return {n.test, n.hold, n.off};
        default:
            return {};
    }
}

bool IsDigit(int key) {
    return key >= '0' && key <= '9';
}

}  // namespace

frmMINI::frmMINI(ModuleState& state) : DialogBase(state, "frmMINI") {
    setWindowTitle(ResText(ids::MiniTitle));
    BuildControls();
    rPoints_ = State().image.GetParamWord(68);
    Guard([this] { SetMINISettings(); });
    FinishLoad();
}

void frmMINI::BuildControls() {
    const QFontMetrics metrics(font());
    auto label = [this](const QString& name, const QString& text) {
        auto* l = new QLabel(text, this);
        l->setObjectName(name);
        return l;
    };

    Label1[0] = label("Label1(0)", ResText(ids::NumberOfModules));
    Label1[1] = label("Label1(1)", ResText(ids::Range0To8));
    Text1 = new QLineEdit(this);
    Text1->setObjectName("Text1");
    Text1->setFixedWidth(metrics.horizontalAdvance(QStringLiteral("88")) + 12);
    Text1->setAlignment(Qt::AlignRight);
    VScroll1 = new SpinButton(this);
    VScroll1->setObjectName("VScroll1");
    VScroll1->SetRange(9, 0);  // the upper arrow raises the count
    connect(Text1, &QLineEdit::textChanged, this, [this] { Guard([this] { Text1_Change(); }); });
    connect(VScroll1, &SpinButton::Change, this,
            [this](int value) { Guard([this, value] { VScroll1_Change(value); }); });
    OnKeyPress(Text1, [this](int& key) { Text1_KeyPress(key); });

    auto* count = new QHBoxLayout;
    count->setSpacing(4);
    count->addWidget(Label1[0]);
    count->addSpacing(8);
    count->addWidget(Text1);
    count->addWidget(VScroll1);
    count->addWidget(Label1[1]);
    count->addStretch();

    auto* table = new QGridLayout;
    table->setHorizontalSpacing(3);
    table->setVerticalSpacing(2);
    Label2[11] = label("Label2(11)", "");
    table->addWidget(Label2[11], 0, 0);
    for (int f = 0; f < kMiniFieldsPerRow; ++f) {
        Label2[f] = label(QString("Label2(%1)").arg(f), ResText(ColumnCaption(f)));
        Label2[f]->setAlignment(Qt::AlignHCenter | Qt::AlignBottom);
        Label2[f]->setWordWrap(true);
        table->addWidget(Label2[f], 0, 1 + f);
    }
    for (int m = 1; m <= kMiniModules; ++m) {
        Label2[11 + m] = label(QString("Label2(%1)").arg(11 + m), "");
        Label2[11 + m]->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        Label2[11 + m]->setMinimumWidth(metrics.horizontalAdvance(QStringLiteral("8")) + 8);
        table->addWidget(Label2[11 + m], m, 0);
        for (int f = 0; f < kMiniFieldsPerRow; ++f) {
            const int i = kMiniFieldsPerRow * (m - 1) + f;
            auto* cell = new QLineEdit(this);
            cell->setObjectName(QString("Text2(%1)").arg(i));
            cell->setFixedWidth(metrics.horizontalAdvance(QString(kWidestText[f])) + 14);
            cell->setEnabled(false);  // no row until its module number shows
            table->addWidget(cell, m, 1 + f, Qt::AlignHCenter);
            Text2[i] = cell;
            connect(cell, &QLineEdit::textChanged, this,
                    [this, i] { Guard([this, i] { Text2_Change(i); }); });
            OnKeyPress(cell, [this, i](int& key) { Text2_KeyPress(i, key); });
        }
    }
    // A caption wraps between its words rather than widen its column beyond the cells, but
    // never cuts a word.
    for (int f = 0; f < kMiniFieldsPerRow; ++f) {
        int widest = Text2[f]->width();
        for (const QString& word : Label2[f]->text().split(' ', Qt::SkipEmptyParts)) {
            widest = std::max(widest, metrics.horizontalAdvance(word) + 8);
        }
        Label2[f]->setFixedWidth(widest);
    }

    auto* help = new QGroupBox(this);
    help->setObjectName("Frame1");
    auto* helpLines = new QVBoxLayout(help);
    helpLines->setSpacing(2);
    for (int j = 0; j < 3; ++j) {
        Label3[j] = label(QString("Label3(%1)").arg(j), "");
        // The box keeps its height whichever field's lines it shows.
        Label3[j]->setMinimumHeight(metrics.height());
        helpLines->addWidget(Label3[j]);
    }

    MakeStandardButtons(OK, Cancel, &Clear);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(count);
    layout->addSpacing(6);
    layout->addLayout(table);
    layout->addSpacing(6);
    layout->addWidget(help);
    layout->addLayout(StandardButtonRow());
    layout->setSizeConstraint(QLayout::SetFixedSize);

    std::vector<QWidget*> order = {Text1};
    order.insert(order.end(), Text2.begin(), Text2.end());
    SetFieldOrder(order);
    NameFields();
}

// What a screen reader reads for each field: the count with its range; a cell by its module and
// column, with the help lines that the dialog shows for it as its description.
void frmMINI::NameFields() {
    NameField(Text1, Label1[0]->text(), RangeOfCaption(Label1[1]->text()));
    NameField(VScroll1, Label1[0]->text(), RangeOfCaption(Label1[1]->text()));
    Label1[0]->setBuddy(Text1);
    for (int i = 0; i < kMiniCells; ++i) {
        const int f = i % kMiniFieldsPerRow;
        const QString module =
            ResText(ids::Module) + " " + QString::number(i / kMiniFieldsPerRow + 1);
        QStringList help;
        const std::vector<int> lines = HelpLines(f);
        for (size_t j = 1; j < lines.size(); ++j) help << ResText(lines[j]).simplified();
        NameField(Text2[i], FieldName({module, ResText(ColumnCaption(f))}), help.join(", "));
    }
}

int frmMINI::CellIndex(const QObject* widget) const {
    for (int i = 0; i < kMiniCells; ++i) {
        if (Text2[i] == widget) return i;
    }
    return -1;
}

bool frmMINI::RowExists(int m) const {
    return !Label2[11 + m]->text().isEmpty();
}

MINIFields frmMINI::Fields() const {
    MINIFields f;
    f.Text1 = Text1->text().toStdString();
    for (int i = 0; i < kMiniCells; ++i) f.Text2[i] = Text2[i]->text().toStdString();
    return f;
}

void frmMINI::SetMINISettings() {
    const MINIFields f = ReadMINI(State().image, ContextOf(State()));
    Text1->setText(Q(f.Text1));  // makes the rows
    for (int i = 0; i < kMiniCells; ++i) {
        if (RowExists(i / kMiniFieldsPerRow + 1)) Text2[i]->setText(Q(f.Text2[i]));
    }
}

bool frmMINI::CheckMINISettings() {
    ResetErrorColor(Text1);
    for (QLineEdit* cell : Text2) ResetErrorColor(cell);
    const ErrorTables errors = ValidateMINI(Fields(), ContextOf(State()), rPoints_);
    return ReportErrors(State(), errors, [](int control) { SetErrorColor(control); });
}

void frmMINI::SaveMINISettings() {
    WriteMINI(Fields(), State().image, ContextOf(State()));
}

void frmMINI::SetDefaultOfMINI() {
    Text1->setText(Q(DefaultsMINI().Text1));
    VScroll1->SetValue(0);
}

// The count makes the rows. An empty box stands for no count yet (the user is about to type
// one), so the rows stay as they are until a number is there; the check asks for it.
void frmMINI::Text1_Change() {
    CheckDecimalText(Text1);
    const std::string text = Text1->text().toStdString();
    if (!text.empty()) {
        int rows = 0;
        while (rows < kMiniModules && RowExists(rows + 1)) ++rows;
        const int newRows = MiniRowsAfterCount(text, rows);
        for (int m = 1; m <= kMiniModules; ++m) {
            SetModuleLabel(m, m <= newRows ? QString::number(m) : QString());
        }
        const long value = ValueOf(text);
        spinByCode_ = true;
        VScroll1->SetValue(static_cast<int>(std::min<long>(value, 9)));
        spinByCode_ = false;
    }
    DataChanged = true;
}

// The box holds one digit: a digit typed replaces it.
void frmMINI::Text1_KeyPress(int& keyAscii) {
    switch (CheckDecimalKey(keyAscii)) {
        case 2:
            keyAscii = 0;
            FocusNextField(Text1);
            return;
        case 1:
            if (IsDigit(keyAscii)) {
                Text1->setText(QString(QChar(keyAscii)));
                keyAscii = 0;
            }
            return;
        default:
            keyAscii = 0;
    }
}

void frmMINI::VScroll1_Change(int value) {
    if (spinByCode_) return;
    Text1->setText(QString::number(value));
    DataChanged = true;
}

void frmMINI::SetModuleLabel(int m, const QString& text) {
    QLabel* number = Label2[11 + m];
    if (number->text() == text) return;
    number->setText(text);
    Label2_Change(m);
}

void frmMINI::Label2_Change(int m) {
    const bool exists = RowExists(m);
    const auto values = NewRowValues();
    for (int f = 0; f < kMiniFieldsPerRow; ++f) {
        QLineEdit* cell = Text2[kMiniFieldsPerRow * (m - 1) + f];
        cell->setText(exists ? Q(values[f]) : QString());
        cell->setEnabled(exists);
    }
    DataChanged = true;
}

void frmMINI::Text2_Change(int index) {
    const int f = index % kMiniFieldsPerRow;
    const int row = index - f;
    QLineEdit* cell = Text2[index];
    const std::string model = Text2[row + kModel]->text().toStdString();
    if (f == kStartIo) {
        CheckHexText(cell);
    } else if (f == kRetries || (f == kStations && model == MiniName().mini)) {
        CheckDecimalText(cell);
    } else {
        const QString text = Q(NormaliseCell(f, cell->text().toStdString(), model));
        if (text != cell->text()) {
            const int caret = cell->cursorPosition();
            cell->setText(text);
            cell->setCursorPosition(std::min<int>(caret, static_cast<int>(text.size())));
        }
    }
    if (f == kModel)
        Text2[row + kStations]->setText(Q(StationsForModel(cell->text().toStdString())));
    DataChanged = true;
}

// Enter moves to the next cell; the selection cells take the digit of a name and show the
// name; the start I/O cell takes hexadecimal digits, the stations of a MINI and the retries
// decimal ones; the device cells take the device letters and the digits of decimal and
// hexadecimal numbers, in either case, shown in capitals.
void frmMINI::Text2_KeyPress(int index, int& keyAscii) {
    const int f = index % kMiniFieldsPerRow;
    QLineEdit* cell = Text2[index];
    if (keyAscii == 13) {
        keyAscii = 0;
        FocusNextField(cell);
        return;
    }
    if (keyAscii < 32 || keyAscii == 127) return;  // Backspace, Delete, control characters
    if (keyAscii > 127) {                          // no cell takes a character outside ASCII
        keyAscii = 0;
        return;
    }
    const std::vector<std::string> choices = ChoicesOf(f);
    if (!choices.empty()) {
        const int position = keyAscii - '0';
        if (position >= 0 && position < static_cast<int>(choices.size())) {
            cell->setText(Q(choices[position]));
        }
        keyAscii = 0;
        return;
    }
    const char upper = static_cast<char>(std::toupper(keyAscii));
    bool accepted = false;
    switch (f) {
        case kStartIo:
            accepted = std::isxdigit(keyAscii) != 0;
            break;
        case kStations:
            accepted = IsDigit(keyAscii) && Text2[index - f + kModel]->text() == Q(MiniName().mini);
            break;
        case kRetries:
            accepted = IsDigit(keyAscii);
            break;
        default:  // device cells
            accepted =
                std::string_view("XYMLSBTCDWR0123456789AEF").find(upper) != std::string_view::npos;
            break;
    }
    const int kept = static_cast<int>(cell->text().size() - cell->selectedText().size());
    if (!accepted || kept >= MaxTypedLength(f)) {
        keyAscii = 0;
        return;
    }
    keyAscii = upper;
}

void frmMINI::Text2_GotFocus(int index) {
    const std::vector<int> lines = HelpLines(index % kMiniFieldsPerRow);
    for (int j = 0; j < 3; ++j) {
        Label3[j]->setText(j < static_cast<int>(lines.size()) ? ResText(lines[j]) : QString());
    }
}

// Up and Down move within a column, to the same field of the row above or below; Up from
// the first row goes to the number of modules, Down from the last row stays. Left and Right
// (and Up and Down outside the table) follow the field order.
bool frmMINI::FormKeyDown(QKeyEvent* event, QWidget* focus) {
    const int index = CellIndex(focus);
    const int key = event->key();
    if (index >= 0 && (key == Qt::Key_Up || key == Qt::Key_Down)) {
        const int target = index + (key == Qt::Key_Down ? kMiniFieldsPerRow : -kMiniFieldsPerRow);
        if (target < 0) {
            Text1->setFocus();
        } else if (target < kMiniCells && Text2[target]->isEnabled()) {
            Text2[target]->setFocus();
        }
        return true;
    }
    return DialogBase::FormKeyDown(event, focus);
}

bool frmMINI::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusIn) {
        const int index = CellIndex(watched);
        if (index >= 0) Guard([this, index] { Text2_GotFocus(index); });
    }
    return DialogBase::eventFilter(watched, event);
}

static DialogRegistrar frmMINIRegistrar("frmMINI", [](ModuleState& s) {
    frmMINI form(s);
    form.exec();
});

}  // namespace gantrix
