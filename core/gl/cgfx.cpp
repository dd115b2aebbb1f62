// The graphics settings record and the library's one instance of it.
#include "cgfx.h"

#include <cstring>

static_assert(sizeof(cgfx) == 32 * 4, "the settings are 32 four-byte words");

namespace {

cgfx& LibrarySettings() {
    static cgfx settings;
    return settings;
}

}  // namespace

cgfx::cgfx() {
    Defaults();
}

cgfx::cgfx(const cgfx& other) {
    *this = other;
}

cgfx& cgfx::operator=(const cgfx& other) {
    // The record is plain words and is copied as one block, as the settings dialog expects.
    if (this != &other) std::memcpy(static_cast<void*>(this), &other, sizeof(cgfx));
    return *this;
}

void cgfx::Defaults() {
    selcolor.Set(1.0f, 1.0f, 1.0f, 1.0f);
    namecolor.Set(0.0f, 0.0f, 0.0f, 1.0f);
    lightcolor.Set(1.0f, 1.0f, 0.0f, 1.0f);
    cameracolor.Set(0.0f, 0.0f, 1.0f, 1.0f);
    hilitecolor.Set(1.0f, 0.5f, 0.0f, 1.0f);
    targetcolor.Set(0.0f, 0.0f, 1.0f, 1.0f);
    elemcolor.Set(1.0f, 0.0f, 0.0f, 1.0f);
    vertsize = 3.0f;
    iconpointsize = 5.0f;
    linewidth = 1.0f;
    normallength = 0.0f;
}

cgfx GetGfxInfo() {
    return LibrarySettings();
}

void SetGfxInfo(cgfx& gfx) {
    LibrarySettings() = gfx;
}
