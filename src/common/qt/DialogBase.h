// SPDX-License-Identifier: Apache-2.0
#pragma once
// The settings dialogs' shared flows: OK checks then writes, Cancel asks before dropping
// edits, Clear puts the defaults into the controls, End acts as OK, the arrow keys and Enter
// move the focus in the dialog's own field order, Page Up / Page Down turn the page of the
// paged dialogs. A runtime error inside a handler puts the image back as it was when the
// dialog finished loading and unloads the dialog.
//
// A dialog builds its controls, loads them (its Set...Settings), then calls FinishLoad.

#include <vector>

#include "common/qt/FormBase.h"
#include "store/ParameterImage.h"

class QHBoxLayout;
class QLineEdit;

namespace gantrix {

class DialogBase : public FormBase {
    Q_OBJECT

  public:
    DialogBase(ModuleState& state, const QString& formName);

    // The buttons' handlers, public so that a dialog opening another can drive it.
    virtual void OK_Click();
    virtual void Cancel_Click();
    virtual void Clear_Click();

    void ErrorExit(const std::string& description) override;

  protected:
    // Check...Settings: validate and report; true when the dialog may be saved.
    virtual bool CheckSettings() = 0;
    // Save...Settings: controls to image.
    virtual void SaveSettings() = 0;
    // SetDefaultOf...: the Clear values into the controls.
    virtual void SetDefaults() {}
    // ChangePage of the paged dialogs (Page Up / Page Down).
    virtual void ChangePageKey(bool /*forward*/) {}
    // The DataChanged flag the dialog uses: the module's, or one of its own.
    virtual bool& DataChangedFlag();

    // Clears DataChanged, remembers the image as loaded (until then the image as opened is
    // what a runtime error puts back), registers the numbered controls for error
    // colouring, makes Tab follow the field order, the other buttons, then OK, Cancel and
    // Clear, and gives the first field of the order the focus.
    void FinishLoad();

    // The input fields in the dialog's order: Enter and the arrow keys follow it, hidden or
    // disabled fields are skipped, and after the last field comes OK.
    void SetFieldOrder(std::vector<QWidget*> order);
    const std::vector<QWidget*>& FieldOrder() const { return order_; }
    // Enter in a field: the next field, after the last one OK.
    void FocusNextField(QWidget* from);
    void FocusPreviousField(QWidget* from);

    // Makes the OK, Cancel and (when clear is given) Clear buttons with their captions and
    // object names, and wires them as SetButtons does; the dialog places them.
    void MakeStandardButtons(QPushButton*& ok, QPushButton*& cancel, QPushButton** clear);
    // A row with OK, Cancel and Clear on its right, for the dialog's layout.
    QHBoxLayout* StandardButtonRow();

    // End: OK; Left/Up and Right/Down: previous and next field; Page Up/Down: ChangePageKey.
    bool FormKeyDown(QKeyEvent* event, QWidget* focus) override;

    void reject() override;  // Escape and the close box: Cancel

    QPushButton* okButton() const { return ok_; }

  private:
    // The buttons of the dialog; clear may be nullptr.
    void SetButtons(QPushButton* ok, QPushButton* cancel, QPushButton* clear);
    int IndexInOrder(QWidget* widget) const;

    std::vector<QWidget*> order_;
    QPushButton* ok_ = nullptr;
    QPushButton* cancel_ = nullptr;
    QPushButton* clear_ = nullptr;
    ParameterImage loaded_;
};

}  // namespace gantrix
