// SPDX-License-Identifier: Apache-2.0
#include "dialogs/frmTimerCounter/frmTimerCounter.h"

#include <QComboBox>
#include <QFocusEvent>
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

// Marks controls as being set by code for as long as it lives.
class Updating {
  public:
    explicit Updating(bool& flag) : flag_(flag), previous_(flag) { flag_ = true; }
    ~Updating() { flag_ = previous_; }
    Updating(const Updating&) = delete;
    Updating& operator=(const Updating&) = delete;

  private:
    bool& flag_;
    bool previous_;
};

// Index of each text box in fields_.
constexpr int kText1 = 0;  // 0..7
constexpr int kText2 = 8;  // 8..9; Text3 is the last

}  // namespace

frmTimerCounter::frmTimerCounter(ModuleState& state)
    : DialogBase(state, "frmTimerCounter"), group_(TimerGroupOf(state.CpuType)) {
    setWindowTitle(ResText(ids::TimerCounterSetting));
    BuildControls();
    ShowGroup();
    Guard([this] { SetTimerCounterSettings(); });
    FinishLoad();
}

frmTimerCounter::~frmTimerCounter() {
    // The controls are deleted after this destructor, and a combo box still signals as it goes.
    for (QObject* child : findChildren<QObject*>()) disconnect(child, nullptr, this, nullptr);
}

