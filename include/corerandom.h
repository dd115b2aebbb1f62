// Random numbers over the C library generator, drawn as 15-bit values 0..32767.
#ifndef ORVANE_CORERANDOM_H
#define ORVANE_CORERANDOM_H

#include <cstdlib>

#include "coreapi.h"

// Seeds the C library generator with the current calendar time in seconds.
CORE_API void seedrandtime();

// a + (r / 32767) * (b - a) in integer arithmetic for a draw r: this is `a` for every draw
// but 32767, which gives `b`. Intended: callers that want a spread use the floating forms.
CORE_API int rand(int a, int b);

// a + (b - a) * (r / 32767.0) for a draw r, computed in double; the range is closed at both
// ends. The float form rounds the result to float.
CORE_API float rand(float a, float b);
CORE_API double rand(double a, double b);

#endif
