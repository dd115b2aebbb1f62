// The reference host: a complete, headless implementation of the host side of Orvane Core.
//
// It shows what a host has to do before it may call CoreInit: write path_app, store every
// I_* callback, Application_InformDeleted and (optionally) _AbortApp. Every scene callback
// acts on the library's one scene, MainScene; the clock setters move the library's clock and
// then make the scene's nodes follow, as a windowed host does after its time slider moves;
// New, Open, Save and SaveAs clear, load and write MainScene through the project file. The
// host itself keeps only what a host owns: its views, the project's name and folder, and the
// image window. Dialogs answer as a user who cancels would. The name of every callback the
// library calls is recorded.
#ifndef ORVANE_HOST_REFERENCEHOST_H
#define ORVANE_HOST_REFERENCEHOST_H

#include <string>
#include <vector>

#include "Core.h"

class ReferenceHost {
public:
    // The number of viewports the host manages (ids 0 to kViewCount - 1).
    static constexpr int kViewCount = 4;

    // The one host of the process.
    static ReferenceHost& Instance();

    // Resets the host's state, writes `appFolder` into path_app and fills the whole callback
    // table and the hooks. `abortOnAssert` false installs an _AbortApp hook that counts the
    // failed assertions and lets the library carry on. MainScene is left as it is.
    void Install(char const* appFolder, bool abortOnAssert = true);

    // Clears the callback table and the hooks again (every pointer back to null).
    void Uninstall();

    // Names of the callbacks called since Install or ClearCalls, in order ("I_UpdateViews"...).
    const std::vector<std::string>& Calls() const { return calls_; }
    void ClearCalls() { calls_.clear(); }
    int FailedAssertions() const { return failedAssertions_; }

    // The host-side state the callbacks read and write. The scene is not here: it is
    // MainScene's.
    struct View {
        bool enabled = true;
        bool maximized = false;
        cnode* camera = nullptr;  // a node of MainScene the view looks through, or null
    };
    struct State {
        unsigned long appVersion = 0x00010000;  // 1.0, high word major, low word minor
        int jpegQuality = 75;
        int imageWindowWidth = 0, imageWindowHeight = 0;  // 0 when the image window is closed
        View views[kViewCount];
        int activeView = 0;
        // The project is the file projectPath/projectName once hasFile is set (by Open,
        // SaveAs or SetProjectPathName); before that Save has nowhere to write.
        std::string projectName = "Untitled";
        std::string projectPath;
        bool hasFile = false;
        int updateViewsCount = 0;
    };
    State& GetState() { return state_; }

    // Records a callback call; used by the callbacks themselves.
    void Record(char const* callback) { calls_.emplace_back(callback); }
    void CountFailedAssertion() { ++failedAssertions_; }

private:
    ReferenceHost() = default;
    State state_;
    std::vector<std::string> calls_;
    int failedAssertions_ = 0;
};

#endif