void frmTimerCounter::BuildControls() {
    const DialogContext context = ContextOf(State());
    const int timerSize = context.DeviceMaxSize['T'];
    const int counterSize = context.DeviceMaxSize['C'];

    auto label = [this](std::vector<QLabel*>& array, const QString& prefix, int id) {
        auto* l = new QLabel(ResText(id), this);
        l->setObjectName(QString("%1(%2)").arg(prefix).arg(array.size()));
        array.push_back(l);
        return l;
    };
    auto edit = [this](const QString& name) {
        auto* e = new QLineEdit(this);
        e->setObjectName(name);
        LimitTyping(e, 4);
        e->setFixedWidth(52);
        return e;
    };
    auto spin = [this](const QString& name) {
        auto* s = new SpinButton(this);
        s->setObjectName(name);
        return s;
    };
    auto combo = [this](const QString& name) {
        auto* c = new QComboBox(this);
        c->setObjectName(name);
        c->setEditable(true);
        c->setInsertPolicy(QComboBox::NoInsert);
        c->setCompleter(nullptr);
        c->addItems({"", "D", "W", "R"});
        c->setEditText("");
        c->setFixedWidth(52);
        return c;
    };

    for (int i = 0; i < 8; ++i) {
        Text1[i] = edit(QString("Text1(%1)").arg(i));
        VScroll1[i] = spin(QString("VScroll1(%1)").arg(i));
    }
    for (int i = 0; i < 2; ++i) {
        Text2[i] = edit(QString("Text2(%1)").arg(i));
        VScroll2[i] = spin(QString("VScroll2(%1)").arg(i));
    }
    Text3 = edit("Text3");
    VScroll3 = spin("VScroll3");
    Combo1 = combo("Combo1");
    Combo2 = combo("Combo2");

    // Spin ranges run from Min at the top down to Max; the start numbers take theirs from
    // the chosen device.
    fields_.reserve(11);
    fields_.push_back({Text1[0], VScroll1[0], nullptr, timerSize, 0});
    for (int i = 1; i <= 3; ++i) fields_.push_back({Text1[i], VScroll1[i], nullptr, 255, 0});
    for (int i = 4; i <= 6; ++i)
        fields_.push_back({Text1[i], VScroll1[i], nullptr, timerSize, 256});
    fields_.push_back({Text1[7], VScroll1[7], Combo1, 9999, 0});
    fields_.push_back({Text2[0], VScroll2[0], nullptr, counterSize, 0});
    fields_.push_back({Text2[1], VScroll2[1], Combo2, 9999, 0});
    fields_.push_back({Text3, VScroll3, nullptr, 255, 0});
    for (size_t i = 0; i < fields_.size(); ++i) {
        Field* field = &fields_[i];
        connect(field->text, &QLineEdit::textChanged, this,
                [this, field] { Guard([this, field] { Text_Change(*field); }); });
        connect(field->spin, &SpinButton::Change, this, [this, field](int value) {
            Guard([this, field, value] { VScroll_Change(*field, value); });
        });
        OnKeyPress(field->text, [this, field](int& key) { Text_KeyPress(*field, key); });
    }
    for (QComboBox* c : {Combo1, Combo2}) {
        connect(c, &QComboBox::editTextChanged, this,
                [this, c] { Guard([this, c] { Combo_Change(c); }); });
        connect(c, &QComboBox::activated, this,
                [this, c] { Guard([this, c] { Combo_Change(c); }); });
        OnKeyPress(c, [this, c](int& key) { Combo_KeyPress(c, key); });
    }

    // A text box with its spin button right beside it.
    auto boxed = [](QLineEdit* box, SpinButton* spinButton) {
        auto* pair = new QHBoxLayout;
        pair->setSpacing(1);
        pair->addWidget(box);
        pair->addWidget(spinButton);
        pair->addStretch();
        return pair;
    };
    auto pointsRow = [&](std::vector<QLabel*>& labels, const QString& prefix, QLineEdit* box,
                         SpinButton* spinButton) {
        auto* row = new QHBoxLayout;
        QLabel* caption = label(labels, prefix, ids::NumberOfPoints);
        caption->setBuddy(box);
        row->addWidget(caption);
        row->addLayout(boxed(box, spinButton));
        row->addStretch();
        return row;
    };
    auto deviceRow = [&](std::vector<QLabel*>& labels, const QString& prefix, QComboBox* box,
                         QLineEdit* start, SpinButton* startSpin) {
        auto* row = new QHBoxLayout;
        QLabel* device = label(labels, prefix, ids::DeviceToStoreSettingValue);
        device->setBuddy(box);
        row->addWidget(device);
        row->addWidget(box);
        row->addWidget(label(labels, prefix, ids::SetValueDevices));
        row->addSpacing(12);
        QLabel* startCaption = label(labels, prefix, ids::StartNo);
        startCaption->setBuddy(start);
        row->addWidget(startCaption);
        row->addLayout(boxed(start, startSpin));
        row->addWidget(label(labels, prefix, ids::MultiplesOf8));
        row->addStretch();
        return row;
    };

    // Timers: points, the partition table (kinds across, blocks down), the device.
    Frame1 = new QGroupBox(ResText(ids::TimerSetting), this);
    Frame1->setObjectName("Frame1");
    auto* timers = new QVBoxLayout(Frame1);
    timers->addLayout(pointsRow(Label1, "Label1", Text1[0], VScroll1[0]));
    auto* partition = new QGridLayout;
    partition->setHorizontalSpacing(12);
    const int kinds[3] = {ids::LowSpeed100ms, ids::HighSpeed10ms, ids::Integration};
    for (int k = 0; k < 3; ++k) partition->addWidget(label(Label1, "Label1", kinds[k]), 0, 1 + k);
    const int blocks[3] = {ids::TimerBlockLow, ids::TimerBlockHigh, ids::DeviceT};
    for (int b = 0; b < 3; ++b) partition->addWidget(label(Label1, "Label1", blocks[b]), 1 + b, 0);
    for (int k = 0; k < 3; ++k) {
        partition->addLayout(boxed(Text1[1 + k], VScroll1[1 + k]), 1, 1 + k);
        partition->addLayout(boxed(Text1[4 + k], VScroll1[4 + k]), 2, 1 + k);
    }
    partition->addLayout(boxed(Text3, VScroll3), 3, 1);
    partition->setColumnStretch(4, 1);
    timers->addLayout(partition);
    timers->addLayout(deviceRow(Label1, "Label1", Combo1, Text1[7], VScroll1[7]));

    Frame2 = new QGroupBox(ResText(ids::CounterSetting), this);
    Frame2->setObjectName("Frame2");
    auto* counters = new QVBoxLayout(Frame2);
    counters->addLayout(pointsRow(Label2, "Label2", Text2[0], VScroll2[0]));
    counters->addLayout(deviceRow(Label2, "Label2", Combo2, Text2[1], VScroll2[1]));

    Frame3 = new QGroupBox(this);
    Frame3->setObjectName("Frame3");
    InterruptCounter = new QPushButton(ResText(ids::InterruptCounter), Frame3);
    InterruptCounter->setObjectName("InterruptCounter");
    auto* interrupts = new QHBoxLayout(Frame3);
    interrupts->addWidget(InterruptCounter);
    interrupts->addStretch();
    connect(InterruptCounter, &QPushButton::clicked, this,
            [this] { Guard([this] { InterruptCounter_Click(); }); });

    MakeStandardButtons(OK, Cancel, &Clear);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(Frame1);
    layout->addWidget(Frame2);
    layout->addWidget(Frame3);
    layout->addLayout(StandardButtonRow());
    layout->setSizeConstraint(QLayout::SetFixedSize);

    NameFields();

    const std::vector<QWidget*> order = {Text1[0], Text1[1], Text1[2], Text1[3], Text1[4],
                                         Text1[5], Text1[6], Text3,    Combo1,   Text1[7],
                                         Text2[0], Combo2,   Text2[1]};
    SetFieldOrder(order);
}

