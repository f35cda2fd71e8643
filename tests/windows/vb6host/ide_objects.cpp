// VBIDE objects over the projects on disk.
#include "vb6host/ide_objects.h"

#include <new>

#include "base/vb_error.h"
#include "disk/new_component.h"
#include "disk/vb_path.h"
#include "vb6host/command_bar_objects.h"
#include "vb6host/event_objects.h"
#include "vb6host/host_context.h"
#include "vb6host/ide_commands.h"
#include "vb6host/tool_window.h"
#include "vb6host/vbide_ids.h"
#include "windows/base/ansi_text.h"

namespace arbolet::vb6host {

using windows::Utf8ToWide;
using windows::WideToUtf8;

namespace {

constexpr auto kGet = MemberKind::Property;
constexpr auto kCall = MemberKind::Method;

[[noreturn]] void RaiseTypeMismatch(const char* source) {
    throw VbError(13, source, "Type mismatch");
}

bool IsText(const VARIANT& value) {
    return value.vt == VT_BSTR || value.vt == (VT_BSTR | VT_BYREF);
}

// Collections take a 1-based number or a name.
template <typename Collection>
auto ItemOf(const Collection& collection, const Call& call) {
    const VARIANT& index = call.args.At(0);
    if (IsText(index)) return collection.Item(WideToUtf8(Arguments::ToString(index)));
    return collection.Item(Arguments::ToLong(index));
}

std::string Quote(const std::string& name) {
    return "(\"" + name + "\")";
}

// ---- enumerator ----

class EnumVariant final : public IEnumVARIANT {
  public:
    EnumVariant(std::vector<ComPtr<IDispatch>> items, std::size_t next)
        : items_(std::move(items)), next_(next) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) noexcept override {
        if (object == nullptr) return E_POINTER;
        *object = nullptr;
        if (iid != IID_IUnknown && iid != IID_IEnumVARIANT) return E_NOINTERFACE;
        *object = static_cast<IEnumVARIANT*>(this);
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() noexcept override {
        return static_cast<ULONG>(InterlockedIncrement(&references_));
    }
    ULONG STDMETHODCALLTYPE Release() noexcept override {
        const LONG left = InterlockedDecrement(&references_);
        if (left == 0) delete this;
        return static_cast<ULONG>(left);
    }
    HRESULT STDMETHODCALLTYPE Next(ULONG count, VARIANT* items, ULONG* fetched) noexcept override {
        if (items == nullptr) return E_POINTER;
        ULONG done = 0;
        for (; done < count && next_ < items_.size(); ++done, ++next_) {
            VariantInit(&items[done]);
            items[done].vt = VT_DISPATCH;
            items[done].pdispVal = items_[next_].Get();
            items[done].pdispVal->AddRef();
        }
        if (fetched != nullptr) *fetched = done;
        return done == count ? S_OK : S_FALSE;
    }
    HRESULT STDMETHODCALLTYPE Skip(ULONG count) noexcept override {
        next_ = std::min<std::size_t>(items_.size(), next_ + count);
        return next_ < items_.size() ? S_OK : S_FALSE;
    }
    HRESULT STDMETHODCALLTYPE Reset() noexcept override {
        next_ = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Clone(IEnumVARIANT** copy) noexcept override {
        if (copy == nullptr) return E_POINTER;
        *copy = new (std::nothrow) EnumVariant(items_, next_);
        return *copy ? S_OK : E_OUTOFMEMORY;
    }

  private:
    ~EnumVariant() = default;
    std::vector<ComPtr<IDispatch>> items_;
    std::size_t next_;
    LONG references_ = 1;
};

template <typename Collection, typename Wrap>
std::vector<ComPtr<IDispatch>> AllOf(const Collection& collection, const Wrap& wrap) {
    std::vector<ComPtr<IDispatch>> items;
    for (std::int32_t i = 1; i <= collection.Count(); ++i)
        items.push_back(wrap(collection.Item(i)));
    return items;
}

}  // namespace

ComPtr<IUnknown> MakeEnumerator(std::vector<ComPtr<IDispatch>> items) {
    return ComPtr<IUnknown>::Attach(new EnumVariant(std::move(items), 0));
}

void ReturnEnumerator(const Call& call, std::vector<ComPtr<IDispatch>> items) {
    if (call.result == nullptr) return;
    call.result->vt = VT_UNKNOWN;
    call.result->punkVal = MakeEnumerator(std::move(items)).Detach();
}

ComPtr<IDispatch> VbeObjectFor(HostContext& context) {
    return context.Wrap<VbeObject>(context.SharedEnvironment());
}

ComPtr<IDispatch> ProjectObjectFor(HostContext& context, const env::VBProjectRef& project) {
    return context.Wrap<ProjectObject>(project);
}

ComPtr<IDispatch> ComponentObjectFor(HostContext& context, const env::VBComponentRef& component) {
    return context.Wrap<ComponentObject>(component);
}

env::VBProjectRef ProjectOf(IDispatch* object) {
    if (object == nullptr) return nullptr;
    auto* project = dynamic_cast<ProjectObject*>(HostObjectOf(object));
    if (project == nullptr) RaiseTypeMismatch("VBProject");
    return project->Model();
}

env::VBComponentRef ComponentOf(IDispatch* object) {
    if (object == nullptr) return nullptr;
    auto* component = dynamic_cast<ComponentObject*>(HostObjectOf(object));
    if (component == nullptr) RaiseTypeMismatch("VBComponent");
    return component->Model();
}

// ---- VBE ----

namespace {
constexpr Member kVbeMembers[] = {
    {vbide::members::VBE::Name, kGet},
    {vbide::members::VBE::Version, kGet},
    {vbide::members::VBE::VBProjects, kGet},
    {vbide::members::VBE::CommandBars, kGet},
    {vbide::members::VBE::Windows, kGet},
    {vbide::members::VBE::Events, kGet},
    {vbide::members::VBE::Addins, kGet},
    {vbide::members::VBE::ActiveVBProject, kGet},
    {vbide::members::VBE::SelectedVBComponent, kGet},
    {vbide::members::VBE::MainWindow, kGet},
    {vbide::members::VBE::ActiveCodePane, kGet},
};
}  // namespace

const InterfaceInfo VbeObject::kInterface = {L"VBE", vbide::ids::IID_VBE};

VbeObject::VbeObject(std::shared_ptr<HostContext> context,
                     std::shared_ptr<disk::DiskEnvironment> env)
    : DispatchObject(std::move(context), kInterface, kVbeMembers), env_(std::move(env)) {}

void VbeObject::Run(DISPID id, const Call& call) {
    HostContext& context = Context();
    switch (id) {
        case vbide::members::VBE::Name.id:
            return call.ReturnString(L"Microsoft Visual Basic");
        case vbide::members::VBE::Version.id:
            return call.ReturnString(L"6.00");
        case vbide::members::VBE::VBProjects.id:
            return call.ReturnObject(context.Wrap<ProjectsObject>(env_->VBProjects()).Get());
        case vbide::members::VBE::CommandBars.id:
            return call.ReturnObject(CommandBarsObjectFor(context).Get());
        case vbide::members::VBE::Windows.id:
            return call.ReturnObject(WindowsObjectFor(context).Get());
        case vbide::members::VBE::Events.id:
            return call.ReturnObject(context.Wrap<EventsObject>(env_->Events()).Get());
        case vbide::members::VBE::Addins.id:
            return call.ReturnObject(context.Wrap<AddInsObject>(context.AddIn()).Get());
        case vbide::members::VBE::ActiveVBProject.id:
            if (call.isPut) {
                env_->SetActiveVBProject(ProjectOf(Arguments::ToObject(call.args.Value())));
                return;
            }
            return call.ReturnObject(ProjectObjectFor(context, env_->ActiveVBProject()).Get());
        case vbide::members::VBE::SelectedVBComponent.id:
            return call.ReturnObject(
                ComponentObjectFor(context, context.SelectedComponent()).Get());
        case vbide::members::VBE::MainWindow.id:
            return call.ReturnObject(MainWindowObjectFor(context).Get());
        case vbide::members::VBE::ActiveCodePane.id: {
            if (call.isPut) {
                throw VbError(383, "VBE.ActiveCodePane", "Property is read-only");
            }
            const auto component = context.ActiveCodeComponent();
            if (!component) return call.ReturnObject(nullptr);
            return call.ReturnObject(context.Wrap<CodePaneObject>(component).Get());
        }
    }
}

// ---- VBProjects ----

namespace {
constexpr Member kProjectsMembers[] = {
    {vbide::members::VBProjects::Item, kCall},
    {L"_NewEnum", DISPID_NEWENUM, kCall},
    {L"Parent", vbide::kProjectsParent, kGet},
    {vbide::members::VBProjects::Count, kGet},
    {L"VBE", vbide::kProjectsVBE, kGet},
    {L"AddFromFile", vbide::kProjectsAddFromFile, kCall},
    {L"Remove", vbide::kProjectsRemove, kCall},
    {vbide::members::VBProjects::StartProject, kGet},
};
}  // namespace

const InterfaceInfo ProjectsObject::kInterface = {L"VBProjects", vbide::ids::IID_VBProjects};

ProjectsObject::ProjectsObject(std::shared_ptr<HostContext> context,
                               std::shared_ptr<env::VBProjects> projects)
    : DispatchObject(std::move(context), kInterface, kProjectsMembers),
      projects_(std::move(projects)) {}

void ProjectsObject::Run(DISPID id, const Call& call) {
    HostContext& context = Context();
    switch (id) {
        case vbide::members::VBProjects::Item.id:
            return call.ReturnObject(ProjectObjectFor(context, ItemOf(*projects_, call)).Get());
        case DISPID_NEWENUM:
            return ReturnEnumerator(call, AllOf(*projects_, [&](const env::VBProjectRef& p) {
                                        return ProjectObjectFor(context, p);
                                    }));
        case vbide::kProjectsParent:
        case vbide::kProjectsVBE:
            return call.ReturnObject(VbeObjectFor(context).Get());
        case vbide::members::VBProjects::Count.id:
            return call.ReturnLong(projects_->Count());
        case vbide::kProjectsAddFromFile: {
            const auto added = context.Environment().AddFromFile(
                disk::PathFromUtf8(WideToUtf8(call.args.String(0))));
            return call.ReturnObject(ProjectObjectFor(context, added).Get());
        }
        case vbide::kProjectsRemove:
            context.Environment().RemoveProject(ProjectOf(call.args.Object(0)));
            return;
        case vbide::members::VBProjects::StartProject.id:
            if (call.isPut) {
                projects_->SetStartProject(ProjectOf(Arguments::ToObject(call.args.Value())));
                return;
            }
            return call.ReturnObject(ProjectObjectFor(context, projects_->StartProject()).Get());
    }
}

// ---- VBProject ----

namespace {
constexpr Member kProjectMembers[] = {
    {vbide::members::VBProject::Name, kGet},
    {vbide::members::VBProject::FileName, kGet},
    {L"IsDirty", vbide::kProjectIsDirty, kGet},
    {vbide::members::VBProject::WriteProperty, kCall},
    {vbide::members::VBProject::ReadProperty, kCall},
    {L"VBE", vbide::kProjectVBE, kGet},
    {vbide::members::VBProject::Collection, kGet},
    {vbide::members::VBProject::Type, kGet},
    {vbide::members::VBProject::Saved, kGet},
    {vbide::members::VBProject::VBComponents, kGet},
};

bool ProjectChanged(const HostContext& context, const env::VBProject& project) {
    const auto changed = context.Environment().ChangedFiles();
    const auto path = disk::PathFromUtf8(project.FileName());
    for (const auto& file : changed) {
        if (file == path) return true;
    }
    return false;
}
}  // namespace

const InterfaceInfo ProjectObject::kInterface = {L"VBProject", vbide::ids::IID_VBProject};

ProjectObject::ProjectObject(std::shared_ptr<HostContext> context, env::VBProjectRef project)
    : DispatchObject(std::move(context), kInterface, kProjectMembers),
      project_(std::move(project)) {}

std::string ProjectObject::Describe() const {
    return "VBProject" + Quote(project_->Name());
}

void ProjectObject::Run(DISPID id, const Call& call) {
    HostContext& context = Context();
    switch (id) {
        case vbide::members::VBProject::Name.id:
            if (call.isPut) {
                project_->SetName(WideToUtf8(Arguments::ToString(call.args.Value())));
                return;
            }
            return call.ReturnUtf8(project_->Name());
        case vbide::members::VBProject::FileName.id:
            return call.ReturnUtf8(project_->FileName());
        case vbide::kProjectIsDirty:
            return call.ReturnBool(ProjectChanged(context, *project_));
        case vbide::members::VBProject::Saved.id:
            return call.ReturnBool(!ProjectChanged(context, *project_));
        case vbide::members::VBProject::WriteProperty.id:
            project_->WriteProperty(WideToUtf8(call.args.String(0)),
                                    WideToUtf8(call.args.String(1)),
                                    WideToUtf8(call.args.String(2)));
            return;
        case vbide::members::VBProject::ReadProperty.id:
            return call.ReturnUtf8(project_->ReadProperty(WideToUtf8(call.args.String(0)),
                                                          WideToUtf8(call.args.String(1))));
        case vbide::kProjectVBE:
            return call.ReturnObject(VbeObjectFor(context).Get());
        case vbide::members::VBProject::Collection.id:
            return call.ReturnObject(context.Wrap<ProjectsObject>(project_->Collection()).Get());
        case vbide::members::VBProject::Type.id:
            return call.ReturnLong(static_cast<std::int32_t>(TypeOfProject(*project_)));
        case vbide::members::VBProject::VBComponents.id:
            return call.ReturnObject(
                context.Wrap<ComponentsObject>(project_->VBComponents()).Get());
    }
}

// ---- VBComponents ----

namespace {
constexpr Member kComponentsMembers[] = {
    {vbide::members::VBProjects::Item, kCall},     {L"_NewEnum", DISPID_NEWENUM, kCall},
    {vbide::members::VBComponents::Parent, kGet},  {vbide::members::VBComponents::Count, kGet},
    {vbide::members::VBComponents::Remove, kCall}, {vbide::members::VBComponents::Add, kCall},
    {L"VBE", vbide::kComponentsVBE, kGet},         {vbide::members::VBComponents::AddFile, kCall},
};
}  // namespace

const InterfaceInfo ComponentsObject::kInterface = {L"VBComponents", vbide::ids::IID_VBComponents};

ComponentsObject::ComponentsObject(std::shared_ptr<HostContext> context,
                                   std::shared_ptr<env::VBComponents> components)
    : DispatchObject(std::move(context), kInterface, kComponentsMembers),
      components_(std::move(components)) {}

void ComponentsObject::Run(DISPID id, const Call& call) {
    HostContext& context = Context();
    switch (id) {
        case vbide::members::VBProjects::Item.id:
            return call.ReturnObject(ComponentObjectFor(context, ItemOf(*components_, call)).Get());
        case DISPID_NEWENUM:
            return ReturnEnumerator(call, AllOf(*components_, [&](const env::VBComponentRef& c) {
                                        return ComponentObjectFor(context, c);
                                    }));
        case vbide::members::VBComponents::Parent.id:
            return call.ReturnObject(ProjectObjectFor(context, components_->Parent()).Get());
        case vbide::members::VBComponents::Count.id:
            return call.ReturnLong(components_->Count());
        case vbide::members::VBComponents::Remove.id: {
            const auto component = ComponentOf(call.args.Object(0));
            if (!component) throw VbError(91, "VBComponents.Remove", "Object variable not set");
            components_->Remove(component);
            return;
        }
        case vbide::members::VBComponents::Add.id: {
            const auto type = static_cast<env::ComponentType>(call.args.Long(0));
            return call.ReturnObject(
                ComponentObjectFor(context, AddNewComponent(components_->Parent(), type)).Get());
        }
        case vbide::kComponentsVBE:
            return call.ReturnObject(VbeObjectFor(context).Get());
        case vbide::members::VBComponents::AddFile.id:
            return call.ReturnObject(
                ComponentObjectFor(context, components_->AddFile(WideToUtf8(call.args.String(0))))
                    .Get());
    }
}

// ---- VBComponent ----

namespace {
constexpr Member kComponentMembers[] = {
    {vbide::members::VBComponent::IsDirty, kGet},
    {vbide::members::VBComponent::FileNames, kGet},
    {vbide::members::VBComponent::FileCount, kGet},
    {vbide::members::VBComponent::Name, kGet},
    {vbide::members::VBComponent::CodeModule, kGet},
    {vbide::members::VBComponent::Type, kGet},
    {L"VBE", vbide::kComponentVBE, kGet},
    {vbide::members::VBComponent::Collection, kGet},
    {L"HasOpenDesigner", vbide::kComponentHasOpenDesigner, kGet},
    {vbide::members::VBComponent::ReadProperty, kCall},
    {vbide::members::VBComponent::WriteProperty, kCall},
    {vbide::members::VBComponent::Activate, kCall},
};
}  // namespace

const InterfaceInfo ComponentObject::kInterface = {L"VBComponent", vbide::ids::IID_VBComponent};

ComponentObject::ComponentObject(std::shared_ptr<HostContext> context,
                                 env::VBComponentRef component)
    : DispatchObject(std::move(context), kInterface, kComponentMembers),
      component_(std::move(component)) {}

std::string ComponentObject::Describe() const {
    return "VBComponent" + Quote(component_->Name());
}

void ComponentObject::Run(DISPID id, const Call& call) {
    HostContext& context = Context();
    switch (id) {
        case vbide::members::VBComponent::IsDirty.id: {
            const auto changed = context.Environment().ChangedFiles();
            const auto path = disk::PathFromUtf8(component_->FileNames(1));
            return call.ReturnBool(std::find(changed.begin(), changed.end(), path) !=
                                   changed.end());
        }
        case vbide::members::VBComponent::FileNames.id: {
            const std::int32_t index = call.args.Long(0);
            if (index < 1 || index > component_->FileCount()) {
                throw VbError(9, "VBComponent.FileNames", "Subscript out of range");
            }
            return call.ReturnUtf8(component_->FileNames(static_cast<std::int16_t>(index)));
        }
        case vbide::members::VBComponent::FileCount.id:
            return call.ReturnLong(component_->FileCount());
        case vbide::members::VBComponent::Name.id:
            if (call.isPut) {
                component_->SetName(WideToUtf8(Arguments::ToString(call.args.Value())));
                return;
            }
            return call.ReturnUtf8(component_->Name());
        case vbide::members::VBComponent::CodeModule.id:
            if (!component_->CodeModule()) return call.ReturnObject(nullptr);
            return call.ReturnObject(context.Wrap<CodeModuleObject>(component_).Get());
        case vbide::members::VBComponent::Type.id:
            return call.ReturnLong(static_cast<std::int32_t>(component_->Type()));
        case vbide::kComponentVBE:
            return call.ReturnObject(VbeObjectFor(context).Get());
        case vbide::members::VBComponent::Collection.id:
            return call.ReturnObject(
                context.Wrap<ComponentsObject>(component_->Collection()).Get());
        case vbide::kComponentHasOpenDesigner:
            return call.ReturnBool(context.DesignerOpened(component_.get()) > 0);
        case vbide::members::VBComponent::ReadProperty.id:
            return call.ReturnUtf8(component_->ReadProperty(WideToUtf8(call.args.String(0))));
        case vbide::members::VBComponent::WriteProperty.id:
            component_->WriteProperty(WideToUtf8(call.args.String(0)),
                                      WideToUtf8(call.args.String(1)));
            return;
        case vbide::members::VBComponent::Activate.id:
            if (disk::HasDesigner(component_->Type())) {
                ShowDesigner(context, component_);
            } else {
                ShowCode(context, component_);
            }
            return;
    }
}

// ---- CodeModule ----

namespace {
constexpr Member kCodeModuleMembers[] = {
    {vbide::members::CodeModule::Parent, kGet},       {L"VBE", vbide::kCodeModuleVBE, kGet},
    {L"Name", vbide::kCodeModuleName, kGet},          {vbide::members::CodeModule::Lines, kGet},
    {vbide::members::CodeModule::CountOfLines, kGet}, {vbide::members::CodeModule::CodePane, kGet},
};

std::shared_ptr<env::CodeModule> CodeOf(const env::VBComponent& component) {
    auto code = component.CodeModule();
    if (!code) throw VbError(91, "CodeModule", "Object variable not set");
    return code;
}
}  // namespace

const InterfaceInfo CodeModuleObject::kInterface = {L"CodeModule", vbide::ids::IID_CodeModule};

CodeModuleObject::CodeModuleObject(std::shared_ptr<HostContext> context,
                                   env::VBComponentRef component)
    : DispatchObject(std::move(context), kInterface, kCodeModuleMembers),
      component_(std::move(component)) {}

void CodeModuleObject::Run(DISPID id, const Call& call) {
    HostContext& context = Context();
    switch (id) {
        case vbide::members::CodeModule::Parent.id:
            return call.ReturnObject(ComponentObjectFor(context, component_).Get());
        case vbide::kCodeModuleVBE:
            return call.ReturnObject(VbeObjectFor(context).Get());
        case vbide::kCodeModuleName:
            return call.ReturnUtf8(component_->Name());
        case vbide::members::CodeModule::Lines.id:
            return call.ReturnUtf8(
                CodeOf(*component_)->Lines(call.args.Long(0), call.args.Long(1)));
        case vbide::members::CodeModule::CountOfLines.id:
            return call.ReturnLong(CodeOf(*component_)->CountOfLines());
        case vbide::members::CodeModule::CodePane.id:
            return call.ReturnObject(context.Wrap<CodePaneObject>(component_).Get());
    }
}

// ---- CodePane ----

namespace {
constexpr Member kCodePaneMembers[] = {
    {L"VBE", vbide::kCodePaneVBE, kGet},
    {vbide::members::CodePane::GetSelection, kCall},
    {vbide::members::CodePane::SetSelection, kCall},
    {vbide::members::CodePane::TopLine, kGet},
    {L"CountOfVisibleLines", vbide::kCodePaneCountOfVisibleLines, kGet},
    {vbide::members::CodePane::CodeModule, kGet},
    {vbide::members::CodePane::Show, kCall},
};

constexpr std::int32_t kVisibleLines = 40;

void PutLong(VARIANT& slot, std::int32_t value) {
    if (slot.vt == (VT_I4 | VT_BYREF)) {
        *slot.plVal = value;
    } else {
        VariantClear(&slot);
        slot.vt = VT_I4;
        slot.lVal = value;
    }
}
}  // namespace

const InterfaceInfo CodePaneObject::kInterface = {L"CodePane", vbide::ids::IID_CodePane};

CodePaneObject::CodePaneObject(std::shared_ptr<HostContext> context, env::VBComponentRef component)
    : DispatchObject(std::move(context), kInterface, kCodePaneMembers),
      component_(std::move(component)) {}

void CodePaneObject::Run(DISPID id, const Call& call) {
    HostContext& context = Context();
    CodePaneState& pane = context.CodePane(component_.get());
    switch (id) {
        case vbide::kCodePaneVBE:
            return call.ReturnObject(VbeObjectFor(context).Get());
        case vbide::members::CodePane::GetSelection.id:
            for (std::size_t i = 0; i < 4; ++i)
                PutLong(call.args.ByRef(i), pane.selection[i]);
            return;
        case vbide::members::CodePane::SetSelection.id: {
            const std::int32_t lines = CodeOf(*component_)->CountOfLines();
            for (std::size_t i = 0; i < 4; ++i) {
                const std::int32_t value = call.args.Long(i);
                if (value < 1 || (i % 2 == 0 && value > std::max(lines, 1))) {
                    throw VbError(5, "CodePane.SetSelection", "Invalid procedure call or argument");
                }
                pane.selection[i] = value;
            }
            // The IDE scrolls a selection that is out of view to the top of the window.
            if (pane.selection[0] < pane.topLine ||
                pane.selection[0] >= pane.topLine + kVisibleLines) {
                pane.topLine = pane.selection[0];
            }
            return;
        }
        case vbide::members::CodePane::TopLine.id:
            if (call.isPut) {
                pane.topLine = std::max(1, Arguments::ToLong(call.args.Value()));
                return;
            }
            return call.ReturnLong(pane.topLine);
        case vbide::kCodePaneCountOfVisibleLines:
            return call.ReturnLong(kVisibleLines);
        case vbide::members::CodePane::CodeModule.id:
            return call.ReturnObject(context.Wrap<CodeModuleObject>(component_).Get());
        case vbide::members::CodePane::Show.id:
            ShowCode(context, component_);
            return;
    }
}

// ---- AddIn and Addins ----

namespace {
constexpr Member kAddInMembers[] = {
    {L"Description", vbide::kAddInDescription, kGet},
    {L"VBE", vbide::kAddInVBE, kGet},
    {L"Collection", vbide::kAddInCollection, kGet},
    {vbide::members::AddIn::ProgId, kGet},
    {L"Guid", vbide::kAddInGuid, kGet},
    {L"Connect", vbide::kAddInConnect, kGet},
    {vbide::members::AddIn::Object, kGet},
};
constexpr Member kAddInsMembers[] = {
    {vbide::members::VBProjects::Item, kCall},
    {L"VBE", vbide::kAddInsVBE, kGet},
    {L"Parent", vbide::kAddInsParent, kGet},
    {L"Count", vbide::kAddInsCount, kGet},
};
}  // namespace

const InterfaceInfo AddInObject::kInterface = {L"AddIn", vbide::ids::IID_AddIn};

AddInObject::AddInObject(std::shared_ptr<HostContext> context, std::shared_ptr<AddInData> addIn)
    : DispatchObject(std::move(context), kInterface, kAddInMembers), addIn_(std::move(addIn)) {}

void AddInObject::Run(DISPID id, const Call& call) {
    HostContext& context = Context();
    switch (id) {
        case vbide::kAddInDescription:
            if (call.isPut) {
                addIn_->description = Arguments::ToString(call.args.Value());
                return;
            }
            return call.ReturnString(addIn_->description);
        case vbide::kAddInVBE:
            return call.ReturnObject(VbeObjectFor(context).Get());
        case vbide::kAddInCollection:
            return call.ReturnObject(context.Wrap<AddInsObject>(addIn_).Get());
        case vbide::members::AddIn::ProgId.id:
            return call.ReturnString(addIn_->progId);
        case vbide::kAddInGuid:
            return call.ReturnString(addIn_->guid);
        case vbide::kAddInConnect:
            if (call.isPut) throw VbError(383, "AddIn.Connect", "Property is read-only");
            return call.ReturnBool(addIn_->connected);
        case vbide::members::AddIn::Object.id:
            if (call.isPut) {
                context.AddInObject() = ComPtr<IDispatch>(Arguments::ToObject(call.args.Value()));
                return;
            }
            return call.ReturnObject(context.AddInObject().Get());
    }
}

const InterfaceInfo AddInsObject::kInterface = {L"Addins", vbide::ids::IID_AddIns};

AddInsObject::AddInsObject(std::shared_ptr<HostContext> context, std::shared_ptr<AddInData> addIn)
    : DispatchObject(std::move(context), kInterface, kAddInsMembers), addIn_(std::move(addIn)) {}

void AddInsObject::Run(DISPID id, const Call& call) {
    HostContext& context = Context();
    switch (id) {
        case vbide::members::VBProjects::Item.id: {
            const VARIANT& index = call.args.At(0);
            const bool matches = IsText(index) ? _wcsicmp(Arguments::ToString(index).c_str(),
                                                          addIn_->progId.c_str()) == 0
                                               : Arguments::ToLong(index) == 1;
            if (!matches) throw VbError(9, "Addins.Item", "Subscript out of range");
            return call.ReturnObject(context.Wrap<AddInObject>(addIn_).Get());
        }
        case vbide::kAddInsVBE:
        case vbide::kAddInsParent:
            return call.ReturnObject(VbeObjectFor(context).Get());
        case vbide::kAddInsCount:
            return call.ReturnLong(1);
    }
}

}  // namespace arbolet::vb6host
