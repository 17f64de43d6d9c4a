// SPDX-License-Identifier: Apache-2.0
#include "dialogs/frmMemory/frmMemory.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>

#include "common/DialogContext.h"
#include "common/InputRoutines.h"
#include "common/StringTable.h"
#include "common/qt/DialogRegistry.h"
#include "common/qt/FormControls.h"
#include "common/qt/SpinButton.h"

namespace gantrix {
namespace {

QLabel* NewLabel(QWidget* parent, const QString& name) {
    auto* label = new QLabel(parent);
    label->setObjectName(name);
    return label;
}

// A text box with its spin button beside it, as one cell of a grid.
QWidget* FieldBox(QLineEdit* edit, SpinButton* spin) {
    auto* box = new QWidget(edit->parentWidget());
    auto* layout = new QHBoxLayout(box);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(1);
    edit->setParent(box);
    spin->setParent(box);
    layout->addWidget(edit);
    layout->addWidget(spin);
    return box;
}

// The cells of the program grid: the sequence field of each row and its microcomputer field.
constexpr int kRowSequence[4] = {kMain, kSub1, kSub2, kSub3};
constexpr int kRowMicro[2] = {kMicro, kSubMicro};

}  // namespace

frmMemory::frmMemory(ModuleState& state) : DialogBase(state, "frmMemory") {
    visible_ = VisibleMemoryControls(state.CpuType);
    BuildControls();
    Form_Load();
    if (Unloaded()) return;  // the load failed and was reported
    FinishLoad();
}

void frmMemory::BuildControls() {
    setWindowTitle(ResText(ids::MemoryCapacitySetting));
    const auto newEdit = [this](const QString& name, int digits) {
        auto* edit = new QLineEdit(this);
        edit->setObjectName(name);
        LimitTyping(edit, digits);
        edit->setAlignment(Qt::AlignRight);
        edit->setFixedWidth(edit->fontMetrics().horizontalAdvance(QString(digits + 1, '0')) + 12);
        return edit;
    };
    const auto newSpin = [this](const QString& name, int top) {
        auto* spin = new SpinButton(this);
        spin->setObjectName(name);
        spin->SetRange(top, 0);  // the top value at the top: the up arrow raises the value
        spin->SetSmallChange(1);
        return spin;
    };
    for (int i = 0; i < 6; ++i) {
        Text1[i] = newEdit(QString("Text1(%1)").arg(i), 2);
        VScroll1[i] = newSpin(QString("VScroll1(%1)").arg(i), 99);
    }
    Text2 = newEdit("Text2", 2);
    Text3 = newEdit("Text3", 2);
    Text4 = newEdit("Text4", 1);
    VScroll2 = newSpin("VScroll2", 99);
    VScroll3 = newSpin("VScroll3", 99);
    VScroll4 = newSpin("VScroll4", 9);
    Text5 = newEdit("Text5", 3);
    Text5->setReadOnly(true);
    Text5->setFocusPolicy(Qt::NoFocus);

    SanpFlag = new QCheckBox(this);
    SanpFlag->setObjectName("SanpFlag");
    SlatchDataFlag = new QCheckBox(this);
    SlatchDataFlag->setObjectName("SlatchDataFlag");
    SlatchFileFlag = new QCheckBox(this);
    SlatchFileFlag->setObjectName("SlatchFileFlag");

    MakeStandardButtons(OK, Cancel, &Clear);

    LayOut();  // the captions follow in Form_Load, once the limits are known

    for (int control = 0; control < kMemoryControlCount; ++control) {
        connect(TextOf(control), &QLineEdit::textChanged, this,
                [this, control] { Guard([this, control] { Text_Change(control); }); });
        connect(ScrollOf(control), &SpinButton::Change, this,
                [this, control] { Guard([this, control] { VScroll_Change(control); }); });
        QLineEdit* box = TextOf(control);
        OnKeyPress(box, [this, box](int& key) { Text_KeyPress(box, key); });
    }
    for (QCheckBox* flag : {SanpFlag, SlatchDataFlag, SlatchFileFlag}) {
        connect(flag, &QCheckBox::toggled, this, [this] { Guard([this] { TraceLatch_Click(); }); });
        OnKeyPress(flag, [this, flag](int& key) { Flag_KeyPress(flag, key); });
    }

    // Enter and the arrow keys walk the program fields row by row, then the file register and
    // its latch boxes, then the comments: Enter in the last latch box goes to the comment.
    std::vector<QWidget*> order(Text1.begin(), Text1.end());
    for (QWidget* w : std::initializer_list<QWidget*>{Text4, SanpFlag, SlatchDataFlag,
                                                      SlatchFileFlag, Text2, Text3}) {
        order.push_back(w);
    }
    SetFieldOrder(std::move(order));
}

void frmMemory::LayOut() {
    const std::string& cpu = State().CpuType;
    const bool a0j = cpu == "A0J";

    // Program size: a column of sequence fields and one of microcomputer fields, a row per
    // program. "A0J" has one sequence field and only a marker for its microcomputer program.
    programFrame_ = new QGroupBox(this);
    programFrame_->setObjectName("ProgramFrame");
    auto* program = new QGridLayout(programFrame_);
    program->setHorizontalSpacing(6);
    SequenceHeader = NewLabel(programFrame_, "SequenceHeader");
    MicroHeader = NewLabel(programFrame_, "MicroHeader");
    MicroState = NewLabel(programFrame_, "MicroState");
    sequenceRange_ = NewLabel(programFrame_, "SequenceRange");
    for (int r = 0; r < 4; ++r) {
        ProgramRow[r] = NewLabel(programFrame_, QString("ProgramRow(%1)").arg(r));
        stepUnit_[r] = NewLabel(programFrame_, QString("StepUnit(%1)").arg(r));
    }
    for (int r = 0; r < 2; ++r)
        byteUnit_[r] = NewLabel(programFrame_, QString("ByteUnit(%1)").arg(r));
    std::array<QWidget*, 6> cells{};
    for (int i = 0; i < 6; ++i) {
        Text1[i]->setParent(programFrame_);
        VScroll1[i]->setParent(programFrame_);
        cells[i] = FieldBox(Text1[i], VScroll1[i]);
    }
    // What the CPU type does not show is left out of the grid and hidden.
    std::vector<QWidget*> placed;
    const auto place = [&](QWidget* w, int row, int column, int columnSpan = 1) {
        program->addWidget(w, row, column, 1, columnSpan);
        placed.push_back(w);
    };
    if (a0j) {
        place(SequenceHeader, 0, 0);
        place(cells[kMain], 0, 1);
        place(stepUnit_[0], 0, 2);
        place(sequenceRange_, 0, 3);
        place(MicroHeader, 1, 0);
        place(MicroState, 1, 1, 3);
    } else {
        place(SequenceHeader, 0, 1, 2);
        place(MicroHeader, 0, 3, 2);
        for (int r = 0; r < 4; ++r) {
            if (!visible_.field[kRowSequence[r]]) continue;
            place(ProgramRow[r], r + 1, 0);
            place(cells[kRowSequence[r]], r + 1, 1);
            place(stepUnit_[r], r + 1, 2);
            if (r < 2 && visible_.field[kRowMicro[r]]) {
                place(cells[kRowMicro[r]], r + 1, 3);
                place(byteUnit_[r], r + 1, 4);
            }
        }
    }
    // Spare width of the headers goes behind the units, not between a field and its unit.
    program->setColumnStretch(2, 1);
    program->setColumnStretch(4, 1);
    for (QWidget* w : programFrame_->findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
        if (std::find(placed.begin(), placed.end(), w) == placed.end()) w->hide();
    }

    // A capacity field with its unit and range.
    const auto capacityFrame = [this](const QString& name, QLineEdit* edit, SpinButton* spin,
                                      int unitId, QLabel** range, QLabel** points) {
        auto* frame = new QGroupBox(this);
        frame->setObjectName(name);
        auto* grid = new QGridLayout(frame);
        edit->setParent(frame);
        spin->setParent(frame);
        grid->addWidget(FieldBox(edit, spin), 0, 0);
        auto* unit = NewLabel(frame, name + "Unit");
        unit->setText(ResText(unitId));
        grid->addWidget(unit, 0, 1);
        *range = NewLabel(frame, name + "Range");
        (*range)->setBuddy(edit);
        grid->addWidget(*range, 0, 2);
        if (points != nullptr) {
            *points = NewLabel(frame, name + "Points");
            grid->addWidget(*points, 1, 0, 1, 3);
        }
        grid->setColumnStretch(3, 1);
        return frame;
    };
    QLabel* commentRange = nullptr;
    QLabel* extCommentRange = nullptr;
    commentFrame_ =
        capacityFrame("CommentFrame", Text2, VScroll2, ids::KBytes, &commentRange, &CommentPoints);
    commentRange->setText(ResText(ids::CommentRange));
    extCommentFrame_ = capacityFrame("ExtCommentFrame", Text3, VScroll3, ids::KBytes,
                                     &extCommentRange, &ExtCommentPoints);
    extCommentRange->setText(ResText(ids::ExtensionCommentRange));
    fileRegisterFrame_ = capacityFrame("FileRegisterFrame", Text4, VScroll4, ids::KPoints,
                                       &FileRegisterRange, nullptr);

    // Sampling trace and status latch, with the hint that space or a click switches them.
    traceLatchFrame_ = new QWidget(this);
    traceLatchFrame_->setObjectName("TraceLatchFrame");
    auto* traceLatch = new QVBoxLayout(traceLatchFrame_);
    traceLatch->setContentsMargins(0, 0, 0, 0);
    SanpFlag->setParent(traceLatchFrame_);
    traceLatch->addWidget(SanpFlag);
    statusLatchFrame_ = new QGroupBox(traceLatchFrame_);
    statusLatchFrame_->setObjectName("StatusLatchFrame");
    auto* statusLatch = new QHBoxLayout(statusLatchFrame_);
    SlatchDataFlag->setParent(statusLatchFrame_);
    SlatchFileFlag->setParent(statusLatchFrame_);
    statusLatch->addWidget(SlatchDataFlag);
    statusLatch->addWidget(SlatchFileFlag);
    statusLatch->addStretch();
    traceLatch->addWidget(statusLatchFrame_);
    traceLatchHint_ = NewLabel(traceLatchFrame_, "TraceLatchHint");
    traceLatchHint_->setWordWrap(true);
    traceLatch->addWidget(traceLatchHint_);

    totalFrame_ = new QGroupBox(this);
    totalFrame_->setObjectName("TotalFrame");
    auto* total = new QHBoxLayout(totalFrame_);
    Text5->setParent(totalFrame_);
    total->addWidget(Text5);
    auto* totalUnit = NewLabel(totalFrame_, "TotalUnit");
    totalUnit->setText(ResText(ids::KBytes));
    total->addWidget(totalUnit);
    total->addStretch();

    // Two columns: the program and what depends on the file register on the left, the
    // comments and the resulting total on the right.
    auto* left = new QVBoxLayout;
    left->addWidget(programFrame_);
    left->addWidget(fileRegisterFrame_);
    left->addWidget(traceLatchFrame_);
    left->addStretch();
    auto* right = new QVBoxLayout;
    right->addWidget(commentFrame_);
    right->addWidget(extCommentFrame_);
    right->addWidget(totalFrame_);
    right->addStretch();
    auto* columns = new QHBoxLayout;
    columns->addLayout(left, 3);
    columns->addLayout(right, 2);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(columns);
    layout->addLayout(StandardButtonRow());
    layout->setSizeConstraint(QLayout::SetFixedSize);

    // Hidden fields are hidden themselves too, so that nothing gives them the focus.
    for (int control = 0; control < kMemoryControlCount; ++control) {
        TextOf(control)->setVisible(visible_.field[control]);
        ScrollOf(control)->setVisible(visible_.field[control]);
    }
    bool anyProgram = false;
    for (int control : {kMain, kMicro, kSub1, kSubMicro, kSub2, kSub3}) {
        anyProgram = anyProgram || visible_.field[control];
    }
    programFrame_->setVisible(anyProgram);
    commentFrame_->setVisible(visible_.field[kComment]);
    extCommentFrame_->setVisible(visible_.field[kExtComment]);
    fileRegisterFrame_->setVisible(visible_.field[kFileRegister]);
    traceLatchFrame_->setVisible(visible_.traceAndLatch);
    for (QCheckBox* flag : {SanpFlag, SlatchDataFlag, SlatchFileFlag}) {
        flag->setVisible(visible_.traceAndLatch);
    }
}

void frmMemory::SetCaptions() {
    const std::string& cpu = State().CpuType;
    programFrame_->setTitle(ResText(ids::ProgramSize));
    commentFrame_->setTitle(ResText(ids::CommentSize));
    extCommentFrame_->setTitle(ResText(ids::ExtensionCommentSize));
    fileRegisterFrame_->setTitle(ResText(ids::FileRegisterCapacity));
    statusLatchFrame_->setTitle(ResText(ids::StatusLatch));
    totalFrame_->setTitle(ResText(ids::MemoryCapacity));
    SanpFlag->setText(ResText(ids::SamplingTrace));
    SlatchDataFlag->setText(ResText(ids::DataMemory));
    SlatchFileFlag->setText(ResText(ids::FileRegister));
    traceLatchHint_->setText(ResText(ids::TraceLatchHint));
    FileRegisterRange->setText(
        ResText(FileRegisterMax(cpu) == 4 ? ids::Range0To4 : ids::Range0To8));

    for (QLabel* unit : stepUnit_) unit->setText(ResText(ids::KSteps));
    for (QLabel* unit : byteUnit_) unit->setText(ResText(ids::KBytes));
    if (cpu == "A0J") {
        SequenceHeader->setText(ResText(ids::Sequence));
        sequenceRange_->setText(ResText(ids::Range1To7));
        MicroHeader->setText(ResText(ids::Microcomputer));
        MicroState->setText(ResText(ids::MicrocomputerNone));
        return;
    }
    int sequence = ids::Sequence1To30;
    int micro = ids::Microcomputer0To58;
    if (CpuIn(cpu, {"A0H", "A1S", "A2C"})) {
        sequence = ids::Sequence1To8;
        micro = ids::Microcomputer0To14;
    } else if (cpu == "A1 ") {
        sequence = ids::Sequence1To6;
        micro = ids::Microcomputer0To10;
    } else if (CpuIn(cpu, {"A2 ", "A2A", "A2U"})) {
        sequence = ids::Sequence1To14;
        micro = ids::Microcomputer0To26;
    }
    SequenceHeader->setText(ResText(sequence));
    MicroHeader->setText(ResText(micro));
    // The U types take a reserved area out of the main program, so its own limit is shown,
    // joined to the text without a blank ("Main (Max28)") like the point counts.
    if (CpuIn(cpu, {"A2U", "A3U", "A4U"})) {
        ProgramRow[0]->setText(ResText(ids::MainMaxPrefix) + QString::number(MainMax) + ")");
    } else {
        ProgramRow[0]->setText(ResText(ids::Main));
    }
    ProgramRow[1]->setText(ResText(cpu == "A4U" ? ids::Sub1 : ids::Sub));
    ProgramRow[2]->setText(ResText(ids::Sub2));
    ProgramRow[3]->setText(ResText(ids::Sub3));
}

// What a screen reader reads for each field: its frame, row and column with the unit, and the
// range that the captions show.
void frmMemory::NameFields() {
    const bool a0j = State().CpuType == "A0J";
    const QString program = ResText(ids::ProgramSize);
    // "Sequence (1 -- 30)": the range follows the column's own caption.
    const auto rangeAfter = [](const QLabel* header, int captionId) {
        return RangeOfCaption(header->text().mid(ResText(captionId).size()));
    };
    const QString sequenceRange =
        a0j ? RangeOfCaption(sequenceRange_->text()) : rangeAfter(SequenceHeader, ids::Sequence);
    const QString microRange = rangeAfter(MicroHeader, ids::Microcomputer);
    const auto name = [this](int control, const QString& text, const QString& range) {
        NameField(TextOf(control), text, range);
        NameField(ScrollOf(control), text, range);
    };
    for (int r = 0; r < 4; ++r) {
        const QString row = a0j ? QString() : ProgramRow[r]->text();
        name(kRowSequence[r],
             FieldName({program, row, ResText(ids::Sequence), ResText(ids::KSteps)}),
             sequenceRange);
        if (r < 2) {
            name(kRowMicro[r],
                 FieldName({program, row, ResText(ids::Microcomputer), ResText(ids::KBytes)}),
                 microRange);
        }
        ProgramRow[r]->setBuddy(TextOf(kRowSequence[r]));
    }
    if (a0j) SequenceHeader->setBuddy(Text1[kMain]);
    name(kComment, FieldName({ResText(ids::CommentSize), ResText(ids::KBytes)}),
         RangeOfCaption(ResText(ids::CommentRange)));
    name(kExtComment, FieldName({ResText(ids::ExtensionCommentSize), ResText(ids::KBytes)}),
         RangeOfCaption(ResText(ids::ExtensionCommentRange)));
    name(kFileRegister, FieldName({ResText(ids::FileRegisterCapacity), ResText(ids::KPoints)}),
         RangeOfCaption(FileRegisterRange->text()));
    NameField(Text5, FieldName({ResText(ids::MemoryCapacity), ResText(ids::KBytes)}));
    NameField(SanpFlag, SanpFlag->text());
    NameField(SlatchDataFlag, FieldName({ResText(ids::StatusLatch), SlatchDataFlag->text()}));
    NameField(SlatchFileFlag, FieldName({ResText(ids::StatusLatch), SlatchFileFlag->text()}));
}

void frmMemory::Form_Load() {
    Guard([this] {
        ModuleState& s = State();
        limits_ = LoadMemoryLimits(s.image, ContextOf(s));
        SequenceMax = limits_.SequenceMax;
        MicroMax = limits_.MicroMax;
        ReservedK = limits_.ReservedK;
        MainMax = limits_.MainMax;
        SetCaptions();
        NameFields();
        SetMemorySettings();
    });
}

QLineEdit* frmMemory::TextOf(int control) const {
    switch (control) {
        case kComment:
            return Text2;
        case kExtComment:
            return Text3;
        case kFileRegister:
            return Text4;
        default:
            return Text1.at(static_cast<size_t>(control));
    }
}

SpinButton* frmMemory::ScrollOf(int control) const {
    switch (control) {
        case kComment:
            return VScroll2;
        case kExtComment:
            return VScroll3;
        case kFileRegister:
            return VScroll4;
        default:
            return VScroll1.at(static_cast<size_t>(control));
    }
}

MemoryFields frmMemory::Fields() const {
    MemoryFields f;
    for (int i = 0; i < 6; ++i) f.Text1[i] = Text1[i]->text().toStdString();
    f.Text2 = Text2->text().toStdString();
    f.Text3 = Text3->text().toStdString();
    f.Text4 = Text4->text().toStdString();
    f.SanpFlag = SanpFlag->isChecked();
    f.SlatchDataFlag = SlatchDataFlag->isChecked();
    f.SlatchFileFlag = SlatchFileFlag->isChecked();
    return f;
}

void frmMemory::PutFields(const MemoryFields& f) {
    for (int i = 0; i < 6; ++i) Text1[i]->setText(QString::fromStdString(f.Text1[i]));
    Text2->setText(QString::fromStdString(f.Text2));
    Text3->setText(QString::fromStdString(f.Text3));
    Text4->setText(QString::fromStdString(f.Text4));
    SanpFlag->setChecked(f.SanpFlag);
    SlatchDataFlag->setChecked(f.SlatchDataFlag);
    SlatchFileFlag->setChecked(f.SlatchFileFlag);
}

void frmMemory::SetMemorySettings() {
    ModuleState& s = State();
    PutFields(ReadMemory(s.image, ContextOf(s)));
    CommentPoints->setText(QString::fromStdString(SetPointNumber(0)));
    ExtCommentPoints->setText(QString::fromStdString(SetPointNumber(1)));
    Text5->setText(QString::fromStdString(CalcMemory()));
    if (s.CpuType == "A0J" && MicroProgramPresent(s.image, ContextOf(s))) {
        MicroState->setText(ResText(ids::MicrocomputerExist));
    }
}

bool frmMemory::CheckMemorySettings() {
    for (int control = 0; control < kMemoryControlCount; ++control) {
        ResetErrorColor(TextOf(control));
    }
    const ErrorTables errors = ValidateMemory(Fields(), ContextOf(State()), limits_);
    return ReportErrors(State(), errors, [](int control) { SetErrorColor(control); });
}

void frmMemory::SaveMemorySettings() {
    WriteMemory(Fields(), State().image, ContextOf(State()));
}

void frmMemory::SetDefaultOfMemory() {
    PutFields(DefaultsMemory(Fields(), ContextOf(State())));
}

std::string frmMemory::CalcMemory() const {
    return gantrix::CalcMemory(Fields(), State().CpuType, limits_, State().image);
}

std::string frmMemory::SetPointNumber(int kind) const {
    return gantrix::SetPointNumber(Fields(), kind);
}

void frmMemory::Text_Change(int control) {
    QLineEdit* box = TextOf(control);
    CheckDecimalText(box);
    Text5->setText(QString::fromStdString(CalcMemory()));
    if (!box->text().isEmpty()) ScrollOf(control)->SetValue(static_cast<int>(ValueOf(box)));
    if (control == kComment) CommentPoints->setText(QString::fromStdString(SetPointNumber(0)));
    if (control == kExtComment) {
        ExtCommentPoints->setText(QString::fromStdString(SetPointNumber(1)));
    }
    DataChangedFlag() = true;
}

void frmMemory::VScroll_Change(int control) {
    QLineEdit* box = TextOf(control);
    SpinButton* spin = ScrollOf(control);
    // An empty box starts again from the bottom value.
    const QString text = QString::number(box->text().isEmpty() ? spin->Max() : spin->Value());
    if (box->text() != text) box->setText(text);
    DataChangedFlag() = true;
}

void frmMemory::TraceLatch_Click() {
    Text5->setText(QString::fromStdString(CalcMemory()));
    DataChangedFlag() = true;
}

void frmMemory::Text_KeyPress(QLineEdit* box, int& keyAscii) {
    switch (CheckDecimalKey(keyAscii)) {
        case 0:
            keyAscii = 0;
            break;
        case 2:
            keyAscii = 0;
            FocusNextField(box);
            break;
        default:
            break;
    }
}

void frmMemory::Flag_KeyPress(QCheckBox* box, int& keyAscii) {
    if (keyAscii == 13) {
        keyAscii = 0;
        FocusNextField(box);
    } else if (keyAscii == ' ') {
        Text5->setText(QString::fromStdString(CalcMemory()));
        DataChangedFlag() = true;
        // The key goes on to the box, which toggles on it and recomputes the total again.
    }
}

static DialogRegistrar frmMemoryRegistrar("frmMemory", [](ModuleState& s) {
    frmMemory form(s);
    form.exec();
});

}  // namespace gantrix