// What a screen reader reads for each field: its frame, row and column captions, and the range
// of its spin button (a start number's range follows its device, so it has none here).
void frmTimerCounter::NameFields() {
    const QString timers = ResText(ids::TimerSetting);
    const QString counters = ResText(ids::CounterSetting);
    const int kinds[3] = {ids::LowSpeed100ms, ids::HighSpeed10ms, ids::Integration};
    const auto name = [](const Field& field, const QString& text) {
        const QString range = field.device != nullptr ? QString()
                                                      : RangeText(std::min(field.min, field.max),
                                                                  std::max(field.min, field.max));
        NameField(field.text, text, range);
        NameField(field.spin, text, range);
    };
    const QString points = ResText(ids::NumberOfPoints);
    const QString start = FieldName({ResText(ids::StartNo), ResText(ids::MultiplesOf8)});
    name(fields_[0], FieldName({timers, points}));
    for (int k = 0; k < 3; ++k) {
        name(fields_[1 + k], FieldName({timers, ResText(ids::TimerBlockLow), ResText(kinds[k])}));
        name(fields_[4 + k], FieldName({timers, ResText(ids::TimerBlockHigh), ResText(kinds[k])}));
    }
    name(fields_[7], FieldName({timers, start}));
    name(fields_[8], FieldName({counters, points}));
    name(fields_[9], FieldName({counters, start}));
    name(fields_[10], FieldName({timers, ResText(ids::DeviceT), ResText(kinds[0])}));
    const QString devices = RangeOfCaption(ResText(ids::SetValueDevices));
    NameField(Combo1, FieldName({timers, ResText(ids::DeviceToStoreSettingValue)}), devices);
    NameField(Combo2, FieldName({counters, ResText(ids::DeviceToStoreSettingValue)}), devices);
}

void frmTimerCounter::ShowGroup() {
    const bool extended = IsExtended(group_);
    // Label1: 0 points, 1-3 kinds, 4 T0-255, 5 T256-2047, 6 T, 7-10 device row.
    std::vector<QWidget*> extendedOnly = {Label1[0], Text1[0], VScroll1[0], Label1[5], Frame2};
    for (int i = 4; i <= 7; ++i) {
        extendedOnly.push_back(Text1[i]);
        extendedOnly.push_back(VScroll1[i]);
    }
    for (int i = 7; i <= 10; ++i) extendedOnly.push_back(Label1[i]);
    extendedOnly.push_back(Combo1);
    for (QWidget* w : extendedOnly) w->setVisible(extended);
    const bool small = group_ == TimerGroup::Small;
    for (QWidget* w : std::initializer_list<QWidget*>{Label1[6], Text3, VScroll3}) {
        w->setVisible(small);
    }
}

