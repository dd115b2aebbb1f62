// The export macro and the handle types shared by every public header of Orvane Core.
#ifndef ORVANE_COREAPI_H
#define ORVANE_COREAPI_H

// Marks a class, function or datum as part of libCore.so's exported interface. Everything
// else in the library has hidden visibility.
#if defined(_WIN32)
#if defined(CORE_BUILDING_LIBRARY)
#define CORE_API __declspec(dllexport)
#else
#define CORE_API __declspec(dllimport)
#endif
#else
#define CORE_API __attribute__((visibility("default")))
#endif

// Opaque handles of the host's window system. On Linux an HWND names an X11 window (for a
// GL viewport) or a tool panel; an HINSTANCE is a loaded module's base address.
struct HWND__;
struct HDC__;
struct HGLRC__;
struct HINSTANCE__;
struct HBITMAP__;
typedef HWND__* HWND;
typedef HDC__* HDC;
typedef HGLRC__* HGLRC;
typedef HINSTANCE__* HINSTANCE;
typedef HBITMAP__* HBITMAP;

#endif
