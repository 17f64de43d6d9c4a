// SPDX-License-Identifier: Apache-2.0
#pragma once
// The part of the spreadsheet application's automation model that the component uses, as a
// C++ interface. "excel.application" is resolved through a registry of implementations;
// with none registered there is no spreadsheet application: nothing runs, nothing starts.

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace gantrix::excel {

class Worksheet {
  public:
    virtual ~Worksheet() = default;
    virtual std::string Name() const = 0;
    // Text of Cells(row, column); rows and columns count from 1.
    virtual std::string CellText(int row, int column) const = 0;
    virtual void SetCell(int row, int column, const std::string& value) = 0;
};

class Workbook {
  public:
    virtual ~Workbook() = default;
    virtual std::string Name() const = 0;
    virtual std::vector<Worksheet*> Worksheets() = 0;
    // Brings the workbook to the front of the application.
    virtual void Activate() {}
};

// Window states of the application, as the automation model numbers them.
inline constexpr int kWindowMinimized = -4140;
inline constexpr int kWindowNormal = -4143;

class Application {
  public:
    virtual ~Application() = default;
    virtual std::vector<Workbook*> Workbooks() = 0;
    // Opens a workbook file; nullptr when it cannot be opened.
    virtual Workbook* Open(const std::string& fileName) = 0;
    virtual void Run(const std::string& macro) = 0;
    virtual void SetVisible(bool visible) = 0;
    virtual int WindowState() const { return kWindowNormal; }
    virtual void SetWindowState(int /*state*/) {}
};

struct ApplicationClass {
    // Attach to a running instance; nullptr when none runs.
    std::function<std::shared_ptr<Application>()> getRunning;
    // Start a new instance; nullptr when it cannot be started.
    std::function<std::shared_ptr<Application>()> create;
};

// Registers (or, with an empty class, removes) the implementation of a program identifier;
// returns the one it replaces (empty when there was none), so that it can be put back.
ApplicationClass RegisterApplicationClass(const std::string& progId,
                                          ApplicationClass implementation);

// The running instance of progId, or nullptr (nothing registered or nothing running).
std::shared_ptr<Application> GetObject(const std::string& progId);

// A running instance, else a new one; nullptr when progId is not registered.
std::shared_ptr<Application> CreateObject(const std::string& progId);

}  // namespace gantrix::excel
