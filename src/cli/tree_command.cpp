// `arbolet tree`: the project tree as the tool window shows it, as indented text or JSON; with
// component nodes expanded into their code trees, and following the files while they change.
#include <CLI/CLI.hpp>
#include <atomic>
#include <csignal>
#include <map>
#include <set>

#include "base/json_writer.h"
#include "base/utf8.h"
#include "cli/cli_context.h"
#include "cli/commands.h"
#include "cli/display_flags.h"
#include "cli/indentation.h"
#include "cli/project_loading.h"
#include "cli/terminal_style.h"
#include "cli/tree_watch.h"
#include "disk/file_io.h"
#include "explorer/node_keys.h"
#include "explorer/tree_json.h"

namespace arbolet::cli {

using explorer::NotExpandedComponent;
using explorer::WriteNotExpanded;
using text::JsonWriter;
namespace {

struct TreeOptions {
    std::vector<std::string> projects;
    std::string format = "text";
    std::string expand;  // "all", or component names separated by commas
    bool watch = false;
    analysis::DisplayOptions display;
};

bool IsPlaceholder(const tree::Node& node) {
    return node.Kind() == tree::NodeKind::Placeholder;
}

// Which component nodes to open: all, or those named (ignoring case). It remembers which names
// it met, so that a mistyped one can be pointed out rather than silently expanding nothing.
class ExpandChoice {
  public:
    explicit ExpandChoice(const std::string& names) {
        all_ = text::ToLower(text::Trim(names)) == "all";
        std::size_t start = 0;
        while (!all_ && start <= names.size()) {
            const std::size_t comma = std::min(names.find(',', start), names.size());
            const std::string_view name =
                text::Trim(std::string_view(names).substr(start, comma - start));
            if (!name.empty()) names_.emplace(text::ToLower(name), std::string(name));
            start = comma + 1;
        }
    }
    bool Wants(const tree::Node& node) const {
        if (node.Kind() != tree::NodeKind::Component) return false;
        if (all_) return true;
        const std::string lower = text::ToLower(node.Text());
        if (!names_.contains(lower)) return false;
        met_.insert(lower);
        return true;
    }
    // The names, as given, that no component rendered so far has.
    std::vector<std::string> UnmetNames() const {
        std::vector<std::string> unmet;
        for (const auto& [lower, given] : names_) {
            if (!met_.contains(lower)) unmet.push_back(given);
        }
        return unmet;
    }

  private:
    bool all_ = false;
    std::map<std::string, std::string> names_;  // lower-cased to as given
    mutable std::set<std::string> met_;
};

// Renders the tree depth first without recursion; a chosen component is expanded when it is
// reached and collapsed again once its code is written, so that one code tree at a time counts
// against the node limit.
class TreeRenderer {
  public:
    virtual ~TreeRenderer() = default;
    void Render(explorer::ProjectExplorer& explorer, const tree::NodeRef& first,
                const ExpandChoice& choice) {
        struct Frame {
            tree::NodeRef node;
            bool opened;  // expanded by the renderer, to be collapsed on leaving
        };
        std::vector<Frame> frames;
        tree::NodeRef next = first;
        while (true) {
            if (next) {
                if (IsPlaceholder(*next) && SkipsPlaceholders()) {
                    next = next->Next();
                    continue;
                }
                const bool opened = choice.Wants(*next) && Expand(explorer, *next);
                Enter(*next, frames.size());
                frames.push_back({next, opened});
                next = next->Child();
                continue;
            }
            if (frames.empty()) break;
            const Frame done = frames.back();
            frames.pop_back();
            Leave(*done.node);
            if (done.opened) explorer.CollapseNode(*done.node);
            next = done.node->Next();
        }
    }

    // Components asked for that stayed closed (over the line limit, or unreadable).
    const std::vector<NotExpandedComponent>& NotExpandedComponents() const { return notExpanded_; }

  protected:
    virtual bool SkipsPlaceholders() const = 0;
    virtual void Enter(const tree::Node& node, std::size_t depth) = 0;
    virtual void Leave(const tree::Node& node) = 0;

  private:
    bool Expand(explorer::ProjectExplorer& explorer, tree::Node& node) {
        const auto outcome = explorer.ExpandNode(node);
        if (!outcome.done()) notExpanded_.push_back({node.Key(), node.Text(), outcome.message()});
        return outcome.done();
    }

    std::vector<NotExpandedComponent> notExpanded_;
};

// Components show collapsed unless expanded, so their "Code List" placeholders are not drawn.
class TextRenderer final : public TreeRenderer {
  public:
    explicit TextRenderer(const CliContext& context) : context_(context) {}