TimerCounterFields frmTimerCounter::Fields() const {
    TimerCounterFields f;
    for (int i = 0; i < 8; ++i) f.Text1[i] = Text1[i]->text().toStdString();
    for (int i = 0; i < 2; ++i) f.Text2[i] = Text2[i]->text().toStdString();
    f.Text3 = Text3->text().toStdString();
    f.Combo1 = Combo1->currentText().toStdString();
    f.Combo2 = Combo2->currentText().toStdString();
    return f;
}

void frmTimerCounter::ShowFields(const TimerCounterFields& f) {
    {
        Updating updating(updating_);
        for (int i = 0; i < 8; ++i) Text1[i]->setText(Q(f.Text1[i]));
        for (int i = 0; i < 2; ++i) Text2[i]->setText(Q(f.Text2[i]));
        Text3->setText(Q(f.Text3));
        Combo1->setEditText(Q(f.Combo1));
        Combo2->setEditText(Q(f.Combo2));
    }
    for (Field& field : fields_) SyncSpin(field);
}

bool frmTimerCounter::IsHexField(const Field& field) const {
    return field.device != nullptr && field.device->currentText() == "W";
}

// The spin button follows its text box; an empty box resets it to Max + 1, so that the
// first step down shows Max.
void frmTimerCounter::SyncSpin(Field& field) {
    Updating updating(updating_);
    int min = field.min;
    int max = field.max;
    std::string letter;
    if (field.device != nullptr) {
        letter = field.device->currentText().toStdString();
        min = IsDeviceLetter(letter) ? DeviceSizeOf(ContextOf(State()), letter) - 1 : 9999;
        max = 0;
    }
    field.spin->SetRange(min, max);
    const std::string text = field.text->text().toStdString();
    if (text.empty()) {
        field.spin->SetValue(max + 1);
        return;
    }
    const long value = field.device != nullptr ? StartNumberOf(letter, text) : ValueOf(text);
    if (value >= std::min(min, max) && value <= std::max(min, max)) {
        field.spin->SetValue(static_cast<int>(value));
    }
}

void frmTimerCounter::SetTimerCounterSettings() {
    ShowFields(ReadTimerCounter(State().image, ContextOf(State())));
}

bool frmTimerCounter::CheckTimerCounterSettings() {
    for (Field& field : fields_) ResetErrorColor(field.text);
    ResetErrorColor(Combo1);
    ResetErrorColor(Combo2);
    const ErrorTables errors = ValidateTimerCounter(Fields(), ContextOf(State()));
    return ReportErrors(State(), errors, [](int control) { SetErrorColor(control); });
}

void frmTimerCounter::SaveTimerCounterSettings() {
    WriteTimerCounter(Fields(), State().image, ContextOf(State()));
}

void frmTimerCounter::SetDefaultOfTimerCounter() {
    const TimerCounterFields current = Fields();
    const TimerCounterFields defaults = DefaultsTimerCounter(current, ContextOf(State()));
    if (defaults == current) return;
    ShowFields(defaults);
    State().DataChanged = true;
}

void frmTimerCounter::InterruptCounter_Click() {
    OpenDialog("frmInterruptCounter", State());
}

// Typing marks the dialog changed, as a step of its spin button does.
void frmTimerCounter::Text_Change(Field& field) {
    if (updating_) return;
    {
        Updating updating(updating_);
        if (IsHexField(field)) {
            CheckHexText(field.text);
        } else {
            CheckDecimalText(field.text);
        }
    }
    SyncSpin(field);
    State().DataChanged = true;
}

void frmTimerCounter::Text_KeyPress(Field& field, int& keyAscii) {
    switch (CheckDecimalKey(keyAscii)) {
        case 2:
            keyAscii = 0;
            FocusNextField(field.text);
            return;
        case 1:
            return;
        default:
            break;
    }
    const bool hexLetter =
        (keyAscii >= 'A' && keyAscii <= 'F') || (keyAscii >= 'a' && keyAscii <= 'f');
    if (!(hexLetter && IsHexField(field))) keyAscii = 0;
}

