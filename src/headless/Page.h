// SPDX-License-Identifier: Apache-2.0
#pragma once
// One settings dialog without its form: the dialog's fields under stable keys, read from an
// image, typed into as a user types, checked and written through the dialog's pure half.
//
// A page holds the dialog's Fields struct and lists its fields as FieldRefs pointing into it,
// so that showing, typing and the raw assignment of the text form share one list per dialog.

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "common/DialogContext.h"
#include "common/ErrorTables.h"
#include "store/ParameterImage.h"

namespace gantrix::headless {

// How a text field cleans what is typed into it (its Change handler).
enum class Cleaning {
    Decimal,  // CheckDecimalText
    Hex,      // CheckHexText
    Page,     // the page's own rule (Page::Clean)
};

// The values an option group shows, by index, and the captions of its options, which are
// also taken when typed.
struct OptionSet {
    std::vector<std::string> values;
    std::vector<std::string> captions;
};

// One field of a dialog: a text box (text), a check box (flag) or an option group (option).
struct FieldRef {
    std::string key;      // "latch.L.start"
    std::string control;  // the control on the form, for the error tables: "Text1(0)"
    std::string* text = nullptr;
    bool* flag = nullptr;
    int* option = nullptr;
    // The options of an option group (index -1: none selected, shown empty).
    const OptionSet* options = nullptr;
    Cleaning cleaning = Cleaning::Decimal;
    int id = 0;  // the page's own number for the field
};

class Page {
  public:
    virtual ~Page() = default;

    // "memory", the prefix of every key of the dialog.
    virtual std::string Name() const = 0;
    // "frmMemory".
    virtual std::string Form() const = 0;
    // The dialog's title, from the string table.
    virtual std::string Title() const = 0;

    // What the dialog does when it opens on image: its fields and the limits it keeps. A load
    // that rewrites bytes of the image (the memory dialog's erased words) rewrites them here.
    virtual void Open(ParameterImage& image) = 0;
    // The fields the dialog shows for the CPU type, in dialog order.
    virtual std::vector<FieldRef> Fields() = 0;
    // The dialog's check as OK runs it, with image as the dialog has it then.
    virtual ErrorTables Check(const ParameterImage& image) const = 0;
    // What OK writes.
    virtual void Write(ParameterImage& image) const = 0;

    // Types text into field as a user would: the field's clean-up, then the rules the dialog
    // applies when the field changes or the focus leaves it. Returns why the field does not
    // take the text, or nullopt when it took it.
    std::optional<std::string> Type(const FieldRef& field, const std::string& text);

    // The value a field shows.
    static std::string ValueOf(const FieldRef& field);

    // The field of key, among the fields and the actions, or nullopt.
    std::optional<FieldRef> Find(const std::string& key);
    // What can be typed but is no stored field: the buttons that fill fields (the fixed latch
    // patterns of the smallest CPU type).
    virtual std::vector<FieldRef> Actions();
    // The actions, with the values to type, that fill the fields with what they show now;
    // none when no action does.
    virtual std::vector<std::pair<std::string, std::string>> ActionsShowing();
    // Every field the CPU type can show, also those the current values hide (the rows of
    // modules beyond the count).
    virtual std::vector<FieldRef> AllFields();
    std::optional<FieldRef> FindAny(const std::string& key);
    // The key of the control with that name among AllFields; "" for none.
    std::string KeyOfControl(const std::string& control);
    // Every field is about to be assigned from the text form and written: a dialog that
    // writes some fields only once they were edited (the model names) writes them all.
    virtual void TakeAll();

    explicit Page(DialogContext context) : context_(std::move(context)) {}

  protected:
    const DialogContext& Context() const { return context_; }

    // The page's own clean-up of a Cleaning::Page field: the cleaned text in cleaned, or why
    // the field does not take text.
    virtual std::optional<std::string> Clean(const FieldRef& field, const std::string& text,
                                             std::string& cleaned);
    // Why a field cannot be typed into now (a greyed-out box), or nullopt.
    virtual std::optional<std::string> Locked(const FieldRef& field);
    // The rules that run after field was typed into (other fields emptied or filled);
    // changed tells whether its value changed.
    virtual void Changed(const FieldRef& field, bool changed);

  private:
    DialogContext context_;
};

// The dialogs of a CPU type, in the order of the parameter menu (the interrupt counter after
// the timer/counter dialog that opens it, the model names inside the I/O assignment).
std::vector<std::unique_ptr<Page>> PagesFor(const DialogContext& context);

// The context of a headless run for cpuType: the device sizes of the host library (set up for
// the CPU type), no sub program open in an editor.
DialogContext HeadlessContext(const std::string& cpuType, const std::string& projectDir = "");

// RkSetupGlobal for cpuType: the host libraries' checks answer for the CPU of the last setup.
void SetUpHostLibraries(const std::string& cpuType, const std::string& projectDir);

}  // namespace gantrix::headless
