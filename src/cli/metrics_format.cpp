// Formatting the figures of `arbolet metrics` (see metrics_format.h).
#include "cli/metrics_format.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <string>

#include "base/json_writer.h"
#include "base/utf8.h"
#include "check/check_text.h"

#ifdef _WIN32
#include <io.h>
#include <windows.h>
#else
#include <sys/ioctl.h>
#include <unistd.h>
#endif

namespace arbolet::cli {
namespace {

constexpr std::size_t kGap = 2;

// Cuts a text to `width` characters, marking the cut with "..." at the end (or the start, for
// paths, whose end says most).
std::string Fit(const std::string& text, std::size_t width, bool keepEnd) {
    const std::size_t length = text::CharCount(text);
    if (length <= width) return text + std::string(width - length, ' ');
    if (width <= 3) return std::string(width, '.');
    if (!keepEnd) return std::string(text::LeftChars(text, width - 3)) + "...";
    // Skip characters from the start until the rest fits.
    std::size_t skip = length - (width - 3);
    std::size_t at = 0;
    while (skip > 0 && at < text.size()) {
        ++at;
        while (at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80)
            ++at;
        --skip;
    }
    return "..." + text.substr(at);
}

std::string RightAligned(const std::string& text, std::size_t width) {
    return text.size() >= width ? text : std::string(width - text.size(), ' ') + text;
}

struct Layout {
    std::size_t location = 0;
    std::size_t procedure = 0;
};

constexpr const char* kLinesHeader = "LINES";
constexpr const char* kNestingHeader = "NESTING";
constexpr const char* kComplexityHeader = "COMPLEXITY";

std::string Location(const check::ProcedureFigures& p) {
    return check::ShownText(p.component) + ":" + std::to_string(p.line);
}

std::string ProcedureText(const check::ProcedureFigures& p) {
    return p.kind + " " + p.name;
}

Layout Measure(const std::vector<check::ProcedureFigures>& procedures, std::size_t width) {
    Layout layout{std::string("LOCATION").size(), std::string("PROCEDURE").size()};
    for (const auto& p : procedures) {
        layout.location = std::max(layout.location, text::CharCount(Location(p)));
        layout.procedure = std::max(layout.procedure, text::CharCount(ProcedureText(p)));
    }
    const std::size_t figures = 5 + 7 + 10 + 3 * kGap;
    const std::size_t wanted = layout.location + kGap + layout.procedure + figures;
    if (wanted <= width) return layout;
    std::size_t excess = wanted - width;
    // The procedure column gives way first, down to a readable width, then the location; then
    // both down to a few characters.
    const auto cut = [&excess](std::size_t& column, std::size_t floor) {
        const std::size_t by = std::min(excess, column > floor ? column - floor : 0);
        column -= by;
        excess -= by;
    };
    cut(layout.procedure, 16);
    cut(layout.location, 16);
    cut(layout.procedure, 6);
    cut(layout.location, 6);
    return layout;
}

void WriteRow(std::ostream& out, const Layout& layout, const std::string& location,
              const std::string& procedure, const std::string& lines, const std::string& nesting,
              const std::string& complexity) {
    std::string row = Fit(location, layout.location, true) + std::string(kGap, ' ') +
                      Fit(procedure, layout.procedure, false) + std::string(kGap, ' ') +
                      RightAligned(lines, 5) + std::string(kGap, ' ') + RightAligned(nesting, 7) +
                      std::string(kGap, ' ') + RightAligned(complexity, 10);
    out << row << '\n';
}

std::string Summary(const check::FigureTotals& t) {
    return std::to_string(t.procedures) + (t.procedures == 1 ? " procedure, " : " procedures, ") +
           std::to_string(t.linesOfCode) + " lines of code, deepest nesting " +
           std::to_string(t.maxNesting) + ", complexity " + std::to_string(t.complexity) +
           " (highest " + std::to_string(t.maxComplexity) + ")";
}

// Totals per project in the order projects first appear; files and folders have none.
std::vector<std::pair<std::string, check::FigureTotals>> ProjectTotals(
    const std::vector<check::ComponentFigures>& components) {
    std::vector<std::pair<std::string, check::FigureTotals>> projects;
    std::map<std::string, std::size_t> index;
    for (const auto& c : components) {
        if (c.project.empty()) continue;
        const auto [it, added] = index.emplace(c.project, projects.size());
        if (added) projects.push_back({c.project, {}});
        check::Add(projects[it->second].second, check::Totals(c.procedures));
    }
    return projects;
}

check::FigureTotals GrandTotal(const std::vector<check::ComponentFigures>& components) {
    check::FigureTotals total;
    for (const auto& c : components)
        check::Add(total, check::Totals(c.procedures));
    return total;
}

void WriteTotals(text::JsonWriter& json, const check::FigureTotals& t) {
    json.Key("procedures");
    json.Integer(t.procedures);
    json.Key("linesOfCode");
    json.Integer(t.linesOfCode);
    json.Key("maxNesting");
    json.Integer(t.maxNesting);
    json.Key("complexity");
    json.Integer(t.complexity);
    json.Key("maxComplexity");
    json.Integer(t.maxComplexity);
}

std::string CsvField(const std::string& text) {
    if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
    std::string quoted = "\"";
    for (const char c : text) {
        if (c == '"') quoted += '"';
        quoted += c;
    }
    return quoted + '"';
}

}  // namespace

void WriteMetricsText(std::ostream& out, const MetricsReport& report, std::size_t width) {
    const Layout layout = Measure(report.procedures, width);
    WriteRow(out, layout, "LOCATION", "PROCEDURE", kLinesHeader, kNestingHeader, kComplexityHeader);
    for (const auto& p : report.procedures) {
        WriteRow(out, layout, Location(p), ProcedureText(p), std::to_string(p.linesOfCode),
                 std::to_string(p.maxNesting), std::to_string(p.complexity));
    }
    out << '\n';
    for (const auto& c : report.components) {
        out << check::ShownText(c.path) << ": "
            << (c.error.empty() ? Summary(check::Totals(c.procedures))
                                : "not measured: " + check::ShownText(c.error))
            << '\n';
    }
    for (const auto& [project, totals] : ProjectTotals(report.components))
        out << "project " << check::ShownText(project) << ": " << Summary(totals) << '\n';
    out << "total: " << Summary(GrandTotal(report.components)) << " in " << report.components.size()
        << (report.components.size() == 1 ? " file\n" : " files\n");
}

void WriteMetricsJson(std::ostream& out, const MetricsReport& report) {
    text::JsonWriter json(out);
    json.BeginObject();
    json.Key("procedures");
    json.BeginArray();
    for (const auto& p : report.procedures) {
        json.BeginObject();
        json.Key("component");
        json.String(check::ShownText(p.component));
        json.Key("line");
        json.Integer(p.line);
        json.Key("name");
        json.String(p.name);
        json.Key("kind");
        json.String(p.kind);
        json.Key("linesOfCode");
        json.Integer(p.linesOfCode);
        json.Key("maxNesting");
        json.Integer(p.maxNesting);
        json.Key("complexity");
        json.Integer(p.complexity);
        json.EndObject();
    }
    json.EndArray();
    json.Key("components");
    json.BeginArray();
    for (const auto& c : report.components) {
        json.BeginObject();
        json.Key("path");
        json.String(check::ShownText(c.path));
        if (!c.project.empty()) {
            json.Key("project");
            json.String(check::ShownText(c.project));
        }
        if (!c.error.empty()) {
            json.Key("error");
            json.String(check::ShownText(c.error));
        }
        WriteTotals(json, check::Totals(c.procedures));
        json.EndObject();
    }
    json.EndArray();
    json.Key("projects");
    json.BeginArray();
    for (const auto& [project, totals] : ProjectTotals(report.components)) {
        json.BeginObject();
        json.Key("project");
        json.String(check::ShownText(project));
        WriteTotals(json, totals);
        json.EndObject();
    }
    json.EndArray();
    json.Key("total");
    json.BeginObject();
    WriteTotals(json, GrandTotal(report.components));
    json.EndObject();
    json.EndObject();
    out << '\n';
}

void WriteMetricsCsv(std::ostream& out, const MetricsReport& report) {
    out << "component,line,procedure,kind,lines_of_code,max_nesting,complexity\r\n";
    for (const auto& p : report.procedures) {
        out << CsvField(check::ShownText(p.component)) << ',' << p.line << ',' << CsvField(p.name)
            << ',' << CsvField(p.kind) << ',' << p.linesOfCode << ',' << p.maxNesting << ','
            << p.complexity << "\r\n";
    }
}

std::optional<std::size_t> TerminalWidth(int fd) {
    if (const char* columns = std::getenv("COLUMNS")) {
        char* end = nullptr;
        const long value = std::strtol(columns, &end, 10);
        if (end != columns && *end == '\0' && value > 0) return static_cast<std::size_t>(value);
    }
#ifdef _WIN32
    CONSOLE_SCREEN_BUFFER_INFO info;
    const HANDLE handle = reinterpret_cast<HANDLE>(_get_osfhandle(fd));
    if (handle != INVALID_HANDLE_VALUE && GetConsoleScreenBufferInfo(handle, &info))
        return static_cast<std::size_t>(info.srWindow.Right - info.srWindow.Left + 1);
#else
    winsize size{};
    if (isatty(fd) && ioctl(fd, TIOCGWINSZ, &size) == 0 && size.ws_col > 0)
        return static_cast<std::size_t>(size.ws_col);
#endif
    return std::nullopt;
}

}  // namespace arbolet::cli
