// SPDX-License-Identifier: Apache-2.0
#include <QDialog>
#include <algorithm>
#include <map>
#include <random>
#include <set>

#include "common/ControlNumbers.h"
#include "common/qt/DialogRegistry.h"
#include "common/qt/FormControls.h"
#include "dialogs/frmIOLayout/IOLayoutFields.h"
#include "headless/Headless.h"
#include "headless/Page.h"
#include "platform/rkcmnt/DeviceTable.h"
#include "store/CheckSum.h"
#include "support/FormFixture.h"

namespace gantrix {
namespace {

// Every key against its control. For each CPU type and dialog, values that its fields take
// are found key by key, each changing what OK writes; typed once through set and once with
// key presses into the controls the keys name, then OK, they give the same image. The keys
// name every input control the dialog shows, and only controls it shows.

using headless::FieldRef;
using Typed = std::vector<std::pair<FieldRef, std::string>>;

// The values tried for a field: a flag switched, the other options, numbers near the one
// shown and above the field before (boundaries, range ends), then single keys. The hints open
// what the search alone does not reach: the timers beyond 255 and their devices.
std::vector<std::string> Candidates(const FieldRef& field, int ordinal, const std::string& before) {
    static const std::map<std::string, std::string> kHints = {
        {"timer.points", "512"},           {"timer.device", "D"},
        {"timer.device.start", "100"},     {"timer.integration", "240"},
        {"timer.T256.integration", "400"}, {"timer.counter.points", "512"},
        {"timer.counter.device", "D"},     {"timer.counter.device.start", "3000"}};
    const std::string now = headless::Page::ValueOf(field);
    if (field.flag != nullptr) return {now == "on" ? "off" : "on"};
    std::vector<std::string> out;
    if (kHints.count(field.key)) out.push_back(kHints.at(field.key));
    for (size_t o = 0; field.options && o < field.options->values.size(); ++o)
        if (field.options->values[o] != now) out.push_back(field.options->values[o]);
    if (field.options != nullptr) return out;
    const int base = field.cleaning == headless::Cleaning::Hex ? 16 : 10;
    const size_t digits = now.find_last_not_of("0123456789ABCDEF") + 1;
    const long n = std::strtol(now.c_str() + digits, nullptr, base), b = std::atol(before.c_str());
    for (long v : {n + (digits == now.size() ? ordinal + 1 : 16), n + 1, n + 16, n - 1, n - 16,
                   2000L, 256L, b + 8, b + 15, b + 16})
        if (v >= 0)
            out.push_back(now.substr(0, digits) + QString::number(v, base).toUpper().toStdString());
    for (char c : std::string(" 123456789ABDWR")) out.emplace_back(c != ' ', c);
    return out;
}

std::vector<FieldRef> KeysOf(headless::Page& page) {
    std::vector<FieldRef> fields = page.Fields();
    for (FieldRef& action : page.Actions()) fields.push_back(action);
    return fields;
}

// Opens page on image and types typed; false when a field or the check refuses.
bool TypeAll(headless::Page& page, ParameterImage& image, const Typed& typed) {
    page.Open(image);
    for (const auto& [field, value] : typed)
        if (page.Type(field, value)) return false;
    return !page.Check(image).Any();
}

void TypeInto(QWidget* dialog, const FieldRef& field, const std::string& value, QString name) {
    if (const headless::OptionSet* o = field.options)  // the option's own button
        name += QString("(%1)").arg(std::ranges::find(o->values, value) - o->values.begin());
    QWidget* control = test::Child(dialog, name);
    ASSERT_NE(control, nullptr) << name.toStdString();
    control->setFocus();
    auto* combo = qobject_cast<QComboBox*>(control);
    QLineEdit* box = combo ? combo->lineEdit() : qobject_cast<QLineEdit*>(control);
    if (box != nullptr) {
        test::Retype(box, QString::fromStdString(value));
        test::PressKey(box, Qt::Key_Return);  // the focus moves on, as set assumes
    } else if (auto* check = qobject_cast<QCheckBox*>(control);
               !check || check->isChecked() != (value == "on")) {
        test::PressKey(control, Qt::Key_Space);
    }
}

struct FormRun {
    ParameterImage image;
    std::set<int> messages;
    std::set<std::string> painted;        // the keys of the boxes painted on OK
    std::set<std::string> shown, inputs;  // controls visible, and those a user can change
};

// Opens the dialog of page on base as the menu would, types typed and presses OK. The I/O
// assignment shows slot N as Text1(N % 64) of page N / 64, its model name as Combo1(N % 8)
// of page N / 8 of the model-name dialog; shown gets the controls visible, inputs those a user
// can change, both numbered as the keys number them.
FormRun RunForm(const std::string& cpu, headless::Page& page, const ParameterImage& base,
                const Typed& typed) {
    test::TempDir project;  // the I/O assignment takes the run's working file first
    project.Write("param.$$$", {base.bytes().begin(), base.bytes().end()});
    ModuleState state = test::StateFor(cpu, project.Path());
    state.image = base;
    test::ScriptedMessages messages;
    state.Presenter = &messages;
    const bool io = page.Form() == "frmIOLayout" && !typed.empty();
    FormRun run;
    const auto view = [&](QWidget* dialog, const QString& stem, int first, int count) {
        const auto local = [&](const QString& name, int shift) {
            const int open = name.indexOf('(');
            if (!io || open < 0 || name.left(open) != stem) return name;
            return QString("%1(%2)").arg(stem).arg(name.mid(open + 1).chopped(1).toInt() + shift);
        };
        for (const auto& [field, value] : typed) {
            const QString name = QString::fromStdString(field.control);
            const int n = name.section('(', 1).section(')', 0, 0).toInt();
            if (!io || (name.startsWith(stem) && n >= first && n < first + count))
                TypeInto(dialog, field, value, local(name, -first));
        }
        for (QWidget* w : dialog->findChildren<QWidget*>()) {
            if (w->objectName().isEmpty() || !w->isVisibleTo(dialog)) continue;
            const std::string name = local(w->objectName(), first).toStdString();
            run.shown.insert(name);
            const auto* box = qobject_cast<QLineEdit*>(w);
            if (w->isEnabled() && ((box && !box->isReadOnly()) || qobject_cast<QCheckBox*>(w) ||
                                   w->inherits("QRadioButton") || qobject_cast<QComboBox*>(w)))
                run.inputs.insert(name);
        }
    };
    test::ModalDriver driver;
    driver.On(QString::fromStdString(page.Form()), [&](QWidget* dialog) {
        view(dialog, "Text1", 0, 64);
        if (io) {
            test::PressKey(QApplication::focusWidget(), Qt::Key_PageDown);
            view(dialog, "Text1", 64, 64);
            test::PressKey(QApplication::focusWidget(), Qt::Key_PageDown);  // names: page 0
            test::PressKey(test::Child(dialog, "Type"), Qt::Key_Space);
        }
        test::PressKey(dialog, Qt::Key_End);
        for (int c = 0; c <= kMaxControlNo; ++c) {
            QWidget* control = ControlOfNumber(c);
            if (control != nullptr && control->window() == dialog && HasErrorColor(control))
                run.painted.insert(page.KeyOfControl(ControlNameOf(c).control));
        }
        if (dialog->isVisible()) qobject_cast<QDialog*>(dialog)->done(QDialog::Rejected);
    });
    if (io) {
        driver.On("frmTypeNameSet", [&](QWidget* names) {
            for (int p = 0; p < 8; ++p) {
                view(names, "Combo1", 8 * p, 8);
                if (p < 7) test::PressKey(test::Child(names, "ChangePage(1)"), Qt::Key_Space);
            }
            test::PressKey(test::Child(names, "Close"), Qt::Key_Space);
        });
    }
    driver.Run([&] { OpenDialog(page.Form(), state); });
    for (int number : messages.Numbers()) run.messages.insert(number);
    const uint8_t flag = (run.image = state.image)[kIoAssignedFlagAt];
    SetCheckSum(run.image, cpu, flag != 0xFF && flag != base[kIoAssignedFlagAt]);
    return run;
}

// The values of one OK of page on image: key by key, in the dialog's order, the first
// candidate the dialog takes that changes what OK writes (a range's start with its end).
Typed Batch(headless::Page& page, const ParameterImage& image, const std::set<std::string>& done) {
    Typed batch;
    ParameterImage last = image;
    const auto taken = [&](Typed all) {  // the batch and all, if the dialog takes them
        all.insert(all.begin(), batch.begin(), batch.end());
        ParameterImage opened = image;
        if (!TypeAll(page, opened, all)) return false;
        page.Write(opened);
        if (opened == last) return false;
        std::tie(batch, last) = std::tie(all, opened);
        return true;
    };
    for (bool grew = true; grew;) {  // the fields a count adds, and what a later field opens
        grew = false;
        ParameterImage opened = image;
        TypeAll(page, opened, batch);
        const std::vector<FieldRef> fields = KeysOf(page);
        for (size_t i = 0; i < fields.size(); ++i) {
            const auto same = [&](const auto& t) { return t.first.key == fields[i].key; };
            if (done.count(fields[i].key) || std::ranges::any_of(batch, same)) continue;
            const auto values =
                Candidates(fields[i], int(i), i ? headless::Page::ValueOf(fields[i - 1]) : "");
            bool ok = std::ranges::any_of(values, [&](auto& v) { return taken({{fields[i], v}}); });
            for (size_t v = 0;
                 !ok && v < std::min<size_t>(3, values.size()) && i + 1 < fields.size(); ++v)
                for (const std::string& w : Candidates(fields[i + 1], int(i + 1), values[v]))
                    if ((ok = taken({{fields[i], values[v]}, {fields[i + 1], w}}))) break;
            grew = grew || ok;
        }
    }
    return batch;
}

TEST(HeadlessSetForm, EveryKeyTypesIntoItsOwnControl) {
    for (std::string_view code : platform::kCpuTypes) {
        const std::string cpu(code);
        const DialogContext context = headless::HeadlessContext(cpu);
        ParameterImage image = test::DefaultImage(cpu);
        std::set<std::string> done;  // typed, or refused by another dialog's check
        // A second round on the image the first left: the fields a value of a later dialog
        // opens (the latch ranges of the timer partition) take theirs then.
        for (int round = 0; round < 2; ++round) {
            for (const auto& page : headless::PagesFor(context)) {
                for (Typed batch; !(batch = Batch(*page, image, done)).empty();) {
                    std::vector<headless::Assignment> typed;
                    for (const auto& [field, value] : batch) typed.push_back({field.key, value});
                    auto outcome = headless::Set(image, context, typed);
                    // A value the whole check refuses (a latch range over the step relays)
                    // goes with the values after it, which the next batch tries again.
                    while (!outcome.refusals.empty()) {
                        const std::string dropped = typed.back().key;
                        typed.pop_back();
                        batch.pop_back();
                        outcome = headless::Set(image, context, typed);
                        if (outcome.refusals.empty()) done.insert(dropped);
                    }
                    if (batch.empty()) continue;
                    SCOPED_TRACE(cpu + " " + page->Name() + " " + batch.front().first.key);
                    const FormRun run = RunForm(cpu, *page, image, batch);
                    EXPECT_EQ(run.messages, std::set<int>{});
                    EXPECT_EQ(test::DifferingBytes(outcome.image, run.image), std::vector<int>{});
                    std::set<std::string> named;
                    ParameterImage opened = image;
                    TypeAll(*page, opened, batch);
                    for (const FieldRef& f : KeysOf(*page)) {
                        for (size_t o = 0; f.options && o < f.options->values.size(); ++o)
                            named.insert(f.control + "(" + std::to_string(o) + ")");
                        if (f.options == nullptr) named.insert(f.control);
                    }
                    for (const std::string& control : run.inputs)
                        EXPECT_TRUE(named.count(control)) << control << " has no key";
                    for (const std::string& control : named)
                        EXPECT_TRUE(run.shown.count(control)) << control << " is not shown";
                    for (const auto& a : typed) done.insert(a.key);
                    image = outcome.image;
                }
            }
        }
    }
}

TEST(HeadlessCheckForm, EachDialogShowsWhatCheckReports) {
    static const int kWords[] = {18,  20,  22,  24,  36,  48,  64,   68,   70,   160,
                                 176, 192, 194, 196, 198, 210, 534,  2304, 2306, 2312,
                                 142, 143, 158, 384, 386, 212, 2434, 14,   56,   72};
    static const int kValues[] = {0, 1, 8, 100, 200, 256, 300, 1023, 2047, 9000, 32800};
    std::mt19937 random(7);
    int failing = 0;
    for (const char* cpu : {"A0J", "A2C", "A3 ", "A3U"}) {
        for (int n = 0; n < 3; ++n) {
            ParameterImage image = test::DefaultImage(cpu);
            for (int k = 0; k < 4; ++k)
                image.SetParamWord(kValues[random() % std::size(kValues)],
                                   kWords[random() % std::size(kWords)]);
            const DialogContext context = headless::HeadlessContext(cpu);
            const auto found = headless::Check(image, context);
            for (const auto& page : headless::PagesFor(context)) {
                SCOPED_TRACE(std::string(cpu) + " image " + std::to_string(n) + " " + page->Name());
                FormRun expected;
                for (const headless::Violation& v : found) {
                    if (v.dialog != page->Name()) continue;
                    expected.messages.insert(v.message);
                    if (!v.key.empty()) expected.painted.insert(v.key);
                }
                failing += expected.messages.empty() ? 0 : 1;
                const FormRun shown = RunForm(cpu, *page, image, {});
                EXPECT_EQ(shown.messages, expected.messages);
                EXPECT_EQ(shown.painted, expected.painted);
            }
        }
    }
    EXPECT_GT(failing, 5);  // the corpus has dialogs that refuse as well as ones that pass
}

}  // namespace
}  // namespace gantrix
