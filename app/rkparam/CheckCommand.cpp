// SPDX-License-Identifier: Apache-2.0
// check of one project, of several, or of every project under a directory, printed as text,
// JSON or JUnit XML.
//
// One project that cannot be read is the command's failure (exit status 2), as it always was.
// Among several, it is a finding of that project: the others are still checked and reported,
// and the exit status is 1, so a pipeline fails on it and sees which project it was.

#include <iostream>
#include <nlohmann/json.hpp>
#include <set>

#include "PipelineCommands.h"
#include "headless/ProjectCheck.h"
#include "store/ParameterFiles.h"
#include "store/RuntimeError.h"

namespace rkparam {
namespace {

namespace hl = gantrix::headless;

// Text for XML attributes and content: markup characters as entities, control characters
// (which XML 1.0 cannot hold) as \xHH, as elsewhere.
std::string XmlText(const std::string& text) {
    std::string xml;
    for (const char c : Utf8Text(text)) {
        switch (c) {
            case '&':
                xml += "&amp;";
                break;
            case '<':
                xml += "&lt;";
                break;
            case '>':
                xml += "&gt;";
                break;
            case '"':
                xml += "&quot;";
                break;
            default:
                if (static_cast<unsigned char>(c) < 0x20) {
                    char buffer[8];
                    std::snprintf(buffer, sizeof buffer, "\\x%02X", c);
                    xml += buffer;
                } else {
                    xml += c;
                }
        }
    }
    return xml;
}

// One test suite a project: a passing test case for each check without a finding, a failing
// one for each finding.
std::string Junit(const std::vector<hl::ProjectFindings>& reports) {
    std::string suites;
    size_t tests = 0, failures = 0;
    for (const hl::ProjectFindings& r : reports) {
        const std::string file = XmlText(r.file);
        std::string cases;
        size_t count = 0;
        for (const std::string& check : r.checks) {
            const bool found = std::ranges::any_of(
                r.findings, [&check](const hl::Violation& v) { return v.dialog == check; });
            if (found) continue;
            cases += "    <testcase classname=\"" + file + "\" name=\"[" + check + "]\"/>\n";
            ++count;
        }
        for (const hl::Violation& v : r.findings) {
            const std::string text = XmlText(hl::Describe(v));
            const std::string type =
                v.message >= 0 ? "message " + std::to_string(v.message) : v.dialog;
            cases += "    <testcase classname=\"" + file + "\" name=\"" + text +
                     "\">\n      <failure message=\"" + text + "\" type=\"" + type + "\">" + text +
                     "</failure>\n    </testcase>\n";
        }
        count += r.findings.size();
        tests += count;
        failures += r.findings.size();
        suites += "  <testsuite name=\"" + file + "\" tests=\"" + std::to_string(count) +
                  "\" failures=\"" + std::to_string(r.findings.size()) +
                  "\" errors=\"0\">\n    <properties><property name=\"cpu\" value=\"" +
                  XmlText(r.cpu) + "\"/></properties>\n" + cases + "  </testsuite>\n";
    }
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites name=\"rkparam check\" "
           "tests=\"" +
           std::to_string(tests) + "\" failures=\"" + std::to_string(failures) +
           "\" errors=\"0\">\n" + suites + "</testsuites>\n";
}

std::string Json(const std::vector<hl::ProjectFindings>& reports, size_t failed) {
    nlohmann::ordered_json j;
    j["checked"] = reports.size();
    j["passed"] = reports.size() - failed;
    j["failed"] = failed;
    j["projects"] = nlohmann::ordered_json::array();
    for (const hl::ProjectFindings& r : reports) {
        nlohmann::ordered_json findings = nlohmann::ordered_json::array();
        for (const hl::Violation& v : r.findings) {
            findings.push_back({{"dialog", v.dialog},
                                {"key", Utf8Text(v.key)},
                                {"message", v.message},
                                {"text", Utf8Text(v.text)}});
        }
        j["projects"].push_back(
            {{"file", Utf8Text(r.file)}, {"cpu", r.cpu}, {"findings", std::move(findings)}});
    }
    return j.dump(2) + "\n";
}

}  // namespace

int CheckCommand(const Options& o) {
    if (o.paths.empty() && o.recursive.empty()) {
        throw Failure("check needs a PATH or --recursive DIR");
    }
    const bool many = o.paths.size() > 1 || !o.recursive.empty();
    std::vector<gantrix::ProjectPath> projects;
    std::vector<hl::ProjectFindings> unreadable;
    for (const std::string& path : o.paths) projects.push_back(Locate(path));
    for (const std::string& dir : o.recursive) {
        gantrix::FoundProjects found = gantrix::FindProjects(dir);
        if (found.projects.empty() && found.unreadable.empty()) {
            throw Failure("no project under " + Quoted(dir) + ": no directory there holds a " +
                          Quoted(gantrix::kParamTmp));
        }
        for (auto& p : found.projects) projects.push_back(std::move(p));
        for (const auto& u : found.unreadable) {
            unreadable.push_back({u.directory, "", {"file"}, {{"file", "", -1, u.why}}});
        }
    }

    hl::ProjectChecker checker([&o](const std::string& dir) { return CpuFor(o.cpu, dir, ""); });
    std::vector<hl::ProjectFindings> reports;
    std::set<std::string> seen;
    for (const gantrix::ProjectPath& p : projects) {
        if (!seen.insert(p.file).second) continue;
        if (!many) {
            reports.push_back(checker.Check(p));
            continue;
        }
        std::string why;
        try {
            reports.push_back(checker.Check(p));
            continue;
        } catch (const Failure& failure) {
            why = failure.what();
        } catch (const gantrix::RuntimeError& error) {
            why = error.Description();
        } catch (const std::exception& error) {
            why = error.what();
        }
        reports.push_back({p.file, "", {"file"}, {{"file", "", -1, why}}});
    }
    reports.insert(reports.end(), unreadable.begin(), unreadable.end());

    size_t failed = 0, problems = 0;
    for (const hl::ProjectFindings& r : reports) {
        failed += r.findings.empty() ? 0 : 1;
        problems += r.findings.size();
    }
    if (o.format == "json") {
        std::cout << Json(reports, failed);
    } else if (o.format == "junit") {
        std::cout << Junit(reports);
    } else if (!many) {
        const hl::ProjectFindings& r = reports.front();
        PrintList(std::cout, "", r.findings);
        if (r.findings.empty()) {
            std::cout << "rkparam: " << r.file << " passes every check\n";
        } else {
            std::cout << "rkparam: " << r.findings.size() << " problem(s) in " << r.file << "\n";
        }
    } else {
        for (const hl::ProjectFindings& r : reports)
            PrintList(std::cout, r.file + ": ", r.findings);
        std::cout << "rkparam: " << reports.size()
                  << " project(s) checked: " << reports.size() - failed << " pass, " << failed
                  << " with " << problems << " problem(s)\n";
    }
    return failed > 0 ? kFound : kOk;
}

}  // namespace rkparam
