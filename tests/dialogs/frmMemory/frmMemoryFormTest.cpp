#include "dialogs/frmMemory/frmMemory.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QToolButton>

#include "common/qt/FormControls.h"
#include "common/qt/SpinButton.h"
#include "store/ParameterFiles.h"
#include "store/Project.h"
#include "support/ModalDriver.h"
#include "support/core/TestSupport.h"

namespace gantrix {
namespace {

using test::PressKey;

// The dialog on a project of cpu as the menu opens it in a run; prepare may change the
// project or the state first. An unknown code gets an empty directory.
struct MemoryFixture {
    test::TempDir project;
    ModuleState state;
    test::ScriptedMessages messages;
    ParameterImage opened;
    std::unique_ptr<frmMemory> form;

    explicit MemoryFixture(const std::string& cpu,
                           const std::function<void(MemoryFixture&)>& prepare = nullptr)
        : state(test::StateFor(cpu, project.Path())) {
        if (IsKnownCpuType(cpu)) CreateProject(cpu, project.Path(), false);
        state.Presenter = &messages;
        if (prepare) prepare(*this);
        if (project.Exists("param.tmp")) CopyWorkFiles(state);
        opened = state.image;
        form = std::make_unique<frmMemory>(state);
        form->show();
        form->activateWindow();
        QApplication::processEvents();
    }
    bool Closed() const { return !form->isVisible(); }
    // Backspace over the old text, then the new keys.
    void Retype(QLineEdit* box, const QString& text) {
        box->setFocus();
        box->setCursorPosition(box->text().size());
        while (!box->text().isEmpty()) PressKey(box, Qt::Key_Backspace);
        QTest::keyClicks(box, text);
    }
    QString Total() const { return form->Text5->text(); }
    void Click(QWidget* w) { QTest::mouseClick(w, Qt::LeftButton); }
};

TEST(frmMemory, EveryEditRecomputesTheTotalAtOnce) {
    MemoryFixture f("A3H");
    frmMemory& m = *f.form;
    EXPECT_EQ(f.Total(), "16");
    PressKey(m.Text1[0], Qt::Key_Backspace);
    EXPECT_EQ(f.Total(), "4");  // an empty field counts 0
    EXPECT_TRUE(f.state.DataChanged);
    QTest::keyClicks(m.Text1[0], "1x2");  // the letter is discarded
    EXPECT_EQ(m.Text1[0]->text(), "12");
    EXPECT_EQ(f.Total(), "28");
    f.Retype(m.Text2, "10");
    EXPECT_EQ(f.Total(), "38");
    EXPECT_EQ(m.CommentPoints->text(), "(576Points)");
    f.Retype(m.Text4, "4");
    EXPECT_EQ(f.Total(), "46");

    f.Click(m.SlatchFileFlag);
    EXPECT_EQ(f.Total(), "54");
    m.SlatchDataFlag->setFocus();
    PressKey(m.SlatchDataFlag, Qt::Key_Space);  // space switches the box
    EXPECT_TRUE(m.SlatchDataFlag->isChecked());
    EXPECT_EQ(f.Total(), "62");

    // Spin buttons: 99 at the top, 0 at the bottom, so the up arrow raises the value.
    EXPECT_EQ(m.VScroll1[0]->Min(), 99);
    f.Click(m.VScroll1[0]->UpButton());
    EXPECT_EQ(m.Text1[0]->text(), "13");
    EXPECT_EQ(f.Total(), "64");
    for (int i = 0; i < 7; ++i) f.Click(m.VScroll4->UpButton());
    EXPECT_EQ(m.Text4->text(), "9");  // the file register's spin button stops at 9
    f.Click(m.VScroll4->DownButton());
    f.Retype(m.Text2, "");
    f.Click(m.VScroll2->UpButton());
    EXPECT_EQ(m.Text2->text(), "0");  // an emptied field starts again from the bottom

    PressKey(m.Text2, Qt::Key_End);
    EXPECT_TRUE(f.Closed());
    EXPECT_EQ(f.state.image.GetParamWord(64), 13 * 1024);
    EXPECT_EQ(f.state.image.GetParamWord(68), 8 * 1024);
    EXPECT_EQ(f.state.image[76], 3);
    EXPECT_EQ(f.state.image.GetParamWord(78), 8 * 1024);
    EXPECT_TRUE(f.state.ParamChanged);
}

TEST(frmMemory, EnterAndArrowsFollowTheShownFields) {
    const std::pair<const char*, QStringList> cases[] = {
        {"A3 ",
         {"Text1(0)", "Text1(1)", "Text1(2)", "Text1(3)", "Text4", "SanpFlag", "SlatchDataFlag",
          "SlatchFileFlag", "Text2", "Text3", "OK"}},
        {"A4U",
         {"Text1(0)", "Text1(1)", "Text1(2)", "Text1(4)", "Text1(5)", "Text4", "Text2", "Text3",
          "OK"}},
        {"A0J", {"Text1(0)", "Text2", "Text3", "OK"}},
    };
    for (const auto& [cpu, order] : cases) {
        MemoryFixture f(cpu);
        QStringList seen{QApplication::focusWidget()->objectName()};
        while (seen.size() < order.size()) {
            PressKey(QApplication::focusWidget(), Qt::Key_Return);
            seen << QApplication::focusWidget()->objectName();
        }
        EXPECT_EQ(seen, order) << cpu;
        EXPECT_FALSE(f.Closed()) << cpu;
        PressKey(f.form->Text2, Qt::Key_Up);
        EXPECT_EQ(QApplication::focusWidget()->objectName(), order[order.indexOf("Text2") - 1]);
    }
}

TEST(frmMemory, ShownFieldsAndCaptionsPerCpuType) {
    struct Case {
        const char* cpu;
        const char* shown;  // Text1(0..5), Text2, Text3, Text4, the three boxes: 1 shown
        const char* sequence;
        const char* main;
    };
    const Case cases[] = {
        {"A0J", "100000110000", "Sequence", ""},
        {"A0H", "110000111111", "Sequence (1 -- 8)", "Main"},
        {"A1S", "110000111111", "Sequence (1 -- 8)", "Main"},
        {"A1 ", "110000110000", "Sequence (1 -- 6)", "Main"},
        {"A2C", "110000111111", "Sequence (1 -- 8)", "Main"},
        {"A2 ", "110000111111", "Sequence (1 -- 14)", "Main"},
        {"A3 ", "111100111111", "Sequence (1 -- 30)", "Main"},
        {"A3H", "111100111111", "Sequence (1 -- 30)", "Main"},
        {"A2A", "110000111000", "Sequence (1 -- 14)", "Main"},
        {"A3A", "111000111000", "Sequence (1 -- 30)", "Main"},
        {"A2U", "110000111000", "Sequence (1 -- 14)", "Main (Max14)"},
        {"A3U", "111000111000", "Sequence (1 -- 30)", "Main (Max30)"},
        {"A4U", "111011111000", "Sequence (1 -- 30)", "Main (Max30)"},
        {"A9 ", "000000000000", nullptr, nullptr},
    };
    for (const Case& c : cases) {
        MemoryFixture f(c.cpu);
        frmMemory& m = *f.form;
        EXPECT_EQ(m.windowTitle(), "Memory Capacity Setting");
        const QWidget* controls[] = {m.Text1[0], m.Text1[1], m.Text1[2],       m.Text1[3],
                                     m.Text1[4], m.Text1[5], m.Text2,          m.Text3,
                                     m.Text4,    m.SanpFlag, m.SlatchDataFlag, m.SlatchFileFlag};
        std::string shown;
        for (const QWidget* w : controls) shown += w->isVisible() ? '1' : '0';
        EXPECT_EQ(shown, c.shown) << c.cpu;
        EXPECT_TRUE(m.Text5->isVisible());
        if (c.sequence == nullptr) continue;
        EXPECT_EQ(m.SequenceHeader->text(), c.sequence) << c.cpu;
        EXPECT_EQ(m.ProgramRow[0]->isVisible() ? m.ProgramRow[0]->text() : QString(), c.main)
            << c.cpu;
        EXPECT_EQ(m.MicroState->isVisible(), std::string(c.cpu) == "A0J") << c.cpu;
    }
    MemoryFixture a4u("A4U");
    EXPECT_EQ(a4u.form->ProgramRow[1]->text() + a4u.form->ProgramRow[3]->text(), "Sub1Sub3");
    EXPECT_EQ(a4u.form->FileRegisterRange->text(), " (0-8) ");
    MemoryFixture a2c("A2C");
    EXPECT_EQ(a2c.form->FileRegisterRange->text(), " (0-4) ");
}

TEST(frmMemory, ReservedAreaOfTheWorkingFileAndTheA0jMicroMarker) {
    MemoryFixture f("A4U", [](MemoryFixture& f) {
        // The working file, copied from param.tmp, holds the reserved area; the image 0.
        std::vector<uint8_t> tmp = f.project.Read("param.tmp");
        tmp[138] = 1;
        tmp[139] = 4;  // 1025
        f.project.Write("param.tmp", tmp);
    });
    EXPECT_EQ(f.form->ProgramRow[0]->text(), "Main (Max28)");
    EXPECT_EQ(f.Total(), "20");  // 4 + 12 + 2 x 2 reserved
    f.Retype(f.form->Text1[0], "29");
    f.form->OK->click();
    EXPECT_EQ(f.messages.Numbers(), std::vector<int>{3});
    EXPECT_FALSE(f.Closed());

    MemoryFixture none("A0J");
    EXPECT_EQ(none.form->MicroState->text(), "None");
    MemoryFixture exist("A0J", [](MemoryFixture& f) {
        f.project.Write("Mmicro.bin", {0x12, 0x34});
        f.state.image.SetParamWord(4096, 72);
    });
    EXPECT_EQ(exist.form->MicroState->text(), "Exist");
    EXPECT_EQ(exist.Total(), "76");
}

TEST(frmMemory, FailuresAreShownOneBoxPerMessageWithTheFieldsYellow) {
    MemoryFixture f("A2 ");
    frmMemory& m = *f.form;
    f.Retype(m.Text2, "1");
    m.OK->click();
    EXPECT_EQ(f.messages.Numbers(), std::vector<int>{3});
    EXPECT_EQ(f.messages.shown[0].text, "Setting out of range");
    EXPECT_TRUE(HasErrorColor(m.Text2));
    EXPECT_FALSE(f.Closed());

    f.messages.shown.clear();
    f.Retype(m.Text2, "2");
    f.Retype(m.Text1[0], "14");
    f.Retype(m.Text1[1], "2");
    m.OK->click();
    EXPECT_EQ(f.messages.Numbers(), std::vector<int>{11});
    EXPECT_TRUE(HasErrorColor(m.Text1[0]));
    EXPECT_TRUE(HasErrorColor(m.Text1[1]));
    EXPECT_FALSE(HasErrorColor(m.Text2));

    f.messages.shown.clear();
    f.Retype(m.Text1[0], "");
    f.Retype(m.Text1[1], "3");
    f.Retype(m.Text4, "5");
    m.OK->click();
    EXPECT_EQ(f.messages.Numbers(), (std::vector<int>{2, 3, 11}));
    EXPECT_TRUE(HasErrorColor(m.Text4));
    EXPECT_EQ(f.state.image, f.opened);
    EXPECT_FALSE(f.state.ParamChanged);
}

// A box's length limits typing only: a stored value too long for its box loads whole and
// the check refuses it, and typing still stops at the limit.
TEST(frmMemory, StoredValuesLongerThanTheirBoxLoadWholeAndAreRefused) {
    MemoryFixture f("A3 ", [](MemoryFixture& fixture) {
        fixture.state.image.SetParamWord(65535, 68);
        fixture.state.image.SetParamWord(65535, 70);
    });
    frmMemory& m = *f.form;
    EXPECT_EQ(m.Text4->text(), "63");
    EXPECT_EQ(m.Text2->text(), "127");
    m.OK->click();
    EXPECT_EQ(f.messages.Numbers(), std::vector<int>{3});
    EXPECT_TRUE(HasErrorColor(m.Text4));
    EXPECT_TRUE(HasErrorColor(m.Text2));
    EXPECT_FALSE(f.Closed());
    EXPECT_EQ(f.state.image, f.opened);

    m.Text4->setFocus();
    m.Text4->setCursorPosition(2);
    PressKey(m.Text4, Qt::Key_Backspace);  // a long text may be shortened
    EXPECT_EQ(m.Text4->text(), "6");
    QTest::keyClicks(m.Text4, "3");  // but not grow past one digit
    EXPECT_EQ(m.Text4->text(), "6");
}

TEST(frmMemory, CancelAsksAfterAnEditAndClearWritesNothing) {
    MemoryFixture f("A3 ", [](MemoryFixture& f) {
        f.state.image.SetParamWord(20 * 1024, 64);
        f.state.image[76] = 3;
    });
    f.messages.Then(MessageButton::Yes);
    f.form->Clear->click();
    EXPECT_EQ(f.messages.Numbers(), (std::vector<int>{12, 10}));
    EXPECT_EQ(f.form->Text1[0]->text(), "6");
    EXPECT_FALSE(f.form->SlatchDataFlag->isChecked());
    EXPECT_EQ(f.Total(), "16");

    f.Retype(f.form->Text1[0], "7");
    f.messages.Then(MessageButton::No);
    f.form->Cancel->click();
    EXPECT_FALSE(f.Closed());
    EXPECT_EQ(f.form->Text1[0]->text(), "7");
    f.messages.Then(MessageButton::Yes);
    PressKey(f.form->Text1[0], Qt::Key_Escape);
    EXPECT_EQ(f.messages.Numbers(), (std::vector<int>{12, 10, 1, 1}));
    EXPECT_TRUE(f.Closed());
    EXPECT_EQ(f.state.image, f.opened);

    MemoryFixture quiet("A2A");
    quiet.form->Cancel->click();
    EXPECT_TRUE(quiet.Closed());
    EXPECT_TRUE(quiet.messages.shown.empty());
}

TEST(frmMemory, OkWithoutAnEditChangesNoByte) {
    for (const char* cpu : {"A0J", "A0H", "A1S", "A1 ", "A2C", "A2 ", "A3 ", "A3H", "A2A", "A3A",
                            "A2U", "A3U", "A4U"}) {
        MemoryFixture f(cpu);
        f.form->OK->click();
        EXPECT_TRUE(f.Closed()) << cpu;
        EXPECT_EQ(test::DifferingBytes(f.state.image, test::DefaultImage(cpu)), std::vector<int>{})
            << cpu;
    }
    MemoryFixture unknown("A9 ", [](MemoryFixture& f) { f.state.image.bytes().fill(255); });
    unknown.form->OK->click();
    EXPECT_TRUE(unknown.Closed());
    EXPECT_EQ(unknown.state.image, unknown.opened);
}

TEST(frmMemory, OverflowWhileSavingEndsWithTheImageAsOpened) {
    MemoryFixture f("A4U", [](MemoryFixture& f) { f.state.image.SetParamWord(30000, 2432); });
    f.Retype(f.form->Text1[1], "10");
    f.form->OK->click();
    EXPECT_EQ(f.messages.Numbers(), std::vector<int>{0});
    EXPECT_TRUE(f.Closed());
    EXPECT_EQ(f.state.image, f.opened);
    EXPECT_FALSE(f.state.ParamChanged);
}

}  // namespace
}  // namespace gantrix
