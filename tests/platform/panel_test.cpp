#include "corepanel.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

constexpr int IDC_RADIUS = 1001, IDC_SMOOTH = 1002, IDC_X = 1010, IDC_Y = 1011, IDC_Z = 1012;

std::string TextOf(HWND panel, int id) {
    char buffer[64] = "";
    GetDlgItemTextA(panel, id, buffer, sizeof buffer);
    return buffer;
}

TEST(PanelPort, KeepsTextsChecksAndFocusPerControlOfThePortInUse) {
    cmempanelport port;
    SetPanelPort(&port);
    HWND panel = port.CreatePanel();
    for (int id : {IDC_RADIUS, IDC_SMOOTH, IDC_X, IDC_Y, IDC_Z}) port.AddControl(panel, id);
    HWND radius = GetDlgItem(panel, IDC_RADIUS);
    EXPECT_EQ(port.AddControl(panel, IDC_RADIUS), radius) << "the existing control";
    EXPECT_EQ((std::vector<int>{GetDlgCtrlID(radius), GetDlgCtrlID(panel)}),
              (std::vector<int>{IDC_RADIUS, 0}));
    EXPECT_EQ(GetDlgItem(panel, 4242), nullptr);

    EXPECT_EQ(SetDlgItemTextA(panel, IDC_RADIUS, "12.5"), 1);
    char small[3] = {'x', 'x', 'x'};
    EXPECT_EQ(GetDlgItemTextA(panel, IDC_RADIUS, small, 3), 2);
    EXPECT_STREQ(small, "12");
    EXPECT_EQ(SetDlgItemFloat(panel, IDC_RADIUS, 2.0f / 3.0f), 1);
    EXPECT_EQ(TextOf(panel, IDC_RADIUS), "0.6667");
    float value = 0.0f;
    EXPECT_EQ(GetDlgItemFloat(panel, IDC_RADIUS, &value), 1);
    SetDlgItemTextA(panel, IDC_RADIUS, "abc");
    EXPECT_EQ(GetDlgItemFloat(panel, IDC_RADIUS, &value), 0);
    EXPECT_FLOAT_EQ(value, 0.6667f) << "read from the text, then left as it was";
    EXPECT_EQ(SetDlgItemTextA(panel, 4242, "x") + SetDlgItemTextA(nullptr, IDC_RADIUS, "x"), 0);
    HWND other = port.CreatePanel();
    SetDlgItemTextA(other, IDC_RADIUS, "other");
    port.AddControl(other, IDC_RADIUS);
    EXPECT_EQ(TextOf(panel, IDC_RADIUS) + TextOf(other, IDC_RADIUS), "abc")
        << "panels keep their own controls, new ones empty";

    CheckDlgButton(panel, IDC_SMOOTH, BST_CHECKED);
    EXPECT_EQ(CheckRadioButton(panel, IDC_X, IDC_Z, IDC_Y), 1);
    EXPECT_EQ(CheckRadioButton(panel, IDC_X, IDC_Z, IDC_Z), 1);
    std::vector<int> states;
    for (int id : {IDC_X, IDC_Y, IDC_Z, IDC_SMOOTH})
        states.push_back(IsDlgButtonChecked(panel, id));
    EXPECT_EQ(states, (std::vector<int>{BST_UNCHECKED, BST_UNCHECKED, BST_CHECKED, BST_CHECKED}));

    HWND smooth = GetDlgItem(panel, IDC_SMOOTH);
    EXPECT_EQ(GetFocus(), nullptr);
    EXPECT_EQ(port.SetFocus(smooth) * 10 + port.SetFocus(panel), 10);
    EXPECT_EQ(GetFocus(), smooth);
    port.DestroyPanel(panel);
    EXPECT_EQ(GetFocus(), nullptr);
    EXPECT_EQ(GetDlgCtrlID(smooth), 0);
    SetPanelPort(nullptr);
    EXPECT_EQ(GetPanelPort(), GetMemPanelPort()) << "the built-in port when none is installed";
}

}  // namespace
