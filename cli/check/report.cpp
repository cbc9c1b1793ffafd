#include "report.h"

#include "../json_text.h"

#include <algorithm>
#include <cstdio>

namespace kzb::cli::check {

namespace {

const char *word_for(Verdict verdict) {
    switch (verdict) {
    case Verdict::ok:
        return "ok";
    case Verdict::warn:
        return "warn";
    case Verdict::fail:
        return "FAIL";
    case Verdict::skip:
        break;
    }
    return "skip";
}

std::string number_text(double number) {
    char text[32];
    std::snprintf(text, sizeof text, "%.15g", number);
    return text;
}

// One line, whatever a module's texts hold.
std::string one_line(std::string text) {
    for (char &c : text)
        if (static_cast<unsigned char>(c) < ' ' || c == 0x7F) c = ' ';
    return text;
}

std::string json_of(const Result &result) {
    std::string word = word_for(result.verdict);
    if (result.verdict == Verdict::fail) word = "fail";
    std::string json = "    {\"name\": " + quoted(result.check->name) + ", \"result\": " + quoted(word) +
                       ", \"sentence\": " + quoted(result.sentence) +
                       ",\n     \"description\": " + quoted(result.check->description) +
                       ", \"milliseconds\": " + std::to_string(result.milliseconds) + ",\n     \"findings\": [";
    for (size_t i = 0; i < result.findings.size(); ++i) json += (i ? ", " : "") + quoted(result.findings[i]);
    return json + "]}";
}

} // namespace

Result judge(const Check &check, const Ending &ending, const std::vector<Finding> &findings, int64_t milliseconds) {
    Result result = {&check, Verdict::ok, "", {}, milliseconds};
    std::string remarks;
    if (!ending.well()) result.findings.push_back("the module " + describe(ending));
    for (const Finding &finding : findings)
        if (finding.severity == Severity::failure) result.findings.push_back(finding.text);
    if (!result.findings.empty()) result.verdict = Verdict::fail;
    for (const Finding &finding : findings) {
        if (finding.severity == Severity::warning) result.findings.push_back(finding.text);
        if (finding.severity == Severity::remark) remarks = finding.text;
    }
    if (result.verdict == Verdict::ok && !result.findings.empty()) result.verdict = Verdict::warn;
    result.sentence = !result.findings.empty() ? result.findings.front() : remarks;
    if (result.sentence.empty()) result.sentence = check.description;
    return result;
}

Result skipped(const Check &check) {
    const std::string sentence = std::string("not run, because ") + check.after + " did not pass";
    return {&check, Verdict::skip, sentence, {}, 0};
}

std::string line_of(const Result &result) {
    std::string line = word_for(result.verdict);
    line.resize(5, ' ');
    line += result.check->name + std::string(" - ") + result.sentence;
    if (result.findings.size() > 1)
        line += " (and " + std::to_string(result.findings.size() - 1) + " more; --json shows all)";
    return one_line(line);
}

size_t Report::count(Verdict verdict) const {
    return static_cast<size_t>(
        std::count_if(results.begin(), results.end(), [&](const Result &result) { return result.verdict == verdict; }));
}

std::string summary_of(const Report &report) {
    const auto number = [&](Verdict verdict) { return std::to_string(report.count(verdict)); };
    const size_t all = report.results.size();
    return std::to_string(all) + (all == 1 ? " check: " : " checks: ") + number(Verdict::ok) + " ok, " +
           number(Verdict::warn) + " warned, " + number(Verdict::fail) + " failed, " + number(Verdict::skip) +
           " not run; seed " + std::to_string(report.seed);
}

std::string json_of(const Report &report) {
    std::string json = "{\n  \"module\": " + quoted(report.module) + ",\n  \"seed\": " + std::to_string(report.seed) +
                       ",\n  \"time_limit\": " + number_text(report.time_limit) + ",\n  \"checks\": [\n";
    for (size_t i = 0; i < report.results.size(); ++i)
        json += json_of(report.results[i]) + (i + 1 < report.results.size() ? ",\n" : "\n");
    json += "  ],\n  \"summary\": {\"ok\": " + std::to_string(report.count(Verdict::ok)) +
            ", \"warn\": " + std::to_string(report.count(Verdict::warn)) +
            ", \"fail\": " + std::to_string(report.count(Verdict::fail)) +
            ", \"skip\": " + std::to_string(report.count(Verdict::skip)) + "}\n}\n";
    return json;
}

std::string json_of(const std::vector<const Check *> &checks) {
    std::string json = "[\n";
    for (size_t i = 0; i < checks.size(); ++i)
        json += "  {\"name\": " + quoted(checks[i]->name) + ", \"description\": " + quoted(checks[i]->description) +
                (i + 1 < checks.size() ? "},\n" : "}\n");
    return json + "]\n";
}

} // namespace kzb::cli::check