  protected:
    bool SkipsPlaceholders() const override { return true; }
    void Enter(const tree::Node& node, std::size_t depth) override {
        std::string style;
        if (context_.colour && node.Bold()) style = kAnsiBold;
        if (context_.colour && node.ForeColor() != tree::kWindowTextColour)
            style = AnsiForeground(node.ForeColor(), context_.colourDepth);
        context_.out << Indentation(depth) << style << node.Text()
                     << (style.empty() ? "" : kAnsiReset) << '\n';
    }
    void Leave(const tree::Node&) override {}

  private:
    const CliContext& context_;
};

// Every node, placeholders included, in tree order.
class JsonRenderer final : public TreeRenderer {
  public:
    explicit JsonRenderer(JsonWriter& json) : json_(json) {}

  protected:
    bool SkipsPlaceholders() const override { return false; }
    void Enter(const tree::Node& node, std::size_t) override {
        json_.BeginObject();
        json_.Key("key");
        json_.String(node.Key());
        json_.Key("text");
        json_.String(node.Text());
        json_.Key("bold");
        json_.Bool(node.Bold());
        json_.Key("image");
        const auto image = node.Image();
        json_.OptionalInteger(image ? std::optional<std::int64_t>(*image) : std::nullopt);
        json_.Key("colour");
        json_.Integer(static_cast<std::uint32_t>(node.ForeColor()));
        json_.Key("tag");
        json_.String(node.Tag());
        json_.Key("children");
        json_.BeginArray();
    }
    void Leave(const tree::Node&) override {
        json_.EndArray();
        json_.EndObject();
    }

  private:
    JsonWriter& json_;
};

// Every component asked for that stayed closed is named on the error stream and counted, and
// the exit status says that the tree is incomplete.
void ReportNotExpanded(CliContext& context, const TreeRenderer& renderer) {
    const auto& missing = renderer.NotExpandedComponents();
    if (missing.empty()) return;
    for (const auto& component : missing) {
        context.err << "arbolet: " << component.name << " was not expanded: " << component.reason
                    << '\n';
    }
    context.err << "arbolet: " << missing.size() << " component"
                << (missing.size() == 1 ? " was" : "s were") << " not expanded\n";
    context.Fail(kExitFindings);
}

void RenderTree(CliContext& context, LoadedTree& loaded, const TreeOptions& options,
                const ExpandChoice& choice) {
    const tree::NodeRef first = tree::FirstRoot(loaded.view.Nodes());
    if (options.format == "json") {
        JsonWriter json(context.out);
        json.BeginObject();
        json.Key("nodes");
        json.BeginArray();
        JsonRenderer renderer(json);
        renderer.Render(loaded.explorer, first, choice);
        json.EndArray();
        WriteNotExpanded(json, renderer.NotExpandedComponents());
        json.EndObject();
        context.out << '\n';
        ReportNotExpanded(context, renderer);
    } else {
        TextRenderer renderer(context);
        renderer.Render(loaded.explorer, first, choice);
        ReportNotExpanded(context, renderer);
    }
    context.out.flush();
}

std::atomic<bool> gInterrupted{false};

void OnInterrupt(int) {
    gInterrupted = true;
}

void RunTree(CliContext& context, const TreeOptions& options) {
    auto environment = OpenProjects(options.projects, context);
    if (!environment) return;
    analysis::FixedDisplayOptions display(options.display);
    LoadedTree loaded(environment, context, &display);
    const ExpandChoice choice(options.expand);
    RenderTree(context, loaded, options, choice);
    for (const std::string& name : choice.UnmetNames()) {
        context.err << "arbolet: warning: no component is named '" << name << "'\n";
    }
    if (!options.watch) return;
    gInterrupted = false;
    const auto previous = std::signal(SIGINT, OnInterrupt);
    try {
        TreeWatch watch(loaded, context);
        while (!gInterrupted) {
            if (watch.Step(std::chrono::milliseconds(1000), gInterrupted)) {
                context.out << (context.colour ? "\x1b[2J\x1b[H" : "\n");
                RenderTree(context, loaded, options, choice);
            }
        }
    } catch (const disk::FileError& error) {
        context.err << "arbolet: " << error.what() << '\n';
        context.Fail(kExitUsage);
    }
    std::signal(SIGINT, previous);
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
    command->add_option("--expand", options->expand,
                        "Show the code trees of all components, or of NAME[,NAME...]");
    command->add_flag("--watch", options->watch,
                      "Keep following the files and print the tree again after each change "
                      "(Ctrl-C ends)");
    AddDisplayFlags(*command, options->display);
    command->callback([&context, options] { RunTree(context, *options); });
}

}  // namespace arbolet::cli
