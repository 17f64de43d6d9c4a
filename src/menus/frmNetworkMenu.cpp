// SPDX-License-Identifier: Apache-2.0
#include "menus/frmNetworkMenu.h"

#include <QButtonGroup>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include "common/Messages.h"
#include "common/StringTable.h"
#include "common/qt/DialogRegistry.h"
#include "common/qt/FormControls.h"
#include "menus/NetworkMenuRules.h"
#include "print/PrintRules.h"
#include "store/ParameterFiles.h"

namespace gantrix {
namespace {

DialogRegistrar frmNetworkMenuRegistrar("frmNetworkMenu", [](ModuleState& state) {
    frmNetworkMenu form(state);
    form.exec();
});

}  // namespace

frmNetworkMenu::frmNetworkMenu(ModuleState& state) : FormBase(state, "frmNetworkMenu") {
    setWindowTitle(ResText(ids::NetworkLinkSetting));
    auto* frame = new QGroupBox(this);
    frame->setObjectName("Frame1");
    auto* options = new QVBoxLayout(frame);
    group_ = new QButtonGroup(this);
    static constexpr int kCaptions[3] = {ids::MornetMode, ids::MornetIICombinationMode,
                                         ids::MornetIIMode};
    for (int i = 0; i < 3; ++i) {
        MenuItem[i] = new QRadioButton(ResText(kCaptions[i]), frame);
        MenuItem[i]->setObjectName(QString("MenuItem(%1)").arg(i));
        group_->addButton(MenuItem[i], i);
        options->addWidget(MenuItem[i]);
        // Enter walks the options, from the last one to OK.
        OnKeyPress(MenuItem[i], [this, i](int& keyAscii) {
            if (keyAscii != 13) return;
            keyAscii = 0;
            if (i < 2) {
                MenuItem[i + 1]->setFocus();
            } else {
                OK->setFocus();
            }
        });
    }
    OK = new QPushButton("OK", this);
    OK->setObjectName("OK");
    Cancel = new QPushButton(ResText(ids::Cancel), this);
    Cancel->setObjectName("Cancel");
    for (QPushButton* button : {OK, Cancel}) {
        button->setAutoDefault(false);
        button->setDefault(false);
    }
    connect(OK, &QPushButton::clicked, this, [this] { Guard([this] { OK_Click(); }); });
    connect(Cancel, &QPushButton::clicked, this, [this] { Guard([this] { Cancel_Click(); }); });

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(OK);
    buttons->addWidget(Cancel);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(frame);
    layout->addLayout(buttons);
    setTabOrder(MenuItem[2], OK);
    setTabOrder(OK, Cancel);
    Guard([this] { Form_Load(); });
}

void frmNetworkMenu::Form_Load() {
    // Network data written by the spreadsheet while it was open are seen here.
    MergeParameterFile(State(), kParamWork);
    GetMode();
    SetFlag();
    QAbstractButton* checked = group_->checkedButton();
    (checked != nullptr ? checked : MenuItem[0])->setFocus();
}

void frmNetworkMenu::GetMode() {
    gantrix::GetMode(State());
}

void frmNetworkMenu::SetFlag() {
    const int option = OptionOfMode(State().NetworkMode);
    if (option >= 0) MenuItem[option]->setChecked(true);
}

bool frmNetworkMenu::CheckMode(int index) {
    ModuleState& s = State();
    if (ModeMatches(index, s.NetworkMode)) return false;
    if (ShowMessage(s, 25) != "YES") {
        SetFlag();
        return true;
    }
    ClearLink(s.image);
    SaveParameterFile(s, kParamWork);
    GetMode();
    ShowMessage(s, 10);
    return false;
}

void frmNetworkMenu::ChangePage(int index) {
    MergeParameterFile(State(), kParamWork);
    GetMode();
    if (CheckMode(index)) return;
    if (index >= 0 && index <= 2) PrintNetworkSettings(State(), index);
}

void frmNetworkMenu::OK_Click() {
    const int checked = group_->checkedId();
    ChangePage(checked < 0 ? 0 : checked);
}

void frmNetworkMenu::Cancel_Click() {
    Unload(false);
}

bool frmNetworkMenu::FormKeyDown(QKeyEvent* event, QWidget*) {
    if (event->key() != Qt::Key_End) return false;
    OK_Click();
    return true;
}

}  // namespace gantrix
