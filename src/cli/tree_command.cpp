// `arbolet tree`: the project tree as the tool window shows it, as indented text or JSON.
#include <CLI/CLI.hpp>

#include "cli/cli_context.h"
#include "cli/commands.h"
#include "cli/json_writer.h"
#include "cli/project_loading.h"
#include "cli/terminal_style.h"
#include "explorer/node_keys.h"

namespace arbolet::cli {
namespace {

struct TreeOptions {
    std::vector<std::string> projects;
    std::string format = "text";
};

bool IsPlaceholder(const tree::Node& node) {
    return node.Key().starts_with("Code - ") && node.Text() == explorer::kPlaceholderText;
}

// Components show collapsed, so their "Code List" placeholders are not drawn.
void WriteText(const CliContext& context, const tree::NodeRef& first, std::size_t depth) {
    for (tree::NodeRef node = first; node; node = node->Next()) {
        if (IsPlaceholder(*node)) continue;
        const bool bold = node->Bold() && context.colour;
        context.out << std::string(depth * 2, ' ') << (bold ? kAnsiBold : "") << node->Text()
                    << (bold ? kAnsiReset : "") << '\n';
        WriteText(context, node->Child(), depth + 1);
    }
}

// Every node, placeholders included, in tree order.
void WriteJson(JsonWriter& json, const tree::NodeRef& first) {
    json.BeginArray();
    for (tree::NodeRef node = first; node; node = node->Next()) {
        json.BeginObject();
        json.Key("key");
        json.String(node->Key());
        json.Key("text");
        json.String(node->Text());
        json.Key("bold");
        json.Bool(node->Bold());
        json.Key("image");
        const auto image = node->Image();
        json.OptionalInteger(image ? std::optional<std::int64_t>(*image) : std::nullopt);
        json.Key("children");
        WriteJson(json, node->Child());
        json.EndObject();
    }
    json.EndArray();
}

void RunTree(CliContext& context, const TreeOptions& options) {
    auto environment = OpenProjects(options.projects, context);
    if (!environment) return;
    LoadedTree loaded(environment, context);
    const tree::NodeRef first = tree::FirstRoot(loaded.view.Nodes());
    if (options.format == "json") {
        JsonWriter json(context.out);
        json.BeginObject();
        json.Key("nodes");
        WriteJson(json, first);
        json.EndObject();
        context.out << '\n';
    } else {
        WriteText(context, first, 0);
    }
}

}  // namespace

void AddTreeCommand(CLI::App& app, CliContext& context) {
    auto options = std::make_shared<TreeOptions>();
    CLI::App* command = app.add_subcommand(
        "tree",
        "Print the project tree: projects, their folders and components (the start-up project "
        "in bold). JSON also lists each component's \"Code List\" placeholder node");
    command->add_option("projects", options->projects, "A .vbg group or .vbp projects")->required();
    command->add_option("--format", options->format, "Output format")
        ->check(CLI::IsMember({"text", "json"}));
    command->callback([&context, options] { RunTree(context, *options); });
}

}  // namespace arbolet::cli
