// The X11 side of the buttons: key and close events of the window that
// VellOpenGLConfig opened.
#include "Buttons.h"
#include "VellOpenGLConfig.h"

#include <X11/Xlib.h>
#include <X11/keysym.h>

namespace Tadwick {
namespace Vell {

bool ReadWindowButtons(uint32_t& held, uint32_t& pressed, uint32_t& released, bool& quit, uint8_t* presses)
{
    VellOpenGLConfig* config = VellOpenGLConfig::Current();
    if (!config || !config->getX11Display() || !config->getX11Window())
        return false;
    Display* display = static_cast<Display*>(config->getX11Display());
    const Window window = config->getX11Window();
    static Window watched = 0;
    static Atom deleteWindow = 0;
    if (watched != window) {
        XWindowAttributes attributes;
        XGetWindowAttributes(display, window, &attributes);
        XSelectInput(display, window, attributes.your_event_mask | KeyPressMask | KeyReleaseMask | StructureNotifyMask);
        deleteWindow = XInternAtom(display, "WM_DELETE_WINDOW", False);
        XSetWMProtocols(display, window, &deleteWindow, 1);
        watched = window;
    }
    while (XPending(display)) {
        XEvent event;
        XNextEvent(display, &event);
        if (event.type == ClientMessage && static_cast<Atom>(event.xclient.data.l[0]) == deleteWindow) {
            quit = true;
            continue;
        }
        if (event.type != KeyPress && event.type != KeyRelease)
            continue;
        const KeySym key = XLookupKeysym(&event.xkey, 0);
        if (key == XK_Escape && event.type == KeyPress)
            quit = true;
        const uint32_t button = CButtons::ButtonOfKey(key);
        if (event.type == KeyPress) {
            pressed |= button;
            held |= button;
            for (int i = 0; i < CButtons::BUTTON_COUNT; ++i)
                if (button == (1u << i) && presses[i] < 255)
                    ++presses[i];
        } else {
            held &= ~button;
            released |= button;
        }
    }
    return true;
}

} // namespace Vell
} // namespace Tadwick
