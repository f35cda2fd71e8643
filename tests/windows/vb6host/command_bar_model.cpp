// Bars and controls of the emulated IDE, found by name, caption, tag and command.
#include "vb6host/command_bar_model.h"

#include <cwctype>

namespace arbolet::vb6host {
namespace {

bool SameIgnoringCase(std::wstring_view a, std::wstring_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (std::towlower(a[i]) != std::towlower(b[i])) return false;
    }
    return true;
}

template <typename Match>
BarControlRef FindIn(const ControlList& list, const Match& match) {
    for (const BarControlRef& control : list.Items()) {
        if (match(*control)) return control;
        if (control->subBar) {
            if (auto found = FindIn(*control->subBar->controls, match)) return found;
        }
    }
    return nullptr;
}

}  // namespace

std::wstring PlainCaption(std::wstring_view caption) {
    std::wstring plain;
    for (std::size_t i = 0; i < caption.size(); ++i) {
        if (caption[i] == L'&') {
            if (i + 1 < caption.size() && caption[i + 1] == L'&') plain += caption[++i];
            continue;
        }
        plain += caption[i];
    }
    return plain;
}

BarControlRef ControlList::FindByCaption(std::wstring_view caption) const {
    const std::wstring wanted = PlainCaption(caption);
    for (const BarControlRef& control : items_) {
        if (SameIgnoringCase(PlainCaption(control->caption), wanted)) return control;
    }
    return nullptr;
}

BarControlRef ControlList::Add(std::int32_t type, std::optional<std::int32_t> before) {
    auto control = std::make_shared<BarControl>();
    control->type = type;
    model_.Prepare(*control, weak_from_this());
    std::size_t at = items_.size();
    if (before && *before >= 1 && static_cast<std::size_t>(*before) <= items_.size()) {
        at = static_cast<std::size_t>(*before - 1);
    }
    items_.insert(items_.begin() + static_cast<std::ptrdiff_t>(at), control);
    model_.Changed();
    return control;
}

void ControlList::Remove(BarControl& control) {
    // A deleted control belongs to no list: every later call on it fails.
    control.owner.reset();
    std::erase_if(items_, [&](const BarControlRef& item) { return item.get() == &control; });
    model_.Changed();
}

CommandBarRef CommandBarModel::AddBar(std::wstring name, std::int32_t type) {
    auto bar = std::make_shared<CommandBarData>();
    bar->name = std::move(name);
    bar->type = type;
    bar->controls = std::make_shared<ControlList>(*this, bar);
    bars_.push_back(bar);
    return bar;
}

CommandBarRef CommandBarModel::FindBar(std::wstring_view name) const {
    for (const CommandBarRef& bar : bars_) {
        if (SameIgnoringCase(bar->name, name)) return bar;
    }
    return nullptr;
}

BarControlRef CommandBarModel::FindCommand(std::uint32_t commandId) const {
    for (const CommandBarRef& bar : bars_) {
        if (auto found = FindIn(*bar->controls,
                                [&](const BarControl& c) { return c.commandId == commandId; })) {
            return found;
        }
    }
    return nullptr;
}

BarControlRef CommandBarModel::FindByTag(std::wstring_view tag) const {
    for (const CommandBarRef& bar : bars_) {
        if (auto found =
                FindIn(*bar->controls, [&](const BarControl& c) { return c.tag == tag; })) {
            return found;
        }
    }
    return nullptr;
}

void CommandBarModel::Prepare(BarControl& control, std::weak_ptr<ControlList> owner) {
    control.owner = std::move(owner);
    control.commandId = nextCommand_++;
    if (control.type == kControlPopup && !control.subBar) {
        control.subBar = std::make_shared<CommandBarData>();
        control.subBar->type = kBarPopup;
        control.subBar->builtIn = false;
        control.subBar->controls = std::make_shared<ControlList>(*this, control.subBar);
    }
}

void CommandBarModel::Changed() {
    ++version_;
    if (onChanged_) onChanged_();
}

}  // namespace arbolet::vb6host
