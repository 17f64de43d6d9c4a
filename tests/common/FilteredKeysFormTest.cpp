// Printable keys that a filtered box refuses are discarded whatever their alphabet: a
// letter outside ASCII neither reaches the box nor wipes what it holds.

#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QTest>
#include <memory>

#include "dialogs/frmAssistance/frmAssistance.h"
#include "dialogs/frmIOLayout/frmIOLayout.h"
#include "dialogs/frmLatch/frmLatch.h"
#include "dialogs/frmMINI/frmMINI.h"
#include "dialogs/frmMemory/frmMemory.h"
#include "dialogs/frmTimerCounter/frmTimerCounter.h"
#include "dialogs/frmTypeNameSet/frmTypeNameSet.h"
#include "support/core/TestSupport.h"

namespace gantrix {
namespace {

// Types each character into the focused box as a keyboard delivers it.
void TypeForeignKeys(QWidget* box) {
    box->setFocus();
    for (const QString& text : {QString("ä"), QString("ß"), QString("°"), QString("😀")}) {
        QKeyEvent press(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, text);
        QKeyEvent release(QEvent::KeyRelease, Qt::Key_unknown, Qt::NoModifier, text);
        QApplication::sendEvent(QApplication::focusWidget(), &press);
        QApplication::sendEvent(QApplication::focusWidget(), &release);
    }
}

QString TextOf(QWidget* box) {
    if (auto* combo = qobject_cast<QComboBox*>(box)) return combo->currentText();
    return qobject_cast<QLineEdit*>(box)->text();
}

void ExpectKeysDiscarded(QWidget* dialog, std::initializer_list<const char*> boxes) {
    dialog->show();
    dialog->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(dialog));
    for (const char* name : boxes) {
        auto* box = dialog->findChild<QWidget*>(name);
        ASSERT_NE(box, nullptr) << name;
        const QString before = TextOf(box);
        TypeForeignKeys(box);
        EXPECT_EQ(TextOf(box), before) << dialog->objectName().toStdString() << " " << name;
    }
}

TEST(FilteredKeys, LettersOutsideAsciiAreDiscardedByEveryFilteredBox) {
    test::TempProject project("A3 ");
    project.Write("param.$$$", project.Read("param.tmp"));  // the I/O assignment merges it
    test::ScriptedMessages messages;
    ModuleState state = test::StateFor("A3 ", project.Path());
    state.Presenter = &messages;
    // Decimal boxes, hexadecimal boxes, the device combo, slot codes and model names.
    ExpectKeysDiscarded(std::make_unique<frmMemory>(state).get(), {"Text1(0)", "Text4"});
    ExpectKeysDiscarded(std::make_unique<frmLatch>(state).get(), {"Text1(0)", "Text1(2)"});
    ExpectKeysDiscarded(std::make_unique<frmTimerCounter>(state).get(),
                        {"Text1(0)", "Combo1", "Text3"});
    ExpectKeysDiscarded(std::make_unique<frmIOLayout>(state).get(), {"Text1(0)"});
    IOLayoutFields assignment;
    assignment.codes[0] = "X16";
    assignment.names[0] = "AX10";
    ExpectKeysDiscarded(std::make_unique<frmTypeNameSet>(state, assignment).get(),
                        {"Text1(0)", "Combo1(0)"});
    // Contacts (hexadecimal) and the watchdog; the refresh table's count and a device cell.
    ExpectKeysDiscarded(std::make_unique<frmAssistance>(state).get(), {"Text2(0)", "Text3"});
    ModuleState extended = test::StateFor("A3U");
    extended.Presenter = &messages;
    extended.image.SetParamWord(1, 2312);  // one module
    ExpectKeysDiscarded(std::make_unique<frmMINI>(extended).get(),
                        {"Text1", "Text2(0)", "Text2(4)"});
    EXPECT_TRUE(messages.shown.empty());
}

}  // namespace
}  // namespace gantrix
