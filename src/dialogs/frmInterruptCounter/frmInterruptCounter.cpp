// SPDX-License-Identifier: Apache-2.0
#include "dialogs/frmInterruptCounter/frmInterruptCounter.h"

#include <QCheckBox>
#include <QFontDatabase>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "common/StringTable.h"
#include "common/qt/DialogRegistry.h"
#include "common/qt/FormControls.h"

namespace gantrix {

frmInterruptCounter::frmInterruptCounter(ModuleState& state)
    : DialogBase(state, "frmInterruptCounter") {
    setWindowTitle(ResText(ids::InterruptCounter));
    // The ticked and the empty label are equally wide only in a fixed-pitch font.
    const QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(4);
    for (int k = 0; k < kInterruptCounters; ++k) {
        PointerFlag[k] = new QCheckBox(QString::fromStdString(PointerFlagCaption(k)), this);
        PointerFlag[k]->setObjectName(QString("PointerFlag(%1)").arg(k));
        NameField(PointerFlag[k], PointerFlag[k]->text());
        Label1[k] = new QLabel(this);
        Label1[k]->setObjectName(QString("Label1(%1)").arg(k));
        Label1[k]->setFont(fixed);
        // One column per byte of the image: I0-I7, I8-I15, I16-I23, I24-I31.
        const int column = (k / 8) * 3;
        grid->addWidget(PointerFlag[k], k % 8, column);
        grid->addWidget(Label1[k], k % 8, column + 1);
        connect(PointerFlag[k], &QCheckBox::toggled, this,
                [this, k] { Guard([this, k] { PointerFlag_Click(k); }); });
        OnKeyPress(PointerFlag[k], [this, k](int& key) { PointerFlag_KeyPress(k, key); });
    }
    for (int c : {2, 5, 8}) grid->setColumnMinimumWidth(c, 12);

    Label2 = new QLabel(ResText(ids::ChangeBySpaceOrMouse), this);
    Label2->setObjectName("Label2");
    MakeStandardButtons(OK, Cancel, &Clear);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    layout->addWidget(Label2);
    layout->addLayout(StandardButtonRow());

    SetFieldOrder({PointerFlag.begin(), PointerFlag.end()});

    Guard([this] { SetInterruptCounterSettings(); });
    FinishLoad();
}

InterruptCounterFields frmInterruptCounter::Fields() const {
    InterruptCounterFields f;
    for (int k = 0; k < kInterruptCounters; ++k) f.PointerFlag[k] = PointerFlag[k]->isChecked();
    return f;
}

void frmInterruptCounter::ShowFields(const InterruptCounterFields& f) {
    for (int k = 0; k < kInterruptCounters; ++k) {
        PointerFlag[k]->setChecked(f.PointerFlag[k]);
        ShowPointerLabel(k);
    }
}

void frmInterruptCounter::SetInterruptCounterSettings() {
    ShowFields(ReadInterruptCounter(State().image));
}

void frmInterruptCounter::SaveInterruptCounterSettings() {
    WriteInterruptCounter(Fields(), State().image);
}

void frmInterruptCounter::SetDefaultOfInterruptCounter() {
    ShowFields(DefaultsInterruptCounter());
}

void frmInterruptCounter::PointerFlag_Click(int k) {
    ShowPointerLabel(k);
    DataChanged = true;
}

// The counter beside a flag; a screen reader reads it as the flag's description.
void frmInterruptCounter::ShowPointerLabel(int k) {
    const QString text = QString::fromStdString(PointerLabel(k, PointerFlag[k]->isChecked()));
    Label1[k]->setText(text);
    PointerFlag[k]->setAccessibleDescription(text.simplified());
}

void frmInterruptCounter::PointerFlag_KeyPress(int k, int& keyAscii) {
    if (keyAscii == 13) {
        keyAscii = 0;
        FocusNextField(PointerFlag[k]);
    } else if (keyAscii == ' ') {
        // The space key switches the flag here, so that its label follows at once.
        keyAscii = 0;
        PointerFlag[k]->toggle();
    }
}

static DialogRegistrar frmInterruptCounterRegistrar("frmInterruptCounter", [](ModuleState& s) {
    frmInterruptCounter form(s);
    form.exec();
});

}  // namespace gantrix
