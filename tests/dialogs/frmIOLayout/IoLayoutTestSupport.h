#pragma once
// The I/O assignment opened as the menu opens it during a run: the working file exists and
// the host library knows the CPU. Shared by the tests of both I/O dialogs.

#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <functional>
#include <memory>

#include "dialogs/frmIOLayout/frmIOLayout.h"
#include "store/ParameterFiles.h"
#include "support/ModalDriver.h"
#include "support/core/TestSupport.h"

namespace gantrix::test {

// Types as a person does: each key goes to the control that has the focus by then.
inline void TypeInto(QWidget* control, const QString& keys) {
    control->setFocus();
    for (const QChar key : keys) QTest::keyClicks(control->window()->focusWidget(), QString(key));
}

// Runs body and tells whether a modal window appeared meanwhile (closing it at once).
inline bool OpensAModalWindow(const std::function<void()>& body) {
    bool opened = false;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] {
        if (QWidget* modal = QApplication::activeModalWidget()) {
            opened = true;
            modal->close();
        }
    });
    watch.start(20);
    body();
    return opened;
}

struct IoFixture {
    TempProject project;
    ModuleState state;
    ScriptedMessages messages;
    ParameterImage loaded;  // the image once the dialog has loaded
    std::unique_ptr<frmIOLayout> form;

    // before edits the run's image ahead of the working copy and the dialog.
    explicit IoFixture(const std::string& cpu,
                       const std::function<void(ParameterImage&)>& before = {})
        : project(cpu), state(StateFor(cpu, project.Path())) {
        state.Presenter = &messages;
        if (before) before(state.image);
        CopyWorkFiles(state);
    }
    IoFixture& Open() {
        form = std::make_unique<frmIOLayout>(state);
        form->show();
        loaded = state.image;
        return *this;
    }
    QLineEdit* Field(int i) const { return form->Text1[i]; }
    QString Code(int i) const { return form->Text1[i]->text(); }
    QWidget* Focus() const { return form->focusWidget(); }
    bool Closed() const { return !form->isVisible(); }
    // Opens the model names with Type, runs edit on them and closes them with End.
    void EditNames(const std::function<void(QWidget*)>& edit) {
        ModalDriver driver;
        driver.On("frmTypeNameSet", [&](QWidget* names) {
            edit(names);
            PressKey(names, Qt::Key_End);
        });
        driver.Run([&] { form->Type->click(); });
    }
    std::array<uint8_t, 6> Record(int slot) const {
        std::array<uint8_t, 6> record;
        for (int b = 0; b < 6; ++b) record[b] = state.image[640 + 6 * slot + b];
        return record;
    }
};

}  // namespace gantrix::test
