// cgfx: the library-wide graphics settings, the colours and sizes with which the viewports draw
// objects. The host's settings dialog edits them through GetGfxInfo and SetGfxInfo.
#ifndef ORVANE_CGFX_H
#define ORVANE_CGFX_H

#include "ccolor.h"
#include "coreapi.h"

// Seven colours (r, g, b, a in 0..1) then four sizes, 32 four-byte words copied as one block.
class CORE_API cgfx {
public:
    ccolor selcolor;      // wireframes of selected objects: white
    ccolor namecolor;     // object names and labels: black
    ccolor lightcolor;    // wire colour of new lights: yellow
    ccolor cameracolor;   // wire colour of new cameras: blue
    ccolor hilitecolor;   // highlighted (flashed) parts of icons: orange
    ccolor targetcolor;   // lines from lights and cameras to their targets: blue
    ccolor elemcolor;     // selected sub-object elements: red
    float vertsize;       // point size of mesh vertices, pixels: 3
    float iconpointsize;  // point size of icon points, pixels: 5
    float linewidth;      // width of wire lines, pixels: 1
    float normallength;   // length of drawn face normals, scene units (0: not drawn)

    // The defaults, as Defaults() sets them.
    cgfx();
    cgfx(const cgfx& other);
    cgfx& operator=(const cgfx& other);
    // Restores colours (1,1,1,1), (0,0,0,1), (1,1,0,1), (0,0,1,1), (1,0.5,0,1), (0,0,1,1),
    // (1,0,0,1) and sizes 3, 5, 1, 0.
    void Defaults();
};

// A copy of the library's graphics settings.
CORE_API cgfx GetGfxInfo();
// Replaces the library's graphics settings by `gfx`; objects created afterwards use them.
CORE_API void SetGfxInfo(cgfx& gfx);

#endif
