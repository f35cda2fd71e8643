// `arbolet code`: the logic-flow tree of each component file, as indented text or JSON.
#include <CLI/CLI.hpp>

#include "base/json_writer.h"
#include "check/check_targets.h"
#include "check/component_analysis.h"
#include "cli/cli_context.h"
#include "cli/commands.h"
#include "cli/display_flags.h"
#include "cli/indentation.h"
#include "cli/terminal_style.h"
#include "disk/vb_path.h"

namespace arbolet::cli {

using check::AnalyseComponentFile;
using check::AnalysedComponent;
using check::CheckTargets;
using check::CollectCheckTargets;
using check::DisplayPath;
using text::JsonWriter;
namespace {

struct CodeOptions {
    std::vector<std::string> files;
    std::string format = "text";
    analysis::DisplayOptions display;
};

void WriteNodeFields(JsonWriter& json, const AnalysedComponent& component,
                     const analysis::clsLine& line) {
    json.Key("LineID");
    json.String(line.LineID.str());
    json.Key("LineContent");
    json.String(line.LineContent);
    json.Key("LineColour");
    json.Integer(line.LineColour);
    json.Key("line");
    json.OptionalInteger(component.FileLineOf(line));
}

void WriteJsonTree(JsonWriter& json, const AnalysedComponent& component) {
    json.BeginArray();
    analysis::WalkTree(
        *component.tree.root,
        [&](const analysis::clsLine& line, int) {
            json.BeginObject();
            WriteNodeFields(json, component, line);
            json.Key("children");
            json.BeginArray();
        },
        [&](const analysis::clsLine&, int) {
            json.EndArray();
            json.EndObject();
        });
    json.EndArray();
}

void WriteText(const CliContext& context, const AnalysedComponent& component) {
    std::ostream& out = context.out;
    const auto bold = [&](const std::string& s) {
        return context.colour ? kAnsiBold + s + kAnsiReset : s;
    };
    out << bold(component.name) << " (" << DisplayPath(component.path) << ")\n";
    analysis::WalkTree(*component.tree.root, [&](const analysis::clsLine& line, int depth) {
        out << Indentation(static_cast<std::size_t>(depth));
        const std::string style =
            context.colour ? AnsiForeground(line.LineColour, context.colourDepth) : "";
        out << style << line.LineContent << (style.empty() ? "" : kAnsiReset) << '\n';
    });
}

void ReportFileProblems(CliContext& context, const AnalysedComponent& component) {
    if (component.readError) {
        context.err << "arbolet: " << *component.readError << '\n';
        context.Fail(kExitUsage);
        return;
    }
    for (const auto& diagnostic : component.file.diagnostics) {
        const bool error = diagnostic.severity == disk::FileDiagnostic::Severity::Error;
        context.err << DisplayPath(component.path) << ':' << diagnostic.line << ": "
                    << (error ? "error: " : "warning: ") << diagnostic.message << '\n';
    }
}

// The component files the paths name, as `check` takes them (folders, projects, groups); a
// file of another kind is refused with a message, so that no project or text file is printed
// as if it were code.
std::vector<std::filesystem::path> ComponentFiles(CliContext& context,
                                                  const std::vector<std::string>& paths) {
    std::vector<std::filesystem::path> files;
    const CheckTargets targets = CollectCheckTargets(paths, {}, context.codePage);
    // A path that is not there, a project that cannot be opened or a component it lists that
    // is missing: the other files are still printed, and the exit status says what was left out.
    for (const check::Finding& problem : targets.problems.findings) {
        context.err << problem.path;
        if (problem.line > 0) context.err << ':' << problem.line;
        context.err << ": " << problem.severity << ": " << problem.message << '\n';
    }
    if (targets.problems.unreadable || targets.missing > 0) context.Fail(kExitUsage);
    for (const auto& target : targets.files) {
        if (disk::IsComponentFileName(disk::PathToUtf8(target.path.filename()))) {
            files.push_back(disk::PathFromUtf8(target.shown));  // as the user should see it
            continue;
        }
        context.err << "arbolet: " << target.shown
                    << ": not a component file (.bas .cls .frm .ctl .pag .dob .dsr), a .vbp "
                       "project, a .vbg group or a folder\n";
        context.Fail(kExitUsage);
    }
    return files;
}

void RunCode(CliContext& context, const CodeOptions& options) {
    std::optional<JsonWriter> json;
    if (options.format == "json") {
        json.emplace(context.out);
        json->BeginObject();
        json->Key("components");
        json->BeginArray();
    }
    for (const auto& file : ComponentFiles(context, options.files)) {
        const auto component = AnalyseComponentFile(file, context.codePage, options.display);
        ReportFileProblems(context, component);
        if (component.readError || component.file.binary) {
            context.Fail(kExitUsage);
            continue;
        }
        if (!json) {
            WriteText(context, component);
            continue;
        }
        json->BeginObject();
        json->Key("path");
        json->String(DisplayPath(component.path));
        json->Key("name");
        json->String(component.name);
        json->Key("code");
        WriteJsonTree(*json, component);
        json->EndObject();
    }
    if (json) {
        json->EndArray();
        json->EndObject();
        context.out << '\n';
    }
}

}  // namespace

void AddCodeCommand(CLI::App& app, CliContext& context) {
    auto options = std::make_shared<CodeOptions>();
    CLI::App* command = app.add_subcommand("code", "Print the logic-flow tree of component files");
    command
        ->add_option("paths", options->files,
                     "Component files (.bas .cls .frm .ctl .pag .dob .dsr), folders (searched "
                     "recursively), .vbp projects and .vbg groups")
        ->required();
    command->add_option("--format", options->format, "Output format")
        ->check(CLI::IsMember({"text", "json"}));
    AddDisplayFlags(*command, options->display);
    command->callback([&context, options] { RunCode(context, *options); });
}

}  // namespace arbolet::cli
