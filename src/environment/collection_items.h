// The collections every implementation of the object model shares: items by 1-based index or
// by name ignoring letter case, raising the object model's error when absent.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/utf8.h"
#include "environment/vbide.h"

namespace arbolet::env {

template <typename Ref, typename List>
Ref ItemAt(const List& items, std::int32_t index, const char* source) {
    if (index < 1 || static_cast<std::size_t>(index) > items.size()) {
        enverr::RaiseNotInCollection(source);
    }
    return items[static_cast<std::size_t>(index - 1)];
}

template <typename Ref, typename List>
Ref ItemNamed(const List& items, std::string_view name, const char* source) {
    const std::string wanted = text::ToLower(name);
    for (const auto& item : items) {
        if (text::ToLower(item->Name()) == wanted) return item;
    }
    enverr::RaiseNotInCollection(source);
}

// VBProjects over a list of projects held by the environment.
template <typename Project>
class ProjectList : public VBProjects {
  public:
    std::int32_t Count() const override { return static_cast<std::int32_t>(items.size()); }
    VBProjectRef Item(std::int32_t index) const override {
        return ItemAt<VBProjectRef>(items, index, "VBProjects.Item");
    }
    VBProjectRef Item(std::string_view name) const override {
        return ItemNamed<VBProjectRef>(items, name, "VBProjects.Item");
    }
    VBProjectRef StartProject() const override { return start.lock(); }
    void SetStartProject(const VBProjectRef& project) override { start = project; }

    std::vector<std::shared_ptr<Project>> items;
    std::weak_ptr<VBProject> start;
};

// VBComponents over a list of components held by their project.
template <typename Component>
class ComponentList : public VBComponents {
  public:
    explicit ComponentList(std::weak_ptr<VBProject> parent) : parent_(std::move(parent)) {}
    std::int32_t Count() const override { return static_cast<std::int32_t>(items.size()); }
    VBComponentRef Item(std::int32_t index) const override {
        return ItemAt<VBComponentRef>(items, index, "VBComponents.Item");
    }
    VBComponentRef Item(std::string_view name) const override {
        return ItemNamed<VBComponentRef>(items, name, "VBComponents.Item");
    }
    VBProjectRef Parent() const override { return parent_.lock(); }

    std::vector<std::shared_ptr<Component>> items;

  private:
    std::weak_ptr<VBProject> parent_;
};

}  // namespace arbolet::env
