#include "corepanel.h"

#include <gtest/gtest.h>

#include <string>

namespace {

constexpr int IDC_RADIUS = 1001, IDC_SMOOTH = 1002, IDC_AXIS_X = 1010, IDC_AXIS_Y = 1011,
              IDC_AXIS_Z = 1012;

std::string TextOf(HWND panel, int id) {
    char buffer[64];
    GetDlgItemTextA(panel, id, buffer, sizeof buffer);
    return buffer;
}

class PanelPort : public ::testing::Test {
protected:
    void SetUp() override {
        panel = port.CreatePanel();
        for (int id : {IDC_RADIUS, IDC_SMOOTH, IDC_AXIS_X, IDC_AXIS_Y, IDC_AXIS_Z})
            port.AddControl(panel, id);
        SetPanelPort(&port);
    }
    void TearDown() override { SetPanelPort(nullptr); }
    cmempanelport port;
    HWND panel = nullptr;
};

TEST_F(PanelPort, KeepsControlTextAndCutsItToTheCallersBuffer) {
    EXPECT_EQ(SetDlgItemTextA(panel, IDC_RADIUS, "12.5"), 1);
    EXPECT_EQ(TextOf(panel, IDC_RADIUS), "12.5");
    char small[3] = {'x', 'x', 'x'};
    EXPECT_EQ(GetDlgItemTextA(panel, IDC_RADIUS, small, 3), 2);
    EXPECT_STREQ(small, "12");
    EXPECT_EQ(GetDlgItemTextA(panel, IDC_RADIUS, small, 0), 0);

    EXPECT_EQ(SetDlgItemFloat(panel, IDC_RADIUS, 2.0f / 3.0f), 1);
    EXPECT_EQ(TextOf(panel, IDC_RADIUS), "0.6667");
    float value = 0.0f;
    EXPECT_EQ(GetDlgItemFloat(panel, IDC_RADIUS, &value), 1);
    EXPECT_FLOAT_EQ(value, 0.6667f);
    SetDlgItemTextA(panel, IDC_RADIUS, "abc");
    value = 5.0f;
    EXPECT_EQ(GetDlgItemFloat(panel, IDC_RADIUS, &value), 0);
    EXPECT_EQ(value, 5.0f);

    EXPECT_EQ(SetDlgItemTextA(panel, 4242, "x"), 0) << "no such control";
    EXPECT_EQ(SetDlgItemTextA(nullptr, IDC_RADIUS, "x"), 0);
    HWND other = port.CreatePanel();
    port.AddControl(other, IDC_RADIUS);
    SetDlgItemTextA(other, IDC_RADIUS, "other");
    EXPECT_EQ(TextOf(panel, IDC_RADIUS), "abc") << "panels keep their own controls";
}

TEST_F(PanelPort, ChecksOneRadioButtonOfAGroupAndKeepsButtonStates) {
    CheckDlgButton(panel, IDC_SMOOTH, BST_CHECKED);
    EXPECT_EQ(CheckRadioButton(panel, IDC_AXIS_X, IDC_AXIS_Z, IDC_AXIS_Y), 1);
    EXPECT_EQ(IsDlgButtonChecked(panel, IDC_AXIS_X), BST_UNCHECKED);
    EXPECT_EQ(IsDlgButtonChecked(panel, IDC_AXIS_Y), BST_CHECKED);
    EXPECT_EQ(IsDlgButtonChecked(panel, IDC_AXIS_Z), BST_UNCHECKED);
    EXPECT_EQ(CheckRadioButton(panel, IDC_AXIS_X, IDC_AXIS_Z, IDC_AXIS_Z), 1);
    EXPECT_EQ(IsDlgButtonChecked(panel, IDC_AXIS_Y), BST_UNCHECKED);
    EXPECT_EQ(IsDlgButtonChecked(panel, IDC_AXIS_Z), BST_CHECKED);
    EXPECT_EQ(IsDlgButtonChecked(panel, IDC_SMOOTH), BST_CHECKED) << "outside the group";
    EXPECT_EQ(IsDlgButtonChecked(panel, 4242), BST_UNCHECKED);
}

TEST_F(PanelPort, NamesControlsByHandleAndTracksTheFocus) {
    HWND radius = GetDlgItem(panel, IDC_RADIUS);
    HWND smooth = GetDlgItem(panel, IDC_SMOOTH);
    ASSERT_NE(radius, nullptr);
    EXPECT_NE(radius, smooth);
    EXPECT_EQ(port.AddControl(panel, IDC_RADIUS), radius) << "the existing control";
    EXPECT_EQ(GetDlgCtrlID(radius), IDC_RADIUS);
    EXPECT_EQ(GetDlgCtrlID(panel), 0) << "a panel is not a control";
    EXPECT_EQ(GetDlgItem(panel, 4242), nullptr);

    EXPECT_EQ(GetFocus(), nullptr);
    EXPECT_EQ(port.SetFocus(smooth), 1);
    EXPECT_EQ(GetDlgCtrlID(GetFocus()), IDC_SMOOTH);
    EXPECT_EQ(port.SetFocus(panel), 0);
    EXPECT_EQ(GetFocus(), smooth);
    port.DestroyPanel(panel);
    EXPECT_EQ(GetFocus(), nullptr);
    EXPECT_EQ(GetDlgCtrlID(smooth), 0);
}

TEST(PanelPortDefault, IsTheLibrarysInMemoryPortUntilAHostInstallsOne) {
    EXPECT_EQ(GetPanelPort(), GetMemPanelPort());
    HWND panel = GetMemPanelPort()->CreatePanel();
    GetMemPanelPort()->AddControl(panel, 5);
    EXPECT_EQ(SetDlgItemTextA(panel, 5, "headless"), 1);
    EXPECT_EQ(TextOf(panel, 5), "headless");
    GetMemPanelPort()->DestroyPanel(panel);
    EXPECT_EQ(SetDlgItemTextA(panel, 5, "gone"), 0);
}

}  // namespace
