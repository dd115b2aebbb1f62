// The panel-control port: how tools read and write the controls of their parameter panels.
//
// A tool's DlgProc(HWND panel, msg, wParam, lParam) works on controls named by their integer
// ids within a panel. The library reaches them only through the installed cpanelport, which a
// GUI host binds to its toolkit; without one, the in-memory cmempanelport serves (tests and
// headless hosts use it). Panels and controls are named by opaque HWND handles.
#ifndef ORVANE_COREPANEL_H
#define ORVANE_COREPANEL_H

#include <map>
#include <memory>
#include <string>

#include "coreapi.h"

// Button states (Win32 values).
enum : int { BST_UNCHECKED = 0, BST_CHECKED = 1, BST_INDETERMINATE = 2 };

class CORE_API cpanelport {
public:
    virtual ~cpanelport();
    // Replaces the text of control `id` in `panel`; 1 on success, 0 for an unknown control.
    virtual int SetItemText(HWND panel, int id, char const* text) = 0;
    // Copies at most size - 1 characters of the control's text and a terminator into `buffer`;
    // returns the number of characters copied (0 for an unknown control or a size below 1).
    virtual int GetItemText(HWND panel, int id, char* buffer, int size) const = 0;
    // Sets the check state (BST_*) of button `id`; 1 on success.
    virtual int SetButtonState(HWND panel, int id, int state) = 0;
    // The check state of button `id` (BST_UNCHECKED for an unknown control).
    virtual int GetButtonState(HWND panel, int id) const = 0;
    // The control handle of `id` in `panel`, or null.
    virtual HWND GetItem(HWND panel, int id) const = 0;
    // The control id of a control handle, or 0 for a handle that names no control.
    virtual int GetControlID(HWND control) const = 0;
    // The control that has the keyboard focus, or null.
    virtual HWND GetFocus() const = 0;
};

// The in-memory panels: each control is a text and a check state.
class CORE_API cmempanelport : public cpanelport {
public:
    cmempanelport();
    ~cmempanelport() override;
    cmempanelport(const cmempanelport&) = delete;
    cmempanelport& operator=(const cmempanelport&) = delete;

    // A new empty panel; its handle stays valid until DestroyPanel or the port's end.
    HWND CreatePanel();
    // Forgets the panel and its controls (the focus too when it was one of them).
    void DestroyPanel(HWND panel);
    // Adds control `id` (empty text, unchecked) to `panel`, or returns the existing one; null
    // for an unknown panel.
    HWND AddControl(HWND panel, int id);
    // Gives `control` (a control handle, or null) the keyboard focus; 0 for an unknown handle.
    int SetFocus(HWND control);

    int SetItemText(HWND panel, int id, char const* text) override;
    int GetItemText(HWND panel, int id, char* buffer, int size) const override;
    int SetButtonState(HWND panel, int id, int state) override;
    int GetButtonState(HWND panel, int id) const override;
    HWND GetItem(HWND panel, int id) const override;
    int GetControlID(HWND control) const override;
    HWND GetFocus() const override;

private:
    struct Control;
    struct Panel;
    Control* Find(HWND panel, int id) const;
    Control* FindControl(HWND control) const;

    std::map<HWND, std::unique_ptr<Panel>> panels;
    HWND focus = nullptr;
};

// Installs the port the tools use; null restores the library's own in-memory port.
CORE_API void SetPanelPort(cpanelport* port);
// The port in use.
CORE_API cpanelport* GetPanelPort();
// The library's own in-memory port (the default).
CORE_API cmempanelport* GetMemPanelPort();

// The Win32 dialog calls tools make, over the installed port.
// SetDlgItemTextA / GetDlgItemTextA: see cpanelport::SetItemText and GetItemText.
CORE_API int SetDlgItemTextA(HWND panel, int id, char const* text);
CORE_API int GetDlgItemTextA(HWND panel, int id, char* buffer, int size);
// Writes `value` as "%.4f", the way tools show their parameters; 1 on success.
CORE_API int SetDlgItemFloat(HWND panel, int id, float value);
// Reads the control's text as a number into `value`; 0 (value untouched) when the text does
// not start with a number.
CORE_API int GetDlgItemFloat(HWND panel, int id, float* value);
// Checks `check` and unchecks every other button with an id in first .. last; 1 on success.
CORE_API int CheckRadioButton(HWND panel, int first, int last, int check);
// CheckDlgButton / IsDlgButtonChecked: the check state (BST_*) of button `id`.
CORE_API int CheckDlgButton(HWND panel, int id, int state);
CORE_API int IsDlgButtonChecked(HWND panel, int id);
CORE_API HWND GetDlgItem(HWND panel, int id);
CORE_API int GetDlgCtrlID(HWND control);
CORE_API HWND GetFocus();

#endif
