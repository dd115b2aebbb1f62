// The panel-control port and its in-memory implementation.
#include "corepanel.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

struct cmempanelport::Control {
    int id = 0;
    std::string text;
    int state = BST_UNCHECKED;
};

struct cmempanelport::Panel {
    std::map<int, std::unique_ptr<Control>> controls;
};

namespace {

// Handles are the addresses of the port's own records, so a handle is unique while its record
// lives and names nothing once it is gone.
template <class Record>
HWND HandleOf(Record* record) {
    return reinterpret_cast<HWND>(record);
}

cpanelport* installedPort = nullptr;

}  // namespace

cpanelport::~cpanelport() = default;

cmempanelport::cmempanelport() = default;
cmempanelport::~cmempanelport() = default;

HWND cmempanelport::CreatePanel() {
    auto panel = std::make_unique<Panel>();
    HWND handle = HandleOf(panel.get());
    panels.emplace(handle, std::move(panel));
    return handle;
}

void cmempanelport::DestroyPanel(HWND panel) {
    auto found = panels.find(panel);
    if (found == panels.end()) return;
    for (const auto& entry : found->second->controls)
        if (HandleOf(entry.second.get()) == focus) focus = nullptr;
    panels.erase(found);
}

HWND cmempanelport::AddControl(HWND panel, int id) {
    auto found = panels.find(panel);
    if (found == panels.end()) return nullptr;
    std::unique_ptr<Control>& control = found->second->controls[id];
    if (!control) {
        control = std::make_unique<Control>();
        control->id = id;
    }
    return HandleOf(control.get());
}

int cmempanelport::SetFocus(HWND control) {
    if (control && !FindControl(control)) return 0;
    focus = control;
    return 1;
}

cmempanelport::Control* cmempanelport::Find(HWND panel, int id) const {
    auto found = panels.find(panel);
    if (found == panels.end()) return nullptr;
    auto control = found->second->controls.find(id);
    return control == found->second->controls.end() ? nullptr : control->second.get();
}

cmempanelport::Control* cmempanelport::FindControl(HWND control) const {
    for (const auto& panel : panels)
        for (const auto& entry : panel.second->controls)
            if (HandleOf(entry.second.get()) == control) return entry.second.get();
    return nullptr;
}

int cmempanelport::SetItemText(HWND panel, int id, char const* text) {
    Control* control = Find(panel, id);
    if (!control) return 0;
    control->text = text ? text : "";
    return 1;
}

int cmempanelport::GetItemText(HWND panel, int id, char* buffer, int size) const {
    Control* control = Find(panel, id);
    if (!control || !buffer || size < 1) return 0;
    const std::size_t copied = std::min(control->text.size(), static_cast<std::size_t>(size - 1));
    std::memcpy(buffer, control->text.data(), copied);
    buffer[copied] = '\0';
    return static_cast<int>(copied);
}

int cmempanelport::SetButtonState(HWND panel, int id, int state) {
    Control* control = Find(panel, id);
    if (!control) return 0;
    control->state = state;
    return 1;
}

int cmempanelport::GetButtonState(HWND panel, int id) const {
    Control* control = Find(panel, id);
    return control ? control->state : BST_UNCHECKED;
}

HWND cmempanelport::GetItem(HWND panel, int id) const {
    Control* control = Find(panel, id);
    return control ? HandleOf(control) : nullptr;
}

int cmempanelport::GetControlID(HWND control) const {
    Control* found = FindControl(control);
    return found ? found->id : 0;
}

HWND cmempanelport::GetFocus() const {
    return focus;
}

// ---- The installed port ----

cmempanelport* GetMemPanelPort() {
    static cmempanelport port;
    return &port;
}

void SetPanelPort(cpanelport* port) {
    installedPort = port;
}

cpanelport* GetPanelPort() {
    return installedPort ? installedPort : GetMemPanelPort();
}

int SetDlgItemTextA(HWND panel, int id, char const* text) {
    return GetPanelPort()->SetItemText(panel, id, text);
}

int GetDlgItemTextA(HWND panel, int id, char* buffer, int size) {
    return GetPanelPort()->GetItemText(panel, id, buffer, size);
}

int SetDlgItemFloat(HWND panel, int id, float value) {
    char text[64];
    std::snprintf(text, sizeof text, "%.4f", static_cast<double>(value));
    return SetDlgItemTextA(panel, id, text);
}

int GetDlgItemFloat(HWND panel, int id, float* value) {
    char text[256];
    if (!value || !GetDlgItemTextA(panel, id, text, sizeof text)) return 0;
    char* end = nullptr;
    const float read = std::strtof(text, &end);
    if (end == text) return 0;
    *value = read;
    return 1;
}

int CheckRadioButton(HWND panel, int first, int last, int check) {
    cpanelport* port = GetPanelPort();
    if (!port->GetItem(panel, check)) return 0;
    for (int id = first; id <= last; ++id)
        if (port->GetItem(panel, id))
            port->SetButtonState(panel, id, id == check ? BST_CHECKED : BST_UNCHECKED);
    return 1;
}

int CheckDlgButton(HWND panel, int id, int state) {
    return GetPanelPort()->SetButtonState(panel, id, state);
}

int IsDlgButtonChecked(HWND panel, int id) {
    return GetPanelPort()->GetButtonState(panel, id);
}

HWND GetDlgItem(HWND panel, int id) {
    return GetPanelPort()->GetItem(panel, id);
}

int GetDlgCtrlID(HWND control) {
    return GetPanelPort()->GetControlID(control);
}

HWND GetFocus() {
    return GetPanelPort()->GetFocus();
}