void frmTimerCounter::VScroll_Change(Field& field, int value) {
    if (updating_) return;
    {
        Updating updating(updating_);
        field.text->setText(Q(FormatStartNumber(IsHexField(field) ? "W" : "", value)));
    }
    State().DataChanged = true;
}

void frmTimerCounter::Combo_Change(QComboBox* combo) {
    if (updating_) return;
    ApplyDeviceRule(combo);
    State().DataChanged = true;
}

void frmTimerCounter::Combo_KeyPress(QComboBox* combo, int& keyAscii) {
    if (keyAscii == 13) {
        keyAscii = 0;
        FocusNextField(combo);
        return;
    }
    const int upper = keyAscii >= 'a' && keyAscii <= 'z' ? keyAscii - 32 : keyAscii;
    if (upper == 'D' || upper == 'W' || upper == 'R') {
        keyAscii = 0;
        combo->setEditText(QString(QChar(upper)));
        return;
    }
    // Every other character, outside ASCII too; Delete (127) edits as usual.
    if (keyAscii >= 32 && keyAscii != 127) keyAscii = 0;
}

bool frmTimerCounter::ApplyDeviceRule(QComboBox* combo) {
    const TimerCounterFields before = Fields();
    const bool timers = combo == Combo1;
    TimerCounterFields after = before;
    gantrix::ApplyDeviceRule(after, timers, group_);
    Field& start = timers ? fields_[kText1 + 7] : fields_[kText2 + 1];
    {
        Updating updating(updating_);
        const QString letter = Q(timers ? after.Combo1 : after.Combo2);
        if (letter != combo->currentText()) combo->setEditText(letter);
        const QString number = Q(timers ? after.Text1[7] : after.Text2[1]);
        if (number != start.text->text()) {
            const int caret = start.text->cursorPosition();
            start.text->setText(number);
            start.text->setCursorPosition(std::min<int>(caret, static_cast<int>(number.size())));
        }
    }
    SyncSpin(start);
    return Fields() != before;
}

void frmTimerCounter::ApplyPointRule(bool timers) {
    if (!IsExtended(group_)) return;
    const TimerCounterFields before = Fields();
    TimerCounterFields after = before;
    if (timers) {
        ApplyTimerPointRule(after);
    } else {
        ApplyCounterPointRule(after);
    }
    if (after == before) return;
    ShowFields(after);
    State().DataChanged = true;
}

void frmTimerCounter::FocusChanged(QObject* watched) {
    if (std::find(Text1.begin(), Text1.end(), watched) != Text1.end()) {
        ApplyPointRule(true);
    } else if (std::find(Text2.begin(), Text2.end(), watched) != Text2.end()) {
        ApplyPointRule(false);
    }
}

bool frmTimerCounter::eventFilter(QObject* watched, QEvent* event) {
    const QEvent::Type type = event->type();
    if ((type == QEvent::FocusIn || type == QEvent::FocusOut) && watched->isWidgetType() &&
        static_cast<QWidget*>(watched)->window() == this && isVisible()) {
        // Switching windows (the interrupt counter dialog, a message box, a drop-down list)
        // is no move between the fields.
        const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
        if (reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason) {
            Guard([&] {
                FocusChanged(watched);
                if (type == QEvent::FocusOut) {
                    for (QComboBox* combo : {Combo1, Combo2}) {
                        if ((watched == combo || watched->parent() == combo) &&
                            ApplyDeviceRule(combo)) {
                            State().DataChanged = true;
                        }
                    }
                }
            });
        }
    }
    return DialogBase::eventFilter(watched, event);
}

static DialogRegistrar frmTimerCounterRegistrar("frmTimerCounter", [](ModuleState& s) {
    frmTimerCounter form(s);
    form.exec();
});

}  // namespace gantrix
