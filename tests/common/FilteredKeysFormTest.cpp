// Printable keys that a filtered box refuses are discarded whatever their alphabet: a
// letter outside ASCII neither reaches the box nor wipes what it holds.

#include <QKeyEvent>

#include "dialogs/frmAssistance/frmAssistance.h"
#include "dialogs/frmIOLayout/frmIOLayout.h"
#include "dialogs/frmLatch/frmLatch.h"
#include "dialogs/frmMINI/frmMINI.h"
#include "dialogs/frmMemory/frmMemory.h"
#include "dialogs/frmTimerCounter/frmTimerCounter.h"
#include "dialogs/frmTypeNameSet/frmTypeNameSet.h"
#include "support/FormFixture.h"

namespace gantrix {
namespace {

QString TextOf(QWidget* box) {
    if (auto* combo = qobject_cast<QComboBox*>(box)) return combo->currentText();
    return qobject_cast<QLineEdit*>(box)->text();
}

void ExpectForeignKeysDiscarded(QWidget* dialog, std::initializer_list<const char*> boxes) {
    for (const char* name : boxes) {
        auto* box = dialog->findChild<QWidget*>(name);
        ASSERT_NE(box, nullptr) << name;
        const QString before = TextOf(box);
        box->setFocus();
        for (const QString& text : {QString("ä"), QString("ß"), QString("°"), QString("😀")}) {
            QKeyEvent press(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, text);
            QApplication::sendEvent(QApplication::focusWidget(), &press);
        }
        EXPECT_EQ(TextOf(box), before) << dialog->objectName().toStdString() << " " << name;
    }
}

TEST(FilteredKeys, LettersOutsideAsciiAreDiscardedByEveryFilteredBox) {
    // Decimal boxes, hexadecimal boxes, the device combo, slot codes and model names.
    ExpectForeignKeysDiscarded(test::Opened<frmMemory>("A3 ").form.get(), {"Text1(0)", "Text4"});
    ExpectForeignKeysDiscarded(test::Opened<frmLatch>("A3 ").form.get(), {"Text1(0)", "Text1(2)"});
    ExpectForeignKeysDiscarded(test::Opened<frmTimerCounter>("A3A").form.get(),
                               {"Text1(0)", "Combo1", "Text1(1)"});
    test::Opened<frmIOLayout> io("A3 ");
    ExpectForeignKeysDiscarded(io.form.get(), {"Text1(0)"});
    IOLayoutFields assignment;
    assignment.codes[0] = "X16";
    assignment.names[0] = "AX10";
    frmTypeNameSet names(io.state, assignment);
    names.show();
    names.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&names));
    ExpectForeignKeysDiscarded(&names, {"Text1(0)", "Combo1(0)"});
    EXPECT_TRUE(io.messages.shown.empty());
    // Contacts (hexadecimal) and the watchdog; the refresh table's count and a device cell.
    ExpectForeignKeysDiscarded(test::Opened<frmAssistance>("A3 ").form.get(),
                               {"Text2(0)", "Text3"});
    test::Opened<frmMINI> mini("A3U", [](test::Opened<frmMINI>& opened) {
        opened.state.image.SetParamWord(1, 2312);  // one module
    });
    ExpectForeignKeysDiscarded(mini.form.get(), {"Text1", "Text2(0)", "Text2(4)"});
}

}  // namespace
}  // namespace gantrix
