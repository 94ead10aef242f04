#include "Buttons.h"

#include <time.h>

namespace Tadwick {
namespace Vell {

// Reads the window's key and close events into held, pressed, released and
// quit; false without a window. Given by the X11 window code; this stand-in
// is what a platform built without X11 links.
__attribute__((weak)) bool ReadWindowButtons(uint32_t&, uint32_t&, uint32_t&, bool&, uint8_t*) { return false; }

CButtons::CButtons() : mHeld(0), mPressed(0), mReleased(0), mQuit(false)
{
    for (int i = 0; i < BUTTON_COUNT; ++i)
        mPresses[i] = 0;
}

void CButtons::Poll()
{
    mPressed = 0;
    mReleased = 0;
    for (int i = 0; i < BUTTON_COUNT; ++i)
        mPresses[i] = 0;
    ReadWindowButtons(mHeld, mPressed, mReleased, mQuit, mPresses);
}

int CButtons::Presses(tButton b) const
{
    for (int i = 0; i < BUTTON_COUNT; ++i)
        if (b == (1u << i))
            return mPresses[i];
    return 0;
}

uint32_t CButtons::ButtonOfKey(unsigned long keysym)
{
    // X keysyms: arrows, z, x, Return, space, BackSpace, Shift_R, q, w.
    switch (keysym) {
    case 0xff52: return UP;
    case 0xff54: return DOWN;
    case 0xff51: return LEFT;
    case 0xff53: return RIGHT;
    case 'z': case 'Z': return A;
    case 'x': case 'X': return B;
    case 0xff0d: case ' ': return START;
    case 0xff08: case 0xffe2: return SELECT;
    case 'q': case 'Q': return LEFT_SHOULDER;
    case 'w': case 'W': return RIGHT_SHOULDER;
    default: return 0;
    }
}

namespace {
int64_t nowMs()
{
    timespec t;
    clock_gettime(CLOCK_MONOTONIC, &t);
    return int64_t(t.tv_sec) * 1000 + t.tv_nsec / 1000000;
}
} // namespace

CFrameClock::CFrameClock() : mStart(nowMs()), mLast(mStart) {}

int CFrameClock::Tick()
{
    const int64_t now = nowMs();
    int64_t step = now - mLast;
    mLast = now;
    if (step < 0)
        step = 0;
    return int(step > int64_t(MAX_STEP_MS) ? int64_t(MAX_STEP_MS) : step);
}

int64_t CFrameClock::Elapsed() const { return nowMs() - mStart; }

} // namespace Vell
} // namespace Tadwick
