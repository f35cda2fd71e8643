// GitHub and GitLab reports of `arbolet check` (see check_report_ci.h).
#include "check/check_report_ci.h"

#include <map>

#include "base/json_writer.h"
#include "check/check_report.h"
#include "check/check_text.h"

namespace arbolet::check {
namespace {

std::string Escaped(std::string_view text, bool property) {
    std::string escaped;
    escaped.reserve(text.size());
    for (const char c : text) {
        switch (c) {
            case '%':
                escaped += "%25";
                break;
            case '\r':
                escaped += "%0D";
                break;
            case '\n':
                escaped += "%0A";
                break;
            case ':':
                escaped += property ? "%3A" : ":";
                break;
            case ',':
                escaped += property ? "%2C" : ",";
                break;
            default:
                escaped += c;
        }
    }
    return escaped;
}

std::string_view GitlabSeverity(const Finding& f) {
    return f.severity == "error" ? "major" : "minor";
}

}  // namespace

std::string GithubMessage(std::string_view text) {
    return Escaped(text, false);
}

std::string GithubProperty(std::string_view text) {
    return Escaped(text, true);
}

void WriteCheckGithub(std::ostream& out, const std::vector<FileResult>& results) {
    for (const auto& result : results) {
        for (const auto& f : result.findings) {
            out << "::" << (f.severity == "error" ? "error" : "warning")
                << " file=" << GithubProperty(ShownText(RelativeToWorkingFolder(f.path)));
            if (f.line > 0) out << ",line=" << f.line;
            if (f.column > 0) out << ",col=" << f.column;
            if (f.endColumn > f.column) out << ",endColumn=" << f.endColumn;
            out << ",title=" << GithubProperty("arbolet " + f.rule)
                << "::" << GithubMessage(ShownText(f.message)) << '\n';
        }
    }
}

void WriteCheckGitlab(std::ostream& out, const std::vector<FileResult>& results) {
    text::JsonWriter json(out);
    // Equal findings on lines of equal text (a fingerprint) are told apart by their order.
    std::map<std::string, int> seen;
    json.BeginArray();
    for (const auto& result : results) {
        for (const auto& f : result.findings) {
            const std::string shownPath = ShownText(RelativeToWorkingFolder(f.path));
            std::string fingerprint = shownPath + '\n' + f.rule + '\n' + f.fingerprint;
            const int occurrence = seen[fingerprint]++;
            fingerprint += '\n' + std::to_string(occurrence);
            json.BeginObject();
            json.Key("description");
            json.String(ShownText(f.message));
            json.Key("check_name");
            json.String(f.rule);
            json.Key("fingerprint");
            json.String(Fingerprint(fingerprint) + Fingerprint(fingerprint + "\n"));
            json.Key("severity");
            json.String(GitlabSeverity(f));
            json.Key("location");
            json.BeginObject();
            json.Key("path");
            json.String(shownPath);
            json.Key("lines");
            json.BeginObject();
            json.Key("begin");
            json.Integer(std::max(f.line, 1));
            json.EndObject();
            json.EndObject();
            json.EndObject();
        }
    }
    json.EndArray();
    out << '\n';
}

}  // namespace arbolet::check
