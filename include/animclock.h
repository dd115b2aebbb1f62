// The process-wide animation clock: current time, animation range, ticks per frame and the
// animation-mode switch. Times are integer ticks (40 ticks per frame by default).
//
// Setting the time updates nothing else: whoever changes it then asks the scene to
// re-evaluate its nodes. Hosts route the Interface setters to these functions.
#ifndef ORVANE_ANIMCLOCK_H
#define ORVANE_ANIMCLOCK_H

#include "coreapi.h"

// Ticks per frame 40, time 0, start 0, end 100; the animation mode is left as it is.
CORE_API void ResetAnim();

// Clamps t to [start, end].
CORE_API void SetAnimTime(int t);
CORE_API int GetAnimTime();

// Clamps t to [0, end]; the current time is not re-clamped.
CORE_API void SetAnimStart(int t);
CORE_API int GetAnimStart();

// Raises t to start if below it; the current time is not re-clamped.
CORE_API void SetAnimEnd(int t);
CORE_API int GetAnimEnd();

// Ticks per frame; values below 1 become 1.
CORE_API void SetAnimTPF(int ticks);
CORE_API int GetAnimTPF();

// Animation mode: while on, edits write keys at the current time. Stored as given.
CORE_API void SetAnimOn(int on);
CORE_API int IsAnimOn();

#endif
