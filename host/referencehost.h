// The reference host: a complete, headless implementation of the host side of Orvane Core.
//
// It shows what a host has to do before it may call CoreInit: write path_app, store every
// I_* callback, Application_InformDeleted and (optionally) _AbortApp. It keeps the host's own
// state (views, project names, notes, scene settings, the list of scene objects it was
// handed) in memory, answers dialogs as a user who cancels would, routes the clock setters to
// the library's clock, and records the name of every callback the library calls.
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
    // failed assertions and lets the library carry on.
    void Install(char const* appFolder, bool abortOnAssert = true);

    // Clears the callback table and the hooks again (every pointer back to null).
    void Uninstall();

    // Names of the callbacks called since Install or ClearCalls, in order ("I_UpdateViews"...).
    const std::vector<std::string>& Calls() const { return calls_; }
    void ClearCalls() { calls_.clear(); }
    int FailedAssertions() const { return failedAssertions_; }

    // The host-side state the callbacks read and write.
    struct View {
        bool enabled = true;
        bool maximized = false;
        cnode* camera = nullptr;
    };
    struct State {
        unsigned long appVersion = 0x00010000;  // 1.0, high word major, low word minor
        int jpegQuality = 75;
        int imageWindowWidth = 0, imageWindowHeight = 0;  // 0 when the image window is closed
        std::vector<cnode*> nodes;
        std::vector<cmaterial*> materials;
        std::vector<cnode*> selected;
        std::vector<cnode*> hidden;
        ccolor ambient{0.1f, 0.1f, 0.1f};
        ccolor background{0.0f, 0.0f, 0.0f};
        cpoint3 fogColor{0.5f, 0.5f, 0.5f};
        float fogStart = 0.0f, fogEnd = 1000.0f, fogDensity = 1.0f;
        int fogEnabled = 0;
        int subLevel = 0;
        std::string notes;
        View views[kViewCount];
        int activeView = 0;
        std::string projectName = "Untitled";
        std::string projectPath;
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
