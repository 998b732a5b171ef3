#include "benchmarks/speed_table.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace vireon::bench {
namespace {

constexpr std::size_t kColumns = 9;
using Cells = std::array<std::string, kColumns>;

constexpr const char* kHeadings[kColumns] = {
    "scene", "plain ms", "ours ms", "ratio", "required", "form", "level", "plain MiB", "ours MiB"};
// Texts stand at the left of their columns, numbers at the right.
constexpr bool kIsText[kColumns] = {true, false, false, false, false, true, true, false, false};

std::string Number(double value, int decimals) {
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    return text;
}

/// Three digits that count, at the least.
std::string Milliseconds(double value) {
    return Number(value, value < 10.0 ? 3 : value < 100.0 ? 2 : 1);
}

std::string Mebibytes(std::size_t bytes) {
    return bytes == 0 ? "-" : Number(static_cast<double>(bytes) / (1024.0 * 1024.0), 1);
}

std::string Required(const SpeedRow& row) {
    if (!row.requiredRatio) return "-";
    return Number(*row.requiredRatio, 0) + (row.met() ? " met" : " NOT");
}

Cells CellsOf(const SpeedRow& row) {
    return {row.name,
            Milliseconds(row.plainMs),
            Milliseconds(row.oursMs),
            Number(row.ratio(), 2),
            Required(row),
            row.form.empty() ? "-" : row.form,
            row.level,
            Mebibytes(row.plainPeakBytes),
            Mebibytes(row.oursPeakBytes)};
}

std::string Line(const Cells& cells, const std::array<std::size_t, kColumns>& widths) {
    std::string line;
    for (std::size_t i = 0; i < kColumns; ++i) {
        const std::string fill(widths[i] - cells[i].size(), ' ');
        line += (i == 0 ? "" : "  ") + (kIsText[i] ? cells[i] + fill : fill + cells[i]);
    }
    line.erase(line.find_last_not_of(' ') + 1);
    return line + "\n";
}

std::string Quoted(const std::string& text) {
    std::string quoted = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') quoted += '\\';
        if (static_cast<unsigned char>(c) >= 0x20) quoted += c;
    }
    return quoted + "\"";
}

std::string RowJson(const SpeedRow& row) {
    const auto member = [](const char* name, const std::string& value) {
        return std::string("\"") + name + "\": " + value;
    };
    return "{" + member("scene", Quoted(row.name)) + ", " +
           member("plain_ms", Number(row.plainMs, 6)) + ", " +
           member("ours_ms", Number(row.oursMs, 6)) + ", " +
           member("ratio", Number(row.ratio(), 4)) + ", " +
           member("required_ratio", row.requiredRatio ? Number(*row.requiredRatio, 2) : "null") +
           ", " + member("form", row.form.empty() ? "null" : Quoted(row.form)) + ", " +
           member("level", Quoted(row.level)) + ", " +
           member("plain_peak_bytes", std::to_string(row.plainPeakBytes)) + ", " +
           member("ours_peak_bytes", std::to_string(row.oursPeakBytes)) + ", " +
           member("note", row.note.empty() ? "null" : Quoted(row.note)) + "}";
}

}  // namespace

std::string TableText(const SpeedReport& report) {
    std::vector<Cells> lines(1);
    std::copy(std::begin(kHeadings), std::end(kHeadings), lines.front().begin());
    for (const SpeedRow& row : report.rows) lines.push_back(CellsOf(row));
    std::array<std::size_t, kColumns> widths{};
    for (const Cells& cells : lines) {
        for (std::size_t i = 0; i < kColumns; ++i) widths[i] = std::max(widths[i], cells[i].size());
    }
    std::string text;
    for (const Cells& cells : lines) text += Line(cells, widths);
    text += "\n";
    for (const SpeedRow& row : report.rows) {
        if (!row.note.empty()) text += row.name + ": " + row.note + "\n";
    }
    for (const std::string& remark : report.remarks) text += remark + "\n";
    if (report.yardstick) {
        text += report.yardstick->name + ": " + Milliseconds(report.yardstick->milliseconds) +
                " ms a frame; ours " + Milliseconds(report.yardstick->oursMs) + " ms\n";
    }
    return text + "Times: " + report.clock + ". System: " + report.system + ".\n";
}

std::string JsonText(const SpeedReport& report) {
    std::string text = "{\n  \"system\": " + Quoted(report.system) +
                       ",\n  \"clock\": " + Quoted(report.clock) + ",\n  \"rows\": [";
    for (std::size_t i = 0; i < report.rows.size(); ++i) {
        text += (i == 0 ? "\n    " : ",\n    ") + RowJson(report.rows[i]);
    }
    text += "\n  ],\n  \"remarks\": [";
    for (std::size_t i = 0; i < report.remarks.size(); ++i) {
        text += (i == 0 ? "\n    " : ",\n    ") + Quoted(report.remarks[i]);
    }
    text += "\n  ],\n  \"yardstick\": ";
    if (report.yardstick) {
        text += "{\"name\": " + Quoted(report.yardstick->name) +
                ", \"ms\": " + Number(report.yardstick->milliseconds, 6) +
                ", \"ours_ms\": " + Number(report.yardstick->oursMs, 6) + "}";
    } else {
        text += "null";
    }
    return text + "\n}\n";
}

}  // namespace vireon::bench
