#pragma once
// A spreadsheet application registered as "excel.application" for the length of a test. It
// records what the component asks of it, in order, in one log (message boxes too, through
// LoggingMessages), opens workbook files that exist, and throws on the calls a test names.

#include <filesystem>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/excel/Excel.h"
#include "support/core/TestSupport.h"

namespace gantrix::test {

class RecordingExcel {
  public:
    struct Log {
        std::vector<std::string> entries;
        std::vector<std::string> failing;  // entries starting so throw instead
        void Add(const std::string& entry) {
            entries.push_back(entry);
            for (const std::string& prefix : failing) {
                if (entry.rfind(prefix, 0) == 0) throw std::runtime_error("refused: " + entry);
            }
        }
    };

    class Sheet : public excel::Worksheet {
      public:
        Sheet(Log& log, std::string name) : log_(log), name_(std::move(name)) {}
        std::string Name() const override { return name_; }
        std::string CellText(int row, int column) const override {
            const auto it = cells.find(Address(row, column));
            return it == cells.end() ? "" : it->second;
        }
        void SetCell(int row, int column, const std::string& value) override {
            log_.Add("Cell " + name_ + "!" + Address(row, column) + " " + value);
            cells[Address(row, column)] = value;
        }
        static std::string Address(int row, int column) {
            return std::string(1, static_cast<char>('A' + column - 1)) + std::to_string(row);
        }
        std::map<std::string, std::string> cells;  // "A29" -> text

      private:
        Log& log_;
        std::string name_;
    };

    class Book : public excel::Workbook {
      public:
        Book(Log& log, std::string name) : log_(log), name_(std::move(name)), temp(log, "TEMP") {}
        std::string Name() const override { return name_; }
        std::vector<excel::Worksheet*> Worksheets() override { return {&temp}; }
        void Activate() override { log_.Add("Activate " + name_); }

      private:
        Log& log_;
        std::string name_;

      public:
        Sheet temp;
    };

    class App : public excel::Application {
      public:
        explicit App(Log& log) : log_(log) {}
        std::vector<excel::Workbook*> Workbooks() override {
            std::vector<excel::Workbook*> list;
            for (auto& book : books) list.push_back(book.get());
            return list;
        }
        excel::Workbook* Open(const std::string& fileName) override {
            log_.Add("Open " + fileName);
            if (!std::filesystem::is_regular_file(fileName)) {
                throw std::runtime_error("cannot open " + fileName);
            }
            const std::string name = std::filesystem::path(fileName).filename().string();
            books.push_back(std::make_unique<Book>(log_, name));
            return books.back().get();
        }
        void Run(const std::string& macro) override { log_.Add("Run " + macro); }
        void SetVisible(bool visible) override { log_.Add("Visible " + std::to_string(visible)); }
        int WindowState() const override { return windowState; }
        void SetWindowState(int state) override {
            log_.Add("WindowState " + std::to_string(state));
            windowState = state;
        }
        std::vector<std::unique_ptr<Book>> books;
        int windowState = excel::kWindowNormal;

      private:
        Log& log_;
    };

    // running: an instance runs already; creatable: a new one can be started.
    explicit RecordingExcel(bool running = false, bool creatable = true)
        : running_(running), creatable_(creatable) {
        excel::RegisterApplicationClass("excel.application",
                                        {[this]() -> std::shared_ptr<excel::Application> {
                                             log.Add("GetObject");
                                             return running_ ? app : nullptr;
                                         },
                                         [this]() -> std::shared_ptr<excel::Application> {
                                             log.Add("Create");
                                             running_ = running_ || creatable_;
                                             return running_ ? app : nullptr;
                                         }});
    }
    ~RecordingExcel() { excel::RegisterApplicationClass("excel.application", {}); }
    RecordingExcel(const RecordingExcel&) = delete;
    RecordingExcel& operator=(const RecordingExcel&) = delete;

    // The TEMP sheet of the open workbook name; nullptr when it is not open.
    Sheet* Temp(const std::string& name) {
        for (auto& book : app->books) {
            if (book->Name() == name) return &book->temp;
        }
        return nullptr;
    }
    // The user closes every workbook.
    void CloseAll() { app->books.clear(); }

    Log log;
    std::shared_ptr<App> app = std::make_shared<App>(log);

  private:
    bool running_;
    bool creatable_;
};

// Scripted message boxes that also go into the spreadsheet's log, so that a test sees the
// order of questions and automation calls.
class LoggingMessages : public ScriptedMessages {
  public:
    explicit LoggingMessages(RecordingExcel::Log& log) : log_(log) {}
    MessageButton Present(const MessageBoxLook& box) override {
        log_.entries.push_back("message " + std::to_string(box.number));
        return ScriptedMessages::Present(box);
    }

  private:
    RecordingExcel::Log& log_;
};

}  // namespace gantrix::test
