// The texture window: the one GL window whose rendering context holds every texture, so that
// all viewports (which share that context's objects) can draw every image.
#ifndef ORVANE_TEXWINDOW_H
#define ORVANE_TEXWINDOW_H

#include "coreapi.h"

class CGLWindow;
struct CoreGLContext;

// Makes `window` the texture window; null means none (textures are then made in whatever
// context is current when they are uploaded).
CORE_API void CGLWindow_SetTexGLWindow(CGLWindow* window);
// The texture window, or null.
CORE_API CGLWindow* CGLWindow_GetTexGLWindow();

// Installs the function that gives a GL window's rendering context, through which texture
// uploads reach the texture window's context. The GL window code installs its own; null (the
// default) means windows have no context the library can switch to.
CORE_API void CGLWindow_SetContextLookup(CoreGLContext* (*lookup)(CGLWindow* window));

#endif
