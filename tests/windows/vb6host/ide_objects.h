// The VBIDE objects of the emulated IDE as COM objects over the projects on disk: VBE,
// VBProjects, VBProject, VBComponents, VBComponent, CodeModule, CodePane, AddIn and Addins.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "disk/disk_environment.h"
#include "vb6host/dispatch_object.h"
#include "vb6host/host_context.h"

namespace arbolet::vb6host {

class VbeObject final : public DispatchObject {
  public:
    static const InterfaceInfo kInterface;
    VbeObject(std::shared_ptr<HostContext> context, std::shared_ptr<disk::DiskEnvironment> env);

  protected:
    void Run(DISPID id, const Call& call) override;

  private:
    std::shared_ptr<disk::DiskEnvironment> env_;
};

class ProjectsObject final : public DispatchObject {
  public:
    static const InterfaceInfo kInterface;
    ProjectsObject(std::shared_ptr<HostContext> context, std::shared_ptr<env::VBProjects> projects);

  protected:
    void Run(DISPID id, const Call& call) override;

  private:
    std::shared_ptr<env::VBProjects> projects_;
};

class ProjectObject final : public DispatchObject {
  public:
    static const InterfaceInfo kInterface;
    ProjectObject(std::shared_ptr<HostContext> context, env::VBProjectRef project);
    const env::VBProjectRef& Model() const { return project_; }
    std::string Describe() const override;

  protected:
    void Run(DISPID id, const Call& call) override;

  private:
    env::VBProjectRef project_;
};

class ComponentsObject final : public DispatchObject {
  public:
    static const InterfaceInfo kInterface;
    ComponentsObject(std::shared_ptr<HostContext> context,
                     std::shared_ptr<env::VBComponents> components);

  protected:
    void Run(DISPID id, const Call& call) override;

  private:
    std::shared_ptr<env::VBComponents> components_;
};

class ComponentObject final : public DispatchObject {
  public:
    static const InterfaceInfo kInterface;
    ComponentObject(std::shared_ptr<HostContext> context, env::VBComponentRef component);
    const env::VBComponentRef& Model() const { return component_; }
    std::string Describe() const override;

  protected:
    void Run(DISPID id, const Call& call) override;

  private:
    env::VBComponentRef component_;
};

class CodeModuleObject final : public DispatchObject {
  public:
    static const InterfaceInfo kInterface;
    CodeModuleObject(std::shared_ptr<HostContext> context, env::VBComponentRef component);

  protected:
    void Run(DISPID id, const Call& call) override;

  private:
    env::VBComponentRef component_;
};

class CodePaneObject final : public DispatchObject {
  public:
    static const InterfaceInfo kInterface;
    CodePaneObject(std::shared_ptr<HostContext> context, env::VBComponentRef component);

  protected:
    void Run(DISPID id, const Call& call) override;

  private:
    env::VBComponentRef component_;
};

class AddInObject final : public DispatchObject {
  public:
    static const InterfaceInfo kInterface;
    AddInObject(std::shared_ptr<HostContext> context, std::shared_ptr<AddInData> addIn);

  protected:
    void Run(DISPID id, const Call& call) override;

  private:
    std::shared_ptr<AddInData> addIn_;
};

class AddInsObject final : public DispatchObject {
  public:
    static const InterfaceInfo kInterface;
    AddInsObject(std::shared_ptr<HostContext> context, std::shared_ptr<AddInData> addIn);

  protected:
    void Run(DISPID id, const Call& call) override;

  private:
    std::shared_ptr<AddInData> addIn_;
};

// The session's one VBE object.
ComPtr<IDispatch> VbeObjectFor(HostContext& context);
ComPtr<IDispatch> ProjectObjectFor(HostContext& context, const env::VBProjectRef& project);
ComPtr<IDispatch> ComponentObjectFor(HostContext& context, const env::VBComponentRef& component);
// The model behind an object an add-in hands back; nullptr for Nothing. Raises Type mismatch
// for an object that is not one of the host's projects or components.
env::VBProjectRef ProjectOf(IDispatch* object);
env::VBComponentRef ComponentOf(IDispatch* object);

// A For Each enumerator over a snapshot of objects.
ComPtr<IUnknown> MakeEnumerator(std::vector<ComPtr<IDispatch>> items);
void ReturnEnumerator(const Call& call, std::vector<ComPtr<IDispatch>> items);

}  // namespace arbolet::vb6host
