// The plain document: a painted list of project names.
#include "windows/addin/plain_document.h"

#include <string>
#include <vector>

#include "windows/addin/module_instance.h"
#include "windows/com/bstr.h"
#include "windows/registry/ansi_text.h"

namespace arbolet::windows::addin {
namespace {

constexpr wchar_t kClassName[] = L"ArboletPlainDocument";

class PlainDocument final : public ToolWindowDocument {
  public:
    ~PlainDocument() override { Unload(); }

    HWND Create(HWND parent) override {
        Unload();
        if (!RegisterWindowClassOnce(kClassName, Proc)) return nullptr;
        RECT client{};
        GetClientRect(parent, &client);
        hwnd_ = CreateWindowExW(0, kClassName, L"", WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS, 0, 0,
                                client.right, client.bottom, parent, nullptr, ThisModule(), this);
        return hwnd_;
    }
    void Resize(int width, int height) override {
        if (hwnd_ != nullptr) MoveWindow(hwnd_, 0, 0, width, height, TRUE);
    }
    void Connect(const com::Dispatch& vbe, ConnectionActions&) override { vbe_ = vbe; }
    void Shown() override {
        lines_ = {L"Arbolet"};
        try {
            if (vbe_) ReadProjects();
        } catch (...) {
            lines_.push_back(L"(the projects could not be read)");
        }
        if (hwnd_ != nullptr) InvalidateRect(hwnd_, nullptr, TRUE);
    }
    void Unload() override {
        vbe_ = com::Dispatch();
        if (hwnd_ != nullptr) {
            SetWindowLongPtrW(hwnd_, GWLP_USERDATA, 0);
            DestroyWindow(hwnd_);
            hwnd_ = nullptr;
        }
    }

  private:
    void ReadProjects() {
        namespace m = com::members;
        const com::Dispatch projects = vbe_.GetObject(m::VBE::VBProjects);
        const std::int32_t count = projects.GetInt(m::VBProjects::Count);
        for (std::int32_t i = 1; i <= count; ++i) {
            const com::Dispatch project = projects.GetObject(m::VBProjects::Item, {Variant(i)});
            lines_.push_back(L"  " + Utf8ToWide(project.GetText(m::VBProject::Name)));
        }
    }

    void Paint(HDC dc) const {
        RECT client{};
        GetClientRect(hwnd_, &client);
        FillRect(dc, &client, GetSysColorBrush(COLOR_WINDOW));
        SetBkMode(dc, TRANSPARENT);
        SetTextColor(dc, GetSysColor(COLOR_WINDOWTEXT));
        SelectObject(dc, GetStockObject(DEFAULT_GUI_FONT));
        int y = 4;
        for (const std::wstring& line : lines_) {
            TextOutW(dc, 4, y, line.c_str(), static_cast<int>(line.size()));
            y += 16;
        }
    }

    static LRESULT CALLBACK Proc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
        if (message == WM_NCCREATE) {
            auto* create = reinterpret_cast<CREATESTRUCTW*>(lParam);
            SetWindowLongPtrW(hwnd, GWLP_USERDATA,
                              reinterpret_cast<LONG_PTR>(create->lpCreateParams));
        }
        auto* self = reinterpret_cast<PlainDocument*>(GetWindowLongPtrW(hwnd, GWLP_USERDATA));
        if (self != nullptr && (message == WM_PAINT || message == WM_PRINTCLIENT)) {
            PAINTSTRUCT paint{};
            HDC dc = message == WM_PAINT ? BeginPaint(hwnd, &paint) : reinterpret_cast<HDC>(wParam);
            self->Paint(dc);
            if (message == WM_PAINT) EndPaint(hwnd, &paint);
            return 0;
        }
        if (message == WM_ERASEBKGND) return 1;
        return DefWindowProcW(hwnd, message, wParam, lParam);
    }

    using Variant = com::Variant;
    HWND hwnd_ = nullptr;
    com::Dispatch vbe_;
    std::vector<std::wstring> lines_{L"Arbolet"};
};

}  // namespace

std::unique_ptr<ToolWindowDocument> CreatePlainDocument() {
    return std::make_unique<PlainDocument>();
}

}  // namespace arbolet::windows::addin
