#pragma once
// The I/O assignment opened as the menu opens it during a run, for the tests of both I/O
// dialogs.

#include "dialogs/frmIOLayout/frmIOLayout.h"
#include "support/FormFixture.h"

namespace gantrix::test {

using IoLayout = Opened<frmIOLayout>;

// Types as a person does: each key goes to the control that has the focus by then.
inline void TypeInto(QWidget* control, const QString& keys) {
    control->setFocus();
    for (const QChar key : keys) QTest::keyClicks(control->window()->focusWidget(), QString(key));
}

// Opens the model names with Type, runs edit on them and closes them with End.
inline void EditNames(IoLayout& f, const std::function<void(QWidget*)>& edit) {
    ModalDriver driver;
    driver.On("frmTypeNameSet", [&](QWidget* names) {
        edit(names);
        PressKey(names, Qt::Key_End);
    });
    driver.Run([&] { f->Type->click(); });
}

}  // namespace gantrix::test
