// SPDX-License-Identifier: Apache-2.0
#include "spreadsheet/SpreadsheetApplication.h"

#include <QApplication>
#include <algorithm>
#include <cctype>
#include <climits>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "spreadsheet/NetworkWindow.h"
#include "spreadsheet/ReportWindow.h"

namespace gantrix::spreadsheet {
namespace {

std::weak_ptr<SpreadsheetApplication>& Instance() {
    static std::weak_ptr<SpreadsheetApplication> instance;
    return instance;
}

// The same file under whatever spelling of its path.
std::string Canonical(const std::string& path) {
    char resolved[PATH_MAX];
    return ::realpath(path.c_str(), resolved) != nullptr ? std::string(resolved) : path;
}

std::string FileName(const std::string& path) {
    const auto slash = path.find_last_of('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

struct Registrar {
    Registrar() { RegisterSpreadsheetApplication(); }
} registrar;

}  // namespace

std::string CellSheet::CellText(int row, int column) const {
    const auto it = cells_.find({row, column});
    return it == cells_.end() ? "" : it->second;
}

void CellSheet::SetCell(int row, int column, const std::string& value) {
    if (value.empty()) {
        cells_.erase({row, column});
    } else {
        cells_[{row, column}] = value;
    }
}

void CellSheet::Fill(const Sheet& sheet) {
    cells_.clear();
    for (std::size_t r = 0; r < sheet.rows.size(); ++r) {
        const auto& cells = sheet.rows[r].cells;
        for (std::size_t c = 0; c < cells.size(); ++c) {
            SetCell(static_cast<int>(r + 1), static_cast<int>(c + 1), cells[c]);
        }
    }
}

SpreadsheetWorkbook::SpreadsheetWorkbook(SpreadsheetApplication& application, std::string path,
                                         const WorkbookTemplate& layout)
    : application_(application),
      path_(std::move(path)),
      name_(FileName(path_)),
      kind_(layout.kind) {
    for (const std::string& sheet : layout.sheets) {
        sheets_.push_back(std::make_unique<CellSheet>(sheet));
    }
}

SpreadsheetWorkbook::~SpreadsheetWorkbook() = default;

std::vector<excel::Worksheet*> SpreadsheetWorkbook::Worksheets() {
    std::vector<excel::Worksheet*> sheets;
    for (const auto& sheet : sheets_) sheets.push_back(sheet.get());
    return sheets;
}

void SpreadsheetWorkbook::Activate() {
    application_.Activate(this);
}

CellSheet* SpreadsheetWorkbook::FindSheet(const std::string& name) const {
    for (const auto& sheet : sheets_) {
        if (sheet->Name() == name) return sheet.get();
    }
    return nullptr;
}

std::string SpreadsheetWorkbook::TempCell(int row, int column) const {
    const CellSheet* temp = FindSheet("TEMP");
    return temp != nullptr ? temp->CellText(row, column) : "";
}

void SpreadsheetWorkbook::ReplaceSheets(const std::vector<Sheet>& sheets) {
    std::vector<std::unique_ptr<CellSheet>> replaced;
    for (const Sheet& sheet : sheets) {
        replaced.push_back(std::make_unique<CellSheet>(sheet.name));
        replaced.back()->Fill(sheet);
    }
    for (auto& sheet : sheets_) {
        if (sheet->Name() == "TEMP") replaced.push_back(std::move(sheet));
    }
    sheets_ = std::move(replaced);
}

std::shared_ptr<SpreadsheetApplication> SpreadsheetApplication::Running() {
    return Instance().lock();
}

std::shared_ptr<SpreadsheetApplication> SpreadsheetApplication::Start() {
    if (auto running = Running()) return running;
    if (qobject_cast<QApplication*>(QCoreApplication::instance()) == nullptr) return nullptr;
    auto application = std::make_shared<SpreadsheetApplication>();
    Instance() = application;
    return application;
}

SpreadsheetApplication::~SpreadsheetApplication() {
    // Only reached with every workbook closed, unless the process ends with windows open.
    for (auto& book : books_) {
        if (WorkbookWindow* window = book->Window()) delete window;
    }
}

std::vector<excel::Workbook*> SpreadsheetApplication::Workbooks() {
    std::vector<excel::Workbook*> books;
    for (const auto& book : books_) books.push_back(book.get());
    return books;
}

excel::Workbook* SpreadsheetApplication::Open(const std::string& fileName) {
    const std::string path = Canonical(fileName);
    for (const auto& book : books_) {
        if (book->Path() == path) {
            Activate(book.get());
            return book.get();
        }
    }
    std::ifstream file(path, std::ios::binary);
    if (!file) return nullptr;
    std::ostringstream text;
    text << file.rdbuf();
    const std::optional<WorkbookTemplate> layout = ParseWorkbookTemplate(text.str());
    if (!layout) return nullptr;
    const std::string name = FileName(path);
    for (const auto& book : books_) {
        if (book->Name() == name) return nullptr;  // two open workbooks never share a name
    }

    auto book = std::make_unique<SpreadsheetWorkbook>(*this, path, *layout);
    if (layout->kind == WorkbookKind::Parameter) {
        book->window_ = new ReportWindow(*book, weak_from_this());
    } else {
        book->window_ = new NetworkWindow(*book, weak_from_this());
    }
    books_.push_back(std::move(book));
    keepRunning_ = shared_from_this();
    Activate(books_.back().get());
    return books_.back().get();
}

void SpreadsheetApplication::Run(const std::string& macro) {
    std::string name = macro;
    std::transform(name.begin(), name.end(), name.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (name != "auto_open" || active_ == nullptr || active_->Window() == nullptr) return;
    active_->Window()->AutoOpen();
}

void SpreadsheetApplication::SetVisible(bool visible) {
    visible_ = visible;
    for (const auto& book : books_) {
        if (WorkbookWindow* window = book->Window()) window->setVisible(visible);
    }
    if (visible && active_ != nullptr) Activate(active_);
}

int SpreadsheetApplication::WindowState() const {
    const WorkbookWindow* window = active_ != nullptr ? active_->Window() : nullptr;
    return window != nullptr && window->isMinimized() ? excel::kWindowMinimized
                                                      : excel::kWindowNormal;
}

void SpreadsheetApplication::SetWindowState(int state) {
    WorkbookWindow* window = active_ != nullptr ? active_->Window() : nullptr;
    if (window == nullptr) return;
    if (state == excel::kWindowMinimized) {
        window->setWindowState(window->windowState() | Qt::WindowMinimized);
    } else if (state == excel::kWindowNormal) {
        window->setWindowState(window->windowState() &
                               ~(Qt::WindowMinimized | Qt::WindowMaximized));
    }
}

void SpreadsheetApplication::Activate(SpreadsheetWorkbook* book) {
    active_ = book;
    WorkbookWindow* window = book->Window();
    if (!visible_ || window == nullptr) return;
    window->Reactivate();
    window->show();
    window->raise();
    window->activateWindow();
}

void SpreadsheetApplication::WorkbookClosed(SpreadsheetWorkbook* book) {
    if (active_ == book) active_ = nullptr;
    const auto it = std::find_if(books_.begin(), books_.end(),
                                 [book](const auto& open) { return open.get() == book; });
    if (it == books_.end()) return;
    books_.erase(it);
    if (active_ == nullptr && !books_.empty()) active_ = books_.back().get();
    // With the last workbook gone nothing keeps the application running; whoever still
    // holds it (the caller included) keeps it until they let go.
    if (books_.empty()) {
        const auto stopping = std::move(keepRunning_);
    }
}

void RegisterSpreadsheetApplication() {
    excel::RegisterApplicationClass(
        "excel.application", {&SpreadsheetApplication::Running, &SpreadsheetApplication::Start});
}

}  // namespace gantrix::spreadsheet
