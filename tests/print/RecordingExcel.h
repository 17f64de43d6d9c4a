#pragma once
// A spreadsheet application registered as "excel.application" for the length of a test. It
// logs what the component asks of it, in order (message boxes too, through LoggingMessages),
// opens workbook files that exist, and throws on the calls whose log entry starts with one of
// the failing prefixes.

#include <filesystem>
#include <map>
#include <memory>
#include <stdexcept>

#include "platform/excel/Excel.h"
#include "support/core/TestSupport.h"

namespace gantrix::test {

struct ExcelLog {
    std::vector<std::string> entries, failing;
    void Add(const std::string& entry) {
        entries.push_back(entry);
        for (const std::string& prefix : failing) {
            if (entry.rfind(prefix, 0) == 0) throw std::runtime_error("refused: " + entry);
        }
    }
};

// A workbook with one sheet, "TEMP"; cells by address ("B32").
struct RecordingBook : excel::Workbook {
    RecordingBook(ExcelLog& log, std::string name) : log(log), name(std::move(name)) {}
    std::string Name() const override { return name; }
    std::vector<excel::Worksheet*> Worksheets() override { return {&temp}; }
    void Activate() override { log.Add("Activate " + name); }
    struct Temp : excel::Worksheet {
        explicit Temp(RecordingBook& book) : book(book) {}
        std::string Name() const override { return "TEMP"; }
        std::string CellText(int row, int column) const override {
            const auto it = book.cells.find(Address(row, column));
            return it == book.cells.end() ? "" : it->second;
        }
        void SetCell(int row, int column, const std::string& value) override {
            book.log.Add("Cell TEMP!" + Address(row, column) + " " + value);
            book.cells[Address(row, column)] = value;
        }
        RecordingBook& book;
    };
    static std::string Address(int row, int column) {
        return std::string(1, static_cast<char>('A' + column - 1)) + std::to_string(row);
    }

    ExcelLog& log;
    std::string name;
    std::map<std::string, std::string> cells;
    Temp temp{*this};
};

struct RecordingApp : excel::Application {
    explicit RecordingApp(ExcelLog& log) : log(log) {}
    std::vector<excel::Workbook*> Workbooks() override {
        std::vector<excel::Workbook*> list;
        for (auto& book : books) list.push_back(book.get());
        return list;
    }
    excel::Workbook* Open(const std::string& file) override {
        log.Add("Open " + file);
        if (!std::filesystem::is_regular_file(file)) throw std::runtime_error("no " + file);
        const std::string name = std::filesystem::path(file).filename().string();
        return books.emplace_back(std::make_unique<RecordingBook>(log, name)).get();
    }
    void Run(const std::string& macro) override { log.Add("Run " + macro); }
    void SetVisible(bool visible) override { log.Add("Visible " + std::to_string(visible)); }
    int WindowState() const override { return windowState; }
    void SetWindowState(int state) override {
        log.Add("WindowState " + std::to_string(state));
        windowState = state;
    }
    // The open workbook of that name, or nullptr.
    RecordingBook* Book(const std::string& name) {
        for (auto& book : books) {
            if (book->name == name) return book.get();
        }
        return nullptr;
    }

    ExcelLog& log;
    std::vector<std::unique_ptr<RecordingBook>> books;
    int windowState = excel::kWindowNormal;
};

class RecordingExcel {
  public:
    // running: an instance runs already; creatable: a new one can be started.
    explicit RecordingExcel(bool running = false, bool creatable = true) {
        replaced_ = excel::RegisterApplicationClass(
            "excel.application", {[this, running]() -> std::shared_ptr<excel::Application> {
                                      log.Add("GetObject");
                                      return running || started_ ? app : nullptr;
                                  },
                                  [this, creatable]() -> std::shared_ptr<excel::Application> {
                                      log.Add("Create");
                                      started_ = creatable;
                                      return creatable ? app : nullptr;
                                  }});
    }
    // The application the component brings (or none) is back once the double goes.
    ~RecordingExcel() { excel::RegisterApplicationClass("excel.application", replaced_); }
    RecordingExcel(const RecordingExcel&) = delete;  // the registration holds this

    ExcelLog log;
    std::shared_ptr<RecordingApp> app = std::make_shared<RecordingApp>(log);

  private:
    bool started_ = false;
    excel::ApplicationClass replaced_;
};

// Scripted message boxes that also go into the spreadsheet's log.
struct LoggingMessages : ScriptedMessages {
    explicit LoggingMessages(ExcelLog& log) : log(log) {}
    MessageButton Present(const MessageBoxLook& box) override {
        log.entries.push_back("message " + std::to_string(box.number));
        return ScriptedMessages::Present(box);
    }
    ExcelLog& log;
};

}  // namespace gantrix::test
