// SPDX-License-Identifier: Apache-2.0
#include "menus/frmMenu.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "common/DialogContext.h"
#include "common/Messages.h"
#include "common/StringTable.h"
#include "common/qt/DialogRegistry.h"
#include "common/qt/FormControls.h"
#include "menus/MenuRules.h"
#include "print/PrintRules.h"
#include "store/ParameterFiles.h"

namespace gantrix {

frmMenu::frmMenu(ModuleState& state) : FormBase(state, "frmMenu") {
    setWindowTitle(ResText(ids::Parameter));
    Frame1 = new QGroupBox(this);
    Frame1->setObjectName("Frame1");
    Frame1->setTitle(QString());
    auto* items = new QVBoxLayout(Frame1);
    static constexpr int kCaptions[8] = {ids::MemoryCapacitySetting,  ids::LatchRangeSetting,
                                         ids::TimerCounterSetting,    ids::IoAssignment,
                                         ids::SupplementaryFunctions, ids::NetworkLinkSetting,
                                         ids::ParameterPrinting,      ids::ClearAll};
    for (int i = 0; i < 8; ++i) {
        MenuItem[i] = new QPushButton(ResText(kCaptions[i]), Frame1);
        MenuItem[i]->setObjectName(QString("MenuItem(%1)").arg(i));
        MenuItem[i]->setMinimumWidth(380);
        items->addWidget(MenuItem[i]);
        connect(MenuItem[i], &QPushButton::clicked, this,
                [this, i] { Guard([this, i] { MenuItem_Click(i); }); });
    }
    Label1 = new QLabel(this);
    Label1->setObjectName("Label1");
    // The three lines are joined with LF CR, as the host's texts are; a label shows LF only.
    Label1->setText(ResText(ids::ExcelNoteLine1) + "\n" + ResText(ids::ExcelNoteLine2) + "\n" +
                    ResText(ids::ExcelNoteLine3));
    OK = new QPushButton("OK", this);
    OK->setObjectName("OK");
    Cancel = new QPushButton(ResText(ids::Cancel), this);
    Cancel->setObjectName("Cancel");
    connect(OK, &QPushButton::clicked, this, [this] { Guard([this] { OK_Click(); }); });
    connect(Cancel, &QPushButton::clicked, this, [this] { Guard([this] { Cancel_Click(); }); });

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(OK);
    buttons->addWidget(Cancel);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(Frame1);
    layout->addWidget(Label1);
    layout->addLayout(buttons);
    for (QPushButton* button : findChildren<QPushButton*>()) {
        button->setAutoDefault(false);
        button->setDefault(false);
    }
    Form_Load();
}

void frmMenu::Form_Load() {
    // The working directory is left as the host set it: the component names its own
    // directory explicitly wherever it needs it, so a host's relative project path keeps
    // working.
    ModuleState& s = State();
    s.NetEditActive = false;
    s.ParamPrintActive = false;
    s.ParamChanged = false;
    s.DataChanged = false;
    s.SaveRequested = false;
    s.NetworkSumValid = false;
    MenuItem[0]->setFocus();
}

std::string frmMenu::ActionOf(int index) const {
    const std::string& cpu = State().CpuType;
    const bool known = CpuIn(cpu, {"A0J", "A0H", "A1S", "A1 ", "A2C", "A2 ", "A3 ", "A3H", "A2A",
                                   "A3A", "A2U", "A3U", "A4U"});
    switch (index) {
        case 0:
            return "frmMemory";
        case 1:
            return "frmLatch";
        case 2:
            return "frmTimerCounter";
        case 3:
            return "frmIOLayout";
        case 4:
            if (cpu == "A0J") return "frmStepRelay";
            return known ? "frmAssistance" : "";
        case 5:
            if (CpuIn(cpu, {"A0H", "A1S", "A1 ", "A2C", "A2 ", "A3 ", "A3H"})) {
                return "PrintNetworkSettings(0)";
            }
            if (CpuIn(cpu, {"A2A", "A3A"})) return "frmNetworkMenu";
            if (CpuIn(cpu, {"A2U", "A3U", "A4U"})) return "PrintNetworkSettings(3)";
            return "";
        case 6:
            return "PrintParameterSettings";
        case 7:
            return "ClearAllParameters";
        default:
            return "";
    }
}

void frmMenu::ChangePage(int index) {
    const std::string action = ActionOf(index);
    ModuleState& s = State();
    if (action == "ClearAllParameters") {
        if (ClearAllParameters(s, [&s](int n) { return ShowMessage(s, n); })) s.ParamChanged = true;
    } else if (action == "PrintNetworkSettings(0)") {
        PrintNetworkSettings(s, 0);
    } else if (action == "PrintNetworkSettings(3)") {
        PrintNetworkSettings(s, 3);
    } else if (action == "PrintParameterSettings") {
        PrintParameterSettings(s);
    } else if (!action.empty()) {
        OpenDialog(action, s);
    }
}

void frmMenu::MenuItem_Click(int index) {
    ChangePage(index);
}

void frmMenu::OK_Click() {
    ModuleState& s = State();
    if (CheckEndPlace(s)) return;
    if (CheckExcel(s)) return;
    SetValue(s.image, s.CpuType);
    s.SaveRequested = true;
    s.ContentChangeFlag = true;
    MergeParameterFile(s, kParamWork);
    if (CheckTotalMemory(s)) Unload(true);
}

bool frmMenu::AskBeforeLeaving() {
    ModuleState& s = State();
    if (CheckExcel(s)) return false;
    if (s.ParamChanged) {
        if (ShowMessage(s, 1) != "YES") return false;
        s.ParamChanged = false;
    }
    return true;
}

void frmMenu::Cancel_Click() {
    if (AskBeforeLeaving()) Unload(false);
}

void frmMenu::reject() {
    Guard([this] {
        if (AskBeforeLeaving()) Unload(false);
    });
}

bool frmMenu::FormKeyDown(QKeyEvent* event, QWidget* focus) {
    if (event->key() == Qt::Key_End) {
        OK_Click();
        return true;
    }
    // Up and Down walk the items and the two buttons, skipping disabled items.
    if (event->key() != Qt::Key_Up && event->key() != Qt::Key_Down) return false;
    std::vector<QPushButton*> order(MenuItem.begin(), MenuItem.end());
    order.push_back(OK);
    order.push_back(Cancel);
    const auto it = std::find(order.begin(), order.end(), focus);
    if (it == order.end()) return false;
    const int step = event->key() == Qt::Key_Down ? 1 : -1;
    const int count = static_cast<int>(order.size());
    int i = static_cast<int>(it - order.begin());
    for (int n = 0; n < count; ++n) {
        i = (i + step + count) % count;
        if (order[i]->isEnabled()) {
            order[i]->setFocus();
            break;
        }
    }
    return true;
}

}  // namespace gantrix
