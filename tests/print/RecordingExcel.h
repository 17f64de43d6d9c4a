// SPDX-License-Identifier: Apache-2.0
#pragma once
// A spreadsheet registered as "excel.application" while it lives: it logs calls and message
// boxes in order, opens existing files as books of one sheet "TEMP", and throws on calls
// starting with a prefix of failing.

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
        for (const std::string& prefix : failing)
            if (entry.rfind(prefix, 0) == 0) throw std::runtime_error("refused: " + entry);
    }
};

struct RecordingBook : excel::Workbook {
    RecordingBook(ExcelLog& log, std::string name) : log(log), name(std::move(name)) {}
    std::string Name() const override { return name; }
    std::vector<excel::Worksheet*> Worksheets() override { return {&temp}; }
    void Activate() override { log.Add("Activate " + name); }
    struct Temp : excel::Worksheet {
        RecordingBook* book;
        explicit Temp(RecordingBook* book) : book(book) {}
        std::string Name() const override { return "TEMP"; }
        static std::string At(int row, int col) {
            return char('A' + col - 1) + std::to_string(row);
        }
        std::string CellText(int row, int col) const override {
            return book->cells.count(At(row, col)) ? book->cells.at(At(row, col)) : "";
        }
        void SetCell(int row, int col, const std::string& value) override {
            book->log.Add("Cell TEMP!" + At(row, col) + " " + value);
            book->cells[At(row, col)] = value;
        }
    };
    ExcelLog& log;
    std::string name;
    std::map<std::string, std::string> cells;  // by address, "B32"
    Temp temp{this};
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
        return books
            .emplace_back(std::make_unique<RecordingBook>(
                log, std::filesystem::path(file).filename().string()))
            .get();
    }
    void Run(const std::string& macro) override { log.Add("Run " + macro); }
    void SetVisible(bool visible) override { log.Add("Visible " + std::to_string(visible)); }
    int WindowState() const override { return windowState; }
    void SetWindowState(int state) override {
        log.Add("WindowState " + std::to_string(windowState = state));
    }
    RecordingBook* Book(const std::string& name) {
        for (auto& book : books)
            if (book->name == name) return book.get();
        return nullptr;
    }
    ExcelLog& log;
    std::vector<std::unique_ptr<RecordingBook>> books;
    int windowState = excel::kWindowNormal;
};

// running: an instance runs already; creatable: a new one can be started.
struct RecordingExcel {
    explicit RecordingExcel(bool running = false, bool creatable = true) {
        auto give = [this](const char* call, bool gives) {
            log.Add(call);
            return gives ? std::static_pointer_cast<excel::Application>(app) : nullptr;
        };
        replaced = excel::RegisterApplicationClass(
            "excel.application", {[=, this] { return give("GetObject", running || started); },
                                  [=, this] { return give("Create", started = creatable); }});
    }
    ~RecordingExcel() { excel::RegisterApplicationClass("excel.application", replaced); }
    RecordingExcel(const RecordingExcel&) = delete;  // the registration holds this
    ExcelLog log;
    std::shared_ptr<RecordingApp> app = std::make_shared<RecordingApp>(log);
    bool started = false;
    excel::ApplicationClass replaced;
};

struct LoggingMessages : ScriptedMessages {
    explicit LoggingMessages(ExcelLog& log) : log(log) {}
    MessageButton Present(const MessageBoxLook& box) override {
        log.entries.push_back("message " + std::to_string(box.number));
        return ScriptedMessages::Present(box);
    }
    ExcelLog& log;
};

}  // namespace gantrix::test
