// The Events object of an environment that raises its own events: one project event source, and
// component event sources per project and for all projects together.
#pragma once

#include <map>
#include <memory>

#include "environment/vbide.h"

namespace arbolet::env {

class EventHub final : public Events {
  public:
    std::shared_ptr<env::VBProjectsEvents> VBProjectsEvents() override { return projects_; }

    std::shared_ptr<env::VBComponentsEvents> VBComponentsEvents(
        const VBProjectRef& project) override {
        auto& source = components_[project.get()];
        if (!source) source = std::make_shared<env::VBComponentsEvents>();
        return source;
    }

    std::shared_ptr<env::CommandBarEvents> CommandBarEvents(
        const CommandBarControlRef& control) override {
        auto& source = commandBars_[control.get()];
        if (!source) source = std::make_shared<env::CommandBarEvents>();
        return source;
    }

    template <typename Deliver>
    void RaiseProjectEvent(Deliver&& deliver) {
        projects_->Raise(deliver);
    }

    // Component events go to the project's own source and to the source for every project.
    template <typename Deliver>
    void RaiseComponentEvent(const VBProject* project, Deliver&& deliver) {
        for (const VBProject* key : {project, static_cast<const VBProject*>(nullptr)}) {
            auto found = components_.find(key);
            if (found != components_.end()) found->second->Raise(deliver);
        }
    }

    // Drops the sources of a closed project, whose address a later project may reuse.
    void ForgetProject(const VBProject* project) { components_.erase(project); }

  private:
    std::shared_ptr<env::VBProjectsEvents> projects_ = std::make_shared<env::VBProjectsEvents>();
    std::map<const VBProject*, std::shared_ptr<env::VBComponentsEvents>> components_;
    std::map<const CommandBarControl*, std::shared_ptr<env::CommandBarEvents>> commandBars_;
};

}  // namespace arbolet::env
