#ifndef ZEPHRIN2D_PLATFORM_BUTTONS_H
#define ZEPHRIN2D_PLATFORM_BUTTONS_H

#include <stdint.h>

namespace Tadwick {
namespace Vell {

/// The handheld's buttons, read from the keyboard of the desktop window.
///
/// Call Poll() once per frame; it reads the window's pending events (a
/// headless program has none: nothing is ever held). Keys: the arrows are the
/// D-pad, Z is A, X is B, Return or space is Start, Backspace or right Shift
/// is Select, Q and W the left and right shoulders. Escape or closing the
/// window asks to quit. A button pressed and released between two polls
/// still counts as pressed in the next one.
class CButtons
{
public:
    enum tButton
    {
        UP = 1 << 0, DOWN = 1 << 1, LEFT = 1 << 2, RIGHT = 1 << 3, A = 1 << 4, B = 1 << 5,
        START = 1 << 6, SELECT = 1 << 7, LEFT_SHOULDER = 1 << 8, RIGHT_SHOULDER = 1 << 9
    };

    CButtons();
    /// Reads what happened since the last poll.
    void Poll();
    /// Buttons down now, buttons that went down since the last poll, and
    /// buttons that went up: each a set of tButton bits.
    uint32_t Held() const { return mHeld; }
    uint32_t Pressed() const { return mPressed; }
    uint32_t Released() const { return mReleased; }
    bool IsHeld(tButton b) const { return (mHeld & b) != 0; }
    bool WasPressed(tButton b) const { return (mPressed & b) != 0; }
    /// Key presses of one button since the last poll (the keyboard's repeats
    /// included), at most 255: for stepping through something.
    int Presses(tButton b) const;
    /// Escape was pressed or the window was closed.
    bool QuitRequested() const { return mQuit; }

    /// The button a key symbol (an X keysym) stands for, 0 for none.
    static uint32_t ButtonOfKey(unsigned long keysym);

    enum { BUTTON_COUNT = 10 };

private:
    uint8_t mPresses[BUTTON_COUNT];
    uint32_t mHeld;
    uint32_t mPressed;
    uint32_t mReleased;
    bool mQuit;
};

/// Milliseconds between frames, from a monotonic clock, in integers.
class CFrameClock
{
public:
    enum { MAX_STEP_MS = 250 };
    CFrameClock();
    /// The time since the previous Tick (or since construction), at most
    /// MAX_STEP_MS, so that a program stopped in a debugger does not leap.
    int Tick();
    /// Milliseconds since construction.
    int64_t Elapsed() const;

private:
    int64_t mStart;
    int64_t mLast;
};

} // namespace Vell
} // namespace Tadwick

#endif
