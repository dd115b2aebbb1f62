// The process-wide animation clock.
#include "animclock.h"

namespace {

struct AnimClock {
    int time = 0;
    int start = 0;
    int end = 100;
    int ticksPerFrame = 40;
    int animOn = 0;
};

AnimClock g_clock;

}  // namespace

void ResetAnim() {
    g_clock.ticksPerFrame = 40;
    g_clock.time = 0;
    g_clock.start = 0;
    g_clock.end = 100;
}

void SetAnimTime(int t) {
    if (t < g_clock.start)
        g_clock.time = g_clock.start;
    else if (t > g_clock.end)
        g_clock.time = g_clock.end;
    else
        g_clock.time = t;
}
int GetAnimTime() {
    return g_clock.time;
}

void SetAnimStart(int t) {
    if (t < 0)
        g_clock.start = 0;
    else if (t > g_clock.end)
        g_clock.start = g_clock.end;
    else
        g_clock.start = t;
}
int GetAnimStart() {
    return g_clock.start;
}

void SetAnimEnd(int t) {
    g_clock.end = t < g_clock.start ? g_clock.start : t;
}
int GetAnimEnd() {
    return g_clock.end;
}

void SetAnimTPF(int ticks) {
    g_clock.ticksPerFrame = ticks < 1 ? 1 : ticks;
}
int GetAnimTPF() {
    return g_clock.ticksPerFrame;
}

void SetAnimOn(int on) {
    g_clock.animOn = on;
}
int IsAnimOn() {
    return g_clock.animOn;
}
