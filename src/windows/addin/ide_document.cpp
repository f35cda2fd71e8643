// The IDE document: docAddin over the VBE the connection hands in, with the IDE front end.
#include "windows/addin/ide_document.h"

#include <cstdint>
#include <optional>

#include "windows/base/ansi_text.h"
#include "windows/dialogs/about_box.h"
#include "windows/dialogs/properties_dialog.h"
#include "windows/document/doc_addin.h"
#include "windows/document/document_automation.h"
#include "windows/ide/com_environment.h"
#include "windows/ide/ide_front_end.h"

namespace arbolet::windows::addin {
namespace {

namespace m = com::members;

// The IDE's main window, which receives the F1 key for the help; nullptr when it cannot be read.
HWND MainWindowOf(const com::Dispatch& vbe) {
    try {
        const std::int64_t handle = vbe.GetObject(m::VBE::MainWindow).GetInt(m::Window::HWnd);
        return reinterpret_cast<HWND>(static_cast<std::intptr_t>(handle));
    } catch (...) {
        return nullptr;
    }
}

// The component and line of the IDE's active code pane, where its caret is; nullopt when no code
// window is active or the IDE will not say.
std::optional<explorer::CodeLocation> ActiveCodeLocation(const com::Dispatch& vbe) {
    try {
        const com::Dispatch pane = vbe.GetObject(m::VBE::ActiveCodePane);
        if (!pane) return std::nullopt;
        const com::Dispatch component =
            pane.GetObject(m::CodePane::CodeModule).GetObject(m::CodeModule::Parent);
        explorer::CodeLocation location;
        location.component = component.GetText(m::VBComponent::Name);
        location.project = component.GetObject(m::VBComponent::Collection)
                               .GetObject(m::VBComponents::Parent)
                               .GetText(m::VBProject::Name);
        // GetSelection(StartLine, StartColumn, EndLine, EndColumn), all by reference.
        LONG place[4] = {0, 0, 0, 0};
        VARIANT references[4];
        for (int i = 0; i < 4; ++i) {
            VariantInit(&references[i]);
            references[i].vt = VT_I4 | VT_BYREF;
            references[i].plVal = &place[i];
        }
        pane.Call(m::CodePane::GetSelection,
                  {com::Variant::Copy(references[0]), com::Variant::Copy(references[1]),
                   com::Variant::Copy(references[2]), com::Variant::Copy(references[3])});
        location.line = place[0];
        return location;
    } catch (...) {
        return std::nullopt;
    }
}

class IdeDocument final : public ToolWindowDocument {
  public:
    ~IdeDocument() override { Unload(); }

    HWND Create(HWND parent) override {
        Unload();
        parent_ = parent;
        MakeDocument(nullptr);
        return document_ ? document_->hWnd() : nullptr;
    }
    void Resize(int width, int height) override {
        if (document_) document_->Resize(0, 0, width, height);
    }
    // The environment wraps the VBE once: a new wrapper would advise the IDE's events again.
    void Connect(const com::Dispatch& vbe, ConnectionActions& connection) override {
        connection_ = &connection;
        if (!document_ || vbe.Object() == vbe_.Object()) return;
        vbe_ = vbe;
        // The front end's IDE window comes with the VBE: the document is made again for it.
        MakeDocument(MainWindowOf(vbe));
        document_->SetEnvironment(ide::WrapVbe(vbe));
        document_->CurrentCodeLocation = [this] { return ActiveCodeLocation(vbe_); };
    }
    void Shown() override {
        if (document_) document_->Show();
    }
    void Unload() override {
        // Terminate first: the document lets go of the environment's event sinks and its
        // subclass before the VBE itself is released.
        document_.reset();
        frontEnd_.reset();
        vbe_ = com::Dispatch();
        connection_ = nullptr;
    }

    bool DumpTree(const std::string& expand, const std::filesystem::path& out,
                  std::string& error) override {
        if (!Loaded(error)) return false;
        if (DumpDocumentTree(*document_, expand, out)) return true;
        error = "Cannot write " + WideToUtf8(out.wstring());
        return false;
    }
    bool DumpMenu(const std::string& key, const std::filesystem::path& out,
                  const std::filesystem::path& screenshot, std::string& error) override {
        // The picture shows the whole IDE, as a user sees the menu over it.
        return Loaded(error) && DumpDocumentMenu(*document_, GetAncestor(parent_, GA_ROOT), key,
                                                 out, screenshot, error);
    }

  private:
    bool Loaded(std::string& error) const {
        if (document_) return true;
        error = "The tool window has no document";
        return false;
    }
    void MakeDocument(HWND ideWindow) {
        RECT client{};
        if (document_) {
            GetClientRect(parent_, &client);
            document_.reset();
        }
        ide::IdeFrontEnd::Actions actions;
        actions.hide = [this] {
            if (connection_ != nullptr) connection_->Hide();
        };
        actions.showProperties = [this] { dialogs::ShowPropertiesDialog(Owner()); };
        actions.showAbout = [this] { dialogs::ShowAboutBox(Owner()); };
        actions.ideWindow = ideWindow;
        frontEnd_ = std::make_unique<ide::IdeFrontEnd>(std::move(actions));
        document_ = std::make_unique<docAddin>(parent_, *frontEnd_);
        if (client.right > 0) document_->Resize(0, 0, client.right, client.bottom);
    }
    HWND Owner() const { return document_ ? document_->hWnd() : parent_; }

    HWND parent_ = nullptr;
    com::Dispatch vbe_;
    ConnectionActions* connection_ = nullptr;
    std::unique_ptr<ide::IdeFrontEnd> frontEnd_;
    std::unique_ptr<docAddin> document_;
};

}  // namespace

std::unique_ptr<ToolWindowDocument> CreateIdeDocument() {
    return std::make_unique<IdeDocument>();
}

}  // namespace arbolet::windows::addin
