// SPDX-License-Identifier: Apache-2.0
#include "dialogs/frmAssistance/frmAssistance.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>
#include <cctype>

#include "common/DialogContext.h"
#include "common/InputRoutines.h"
#include "common/StringTable.h"
#include "common/qt/DialogRegistry.h"
#include "common/qt/FormControls.h"
#include "common/qt/SpinButton.h"

namespace gantrix {
namespace {

constexpr int kErrorCaptions[4] = {ids::FuseBlown, ids::OperationError, ids::IoModuleVerifyError,
                                   ids::FunctionModuleOperationError};
constexpr int kXYCaptions[4] = {ids::DirectDirect, ids::RefreshDirect, ids::DirectRefresh,
                                ids::RefreshRefresh};

int Checked(const QButtonGroup* group) {
    return std::max(group->checkedId(), 0);
}

void Check(QButtonGroup* group, int id) {
    if (QAbstractButton* button = group->button(id)) button->setChecked(true);
}

}  // namespace

frmAssistance::frmAssistance(ModuleState& state)
    : DialogBase(state, "frmAssistance"), layout_(AssistanceLayoutOf(state.CpuType)) {
    setWindowTitle(ResText(ids::SupplementaryFunctions));
    BuildControls();
    ShowLayout();
    Guard([this] { SetAssistanceSettings(); });
    FinishLoad();
}

void frmAssistance::BuildControls() {
    const DialogContext context = ContextOf(State());
    auto label = [this](int id) { return new QLabel(ResText(id), this); };
    // shown: the digits the box has room for, which may be more than can be typed.
    auto edit = [this](const QString& name, int digits, int shown) {
        auto* e = new QLineEdit(this);
        e->setObjectName(name);
        LimitTyping(e, digits);
        e->setAlignment(Qt::AlignRight);
        e->setFixedWidth(e->fontMetrics().horizontalAdvance(QString(shown, '8')) + 12);
        return e;
    };
    auto spin = [this](const QString& name, int top, int bottom) {
        auto* s = new SpinButton(this);
        s->setObjectName(name);
        s->SetRange(top, bottom);  // the up arrow raises the value
        return s;
    };
    auto boxed = [](QLineEdit* box, SpinButton* spinButton) {
        auto* pair = new QHBoxLayout;
        pair->setSpacing(1);
        pair->addWidget(box);
        pair->addWidget(spinButton);
        return pair;
    };
    auto radio = [this](QButtonGroup* group, const QString& name, int index, int caption) {
        auto* r = new QRadioButton(ResText(caption), this);
        r->setObjectName(QString("%1(%2)").arg(name).arg(index));
        group->addButton(r, index);
        return r;
    };
    auto check = [this](const QString& name, int caption) {
        auto* c = new QCheckBox(ResText(caption), this);
        c->setObjectName(name);
        return c;
    };

    // Step relays: the first one, or the range on the extended types.
    StepRelayFlag = check("StepRelayFlag", ids::StepRelay);
    const int lastRelay = context.DeviceMaxSize['M'] - 1;
    const int firstRelay = FirstStepRelayLimit(State().image);
    for (int i = 0; i < 2; ++i) {
        Text1[i] = edit(QString("Text1(%1)").arg(i), 4, 5);
        VScroll1[i] = spin(QString("VScroll1(%1)").arg(i), lastRelay, firstRelay);
        // A contact whose bytes no X number gives shows six digits (DecodeContact).
        Text2[i] = edit(QString("Text2(%1)").arg(i), 4, 6);
        VScroll2[i] = spin(QString("VScroll2(%1)").arg(i), context.DeviceMaxSize['X'] - 1, 0);
    }
    Text3 = edit("Text3", 3, 4);
    VScroll3 = spin("VScroll3", 200, 1);
    boxes_ = {Box{Text1[0], VScroll1[0], false}, Box{Text1[1], VScroll1[1], false},
              Box{Text2[0], VScroll2[0], true}, Box{Text2[1], VScroll2[1], true},
              Box{Text3, VScroll3, false}};

    auto* stepRelays = new QGroupBox(this);
    auto* stepRow = new QHBoxLayout(stepRelays);
    stepRow->addWidget(StepRelayFlag);
    stepRow->addSpacing(12);
    stepRelayCaption_ = label(layout_.extended ? ids::RangeForS : ids::StartNoOfS);
    stepRelayCaption_->setBuddy(Text1[0]);
    stepRow->addWidget(stepRelayCaption_);
    stepRow->addLayout(boxed(Text1[0], VScroll1[0]));
    stepRelayDash_ = label(ids::RangeDash);
    stepRow->addWidget(stepRelayDash_);
    stepRow->addLayout(boxed(Text1[1], VScroll1[1]));
    stepRow->addStretch();

    auto* contacts = new QGroupBox(this);
    auto* contactRow = new QHBoxLayout(contacts);
    const int contactCaptions[2] = {ids::RunContact, ids::PauseContact};
    for (int i = 0; i < 2; ++i) {
        if (i > 0) contactRow->addSpacing(16);
        QLabel* contact = label(contactCaptions[i]);
        contact->setBuddy(Text2[i]);
        contactRow->addWidget(contact);
        contactRow->addSpacing(4);
        contactRow->addWidget(label(ids::DeviceX));
        contactRow->addLayout(boxed(Text2[i], VScroll2[i]));
    }
    contactRow->addStretch();

    outputGroup_ = new QButtonGroup(this);
    auto* output = new QGroupBox(ResText(ids::OutputModeAtStopToRun), this);
    auto* outputRow = new QHBoxLayout(output);
    OutputMode[0] = radio(outputGroup_, "OutputMode", 0, ids::BeforeOperation);
    OutputMode[1] = radio(outputGroup_, "OutputMode", 1, ids::After1Scan);
    outputRow->addWidget(OutputMode[0]);
    outputRow->addWidget(OutputMode[1]);
    outputRow->addStretch();

    auto* errors = new QGroupBox(ResText(ids::OperatingModeAtError), this);
    auto* errorGrid = new QGridLayout(errors);
    errorGrid->setHorizontalSpacing(12);
    std::array<std::array<QRadioButton*, 2>*, 4> errorOptions = {&FuseCut, &CalcErr, &IOErr,
                                                                 &ActErr};
    const char* errorNames[4] = {"FuseCut", "CalcErr", "IOErr", "ActErr"};
    for (int k = 0; k < 4; ++k) {
        errorGroups_[k] = new QButtonGroup(this);
        errorGrid->addWidget(label(kErrorCaptions[k]), k, 0);
        for (int i = 0; i < 2; ++i) {
            (*errorOptions[k])[i] =
                radio(errorGroups_[k], errorNames[k], i, i == 0 ? ids::Continue : ids::Stop);
            errorGrid->addWidget((*errorOptions[k])[i], k, 1 + i);
        }
    }

    watchdogRow_ = new QWidget(this);
    auto* watchdog = new QHBoxLayout(watchdogRow_);
    watchdog->setContentsMargins(0, 0, 0, 0);
    QLabel* watchdogCaption = label(ids::WdtSetting);
    watchdogCaption->setBuddy(Text3);
    watchdog->addWidget(watchdogCaption);
    watchdog->addLayout(boxed(Text3, VScroll3));
    watchdog->addWidget(label(ids::WdtRange));
    watchdog->addWidget(label(ids::WdtUnit));
    watchdog->addStretch();

    EndManageFlag = check("EndManageFlag", ids::EndBatchProcess);
    commentFrame_ = new QGroupBox(ResText(ids::GeneralDataProcessingMethod), this);
    CommentFlag = check("CommentFlag", ids::WithComment);
    (new QVBoxLayout(commentFrame_))->addWidget(CommentFlag);

    xyGroup_ = new QButtonGroup(this);
    xyFrame_ = new QGroupBox(ResText(ids::IoControl), this);
    auto* xy = new QVBoxLayout(xyFrame_);
    for (int i = 0; i < 4; ++i) {
        XYControl[i] = radio(xyGroup_, "XYControl", i, kXYCaptions[i]);
        xy->addWidget(XYControl[i]);
    }

    Label1 = new QLabel(this);
    Label1->setObjectName("Label1");
    Label1->setWordWrap(true);
    AssistMenuItem = new QPushButton(this);
    AssistMenuItem->setObjectName("AssistMenuItem");
    MakeStandardButtons(OK, Cancel, &Clear);

    auto* left = new QVBoxLayout;
    left->addWidget(stepRelays);
    left->addWidget(contacts);
    left->addWidget(output);
    left->addWidget(errors);
    left->addStretch();
    auto* right = new QVBoxLayout;
    right->addWidget(watchdogRow_);
    right->addWidget(EndManageFlag);
    right->addWidget(commentFrame_);
    right->addWidget(xyFrame_);
    right->addStretch();
    auto* columns = new QHBoxLayout;
    columns->addLayout(left);
    columns->addSpacing(8);
    columns->addLayout(right);
    auto* buttons = StandardButtonRow();
    buttons->insertWidget(0, AssistMenuItem);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(columns);
    layout->addWidget(Label1);
    layout->addLayout(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);

    for (Box& box : boxes_) {
        Box* b = &box;
        connect(b->text, &QLineEdit::textChanged, this,
                [this, b] { Guard([this, b] { Text_Change(*b); }); });
        connect(b->spin, &SpinButton::Change, this,
                [this, b] { Guard([this, b] { VScroll_Change(*b); }); });
        // An arrow on an empty box shows the number it stands at, even when the value itself
        // did not move (the down arrow at the bottom).
        for (QToolButton* arrow : {b->spin->UpButton(), b->spin->DownButton()}) {
            connect(arrow, &QToolButton::clicked, this, [this, b] {
                Guard([this, b] {
                    if (IsBlank(b->text->text().toStdString())) VScroll_Change(*b);
                });
            });
        }
        OnKeyPress(b->text, [this, b](int& key) { Text_KeyPress(*b, key); });
    }
    connect(StepRelayFlag, &QCheckBox::toggled, this,
            [this] { Guard([this] { StepRelayFlag_Click(); }); });
    for (QCheckBox* flag : {EndManageFlag, CommentFlag}) {
        connect(flag, &QCheckBox::toggled, this, [this] { Guard([this] { Option_Click(); }); });
    }
    for (QButtonGroup* group : {outputGroup_, errorGroups_[0], errorGroups_[1], errorGroups_[2],
                                errorGroups_[3], xyGroup_}) {
        connect(group, &QButtonGroup::idToggled, this, [this](int, bool checked) {
            if (checked) Guard([this] { Option_Click(); });
        });
    }
    connect(AssistMenuItem, &QPushButton::clicked, this,
            [this] { Guard([this] { ChangePage(); }); });

    // Enter and the arrow keys follow the controls as listed, option by option.
    std::vector<QWidget*> order = {StepRelayFlag, Text1[0], Text1[1], Text2[0], Text2[1]};
    for (auto* options : {&OutputMode, &FuseCut, &CalcErr, &IOErr, &ActErr}) {
        order.insert(order.end(), options->begin(), options->end());
    }
    order.insert(order.end(), {Text3, EndManageFlag, CommentFlag});
    order.insert(order.end(), XYControl.begin(), XYControl.end());
    for (QWidget* w : order) {
        if (qobject_cast<QLineEdit*>(w) == nullptr) {
            OnKeyPress(w, [this, w](int& key) { Toggle_KeyPress(w, key); });
        }
    }
    SetFieldOrder(std::move(order));
    NameFields(firstRelay, lastRelay, context.DeviceMaxSize['X'] - 1);
}

// What a screen reader reads for each field: its frame or row caption, the option's own
// caption, and the range of a number.
void frmAssistance::NameFields(int firstRelay, int lastRelay, int lastInput) {
    const auto name = [](QWidget* box, QWidget* spin, const QString& text, const QString& range) {
        NameField(box, text, range);
        NameField(spin, text, range);
    };
    const QString relays = stepRelayCaption_->text();
    const QString relayRange = RangeText(firstRelay, lastRelay);
    // The extended types set a range of step relays, the others its first relay only.
    const QString first = layout_.extended ? ResText(ids::AccessibleStart) : QString();
    name(Text1[0], VScroll1[0], FieldName({relays, first}), relayRange);
    name(Text1[1], VScroll1[1], FieldName({relays, ResText(ids::AccessibleEnd)}), relayRange);
    const int contacts[2] = {ids::RunContact, ids::PauseContact};
    for (int i = 0; i < 2; ++i) {
        name(Text2[i], VScroll2[i], FieldName({ResText(contacts[i]), ResText(ids::DeviceX)}),
             RangeText("0", QString::number(lastInput, 16).toUpper()));
    }
    name(Text3, VScroll3, FieldName({ResText(ids::WdtSetting), ResText(ids::WdtUnit)}),
         RangeOfCaption(ResText(ids::WdtRange)));
    NameField(StepRelayFlag, StepRelayFlag->text());
    NameField(EndManageFlag, EndManageFlag->text());
    NameField(CommentFlag, FieldName({commentFrame_->title(), CommentFlag->text()}));
    for (QRadioButton* option : OutputMode) {
        NameField(option, FieldName({ResText(ids::OutputModeAtStopToRun), option->text()}));
    }
    const std::array<std::array<QRadioButton*, 2>*, 4> errorOptions = {&FuseCut, &CalcErr, &IOErr,
                                                                       &ActErr};
    for (int k = 0; k < 4; ++k) {
        for (QRadioButton* option : *errorOptions[k]) {
            NameField(option, FieldName({ResText(ids::OperatingModeAtError),
                                         ResText(kErrorCaptions[k]), option->text()}));
        }
    }
    for (QRadioButton* option : XYControl) {
        NameField(option, FieldName({xyFrame_->title(), option->text()}));
    }
}

// Controls a CPU type does not have are hidden themselves too, so nothing gives them the focus.
void frmAssistance::ShowLayout() {
    for (QWidget* w : std::initializer_list<QWidget*>{stepRelayDash_, Text1[1], VScroll1[1]}) {
        w->setVisible(layout_.extended);
    }
    watchdogRow_->setVisible(layout_.watchdog);
    Text3->setVisible(layout_.watchdog);
    VScroll3->setVisible(layout_.watchdog);
    EndManageFlag->setVisible(layout_.endManage);
    commentFrame_->setVisible(layout_.comment);
    CommentFlag->setVisible(layout_.comment);
    xyFrame_->setVisible(layout_.xyControl);
    for (QRadioButton* option : XYControl) option->setVisible(layout_.xyControl);
    Label1->setText(ResText(layout_.hint));
    AssistMenuItem->setVisible(!layout_.followOn.empty());
    if (!layout_.followOn.empty()) AssistMenuItem->setText(ResText(layout_.followOnCaption));
}

AssistanceFields frmAssistance::Fields() const {
    AssistanceFields f;
    f.StepRelayFlag = StepRelayFlag->isChecked();
    for (int i = 0; i < 2; ++i) {
        f.Text1[i] = Text1[i]->text().toStdString();
        f.Text2[i] = Text2[i]->text().toStdString();
    }
    f.OutputMode = Checked(outputGroup_);
    f.FuseCut = Checked(errorGroups_[0]);
    f.CalcErr = Checked(errorGroups_[1]);
    f.IOErr = Checked(errorGroups_[2]);
    f.ActErr = Checked(errorGroups_[3]);
    f.Text3 = Text3->text().toStdString();
    f.EndManageFlag = EndManageFlag->isChecked();
    f.CommentFlag = CommentFlag->isChecked();
    f.XYControl = Checked(xyGroup_);
    return f;
}

void frmAssistance::ShowFields(const AssistanceFields& f) {
    // The check box first: clearing it empties the step relay boxes, which then take their text.
    StepRelayFlag->setChecked(f.StepRelayFlag);
    for (int i = 0; i < 2; ++i) {
        Text1[i]->setText(Q(f.Text1[i]));
        Text2[i]->setText(Q(f.Text2[i]));
    }
    Check(outputGroup_, f.OutputMode);
    Check(errorGroups_[0], f.FuseCut);
    Check(errorGroups_[1], f.CalcErr);
    Check(errorGroups_[2], f.IOErr);
    Check(errorGroups_[3], f.ActErr);
    Text3->setText(Q(f.Text3));
    EndManageFlag->setChecked(f.EndManageFlag);
    CommentFlag->setChecked(f.CommentFlag);
    Check(xyGroup_, f.XYControl);
    for (Box& box : boxes_) SyncSpin(box);
    EnableStepRelayBoxes();
}

// Step relay numbers mean something only while the box is checked; greyed out otherwise, so
// that no number is typed there only to be dropped on OK.
void frmAssistance::EnableStepRelayBoxes() {
    const bool used = StepRelayFlag->isChecked();
    for (int i = 0; i < 2; ++i) {
        Text1[i]->setEnabled(used);
        VScroll1[i]->setEnabled(used);
    }
}

void frmAssistance::SetAssistanceSettings() {
    ShowFields(ReadAssistance(State().image, ContextOf(State())));
}

bool frmAssistance::CheckAssistanceSettings() {
    for (const Box& box : boxes_) ResetErrorColor(box.text);
    const ErrorTables errors = ValidateAssistance(Fields(), State().image, ContextOf(State()));
    return ReportErrors(State(), errors, [](int control) { SetErrorColor(control); });
}

void frmAssistance::SaveAssistanceSettings() {
    WriteAssistance(Fields(), State().image, ContextOf(State()));
}

void frmAssistance::SetDefaltOfAssistance() {
    ShowFields(DefaultsAssistance(Fields(), ContextOf(State())));
}

void frmAssistance::ChangePage() {
    if (!layout_.followOn.empty()) OpenDialog(layout_.followOn, State());
}

void frmAssistance::StepRelayFlag_Click() {
    AssistanceFields f = Fields();
    ApplyStepRelayFlag(f);
    for (int i = 0; i < 2; ++i) {
        if (Text1[i]->text() != Q(f.Text1[i])) Text1[i]->setText(Q(f.Text1[i]));
    }
    EnableStepRelayBoxes();
    State().DataChanged = true;
}

void frmAssistance::Option_Click() {
    State().DataChanged = true;
}

void frmAssistance::Text_Change(Box& box) {
    if (box.hex) {
        CheckHexText(box.text);
    } else {
        CheckDecimalText(box.text);
    }
    SyncSpin(box);
    State().DataChanged = true;
}

// The spin button follows its box; an empty box parks it at the bottom.
void frmAssistance::SyncSpin(Box& box) {
    const std::string text = Trim(box.text->text().toStdString());
    const long value = text.empty() ? box.spin->Max()
                       : box.hex    ? HexToValue(PadZero4(text))
                                    : ValueOf(text);
    syncing_ = true;
    box.spin->SetValue(static_cast<int>(std::min<long>(value, 65535)));
    syncing_ = false;
}

void frmAssistance::VScroll_Change(Box& box) {
    // While the user types, the box already holds the number.
    if (syncing_) return;
    const int value = box.spin->Value();
    box.text->setText(box.hex ? QString::number(value, 16).toUpper() : QString::number(value));
}

void frmAssistance::Text_KeyPress(Box& box, int& keyAscii) {
    int kind = CheckDecimalKey(keyAscii);
    if (kind == 0 && box.hex && keyAscii < 128 && std::isxdigit(keyAscii)) kind = 1;
    if (kind == 0) {
        keyAscii = 0;
    } else if (kind == 2) {
        keyAscii = 0;
        FocusNextField(box.text);
    }
}

// Check boxes and options switch with the space key or a click; Enter moves on.
void frmAssistance::Toggle_KeyPress(QWidget* control, int& keyAscii) {
    if (keyAscii != 13) return;
    keyAscii = 0;
    FocusNextField(control);
}

static DialogRegistrar frmAssistanceRegistrar("frmAssistance", [](ModuleState& s) {
    frmAssistance form(s);
    form.exec();
});

}  // namespace gantrix
