// Talks to a top-level X window found by a part of its title, as a user would.
//   z2d-xwin PATTERN title          prints the window's title
//   z2d-xwin PATTERN key KEYSYM...  sends key presses (names as in keysymdef.h, without XK_)
// Exits 1 when no window's title holds PATTERN.
#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <cstdio>
#include <cstring>
#include <string>

namespace {

Window findWindow(Display* display, const char* pattern, std::string& title)
{
    Window root, parent, *children = 0;
    unsigned int count = 0;
    Window found = 0;
    if (!XQueryTree(display, DefaultRootWindow(display), &root, &parent, &children, &count))
        return 0;
    for (unsigned int i = 0; i < count && !found; ++i) {
        char* name = 0;
        if (XFetchName(display, children[i], &name) && name) {
            if (std::strstr(name, pattern)) {
                found = children[i];
                title = name;
            }
            XFree(name);
        }
    }
    if (children)
        XFree(children);
    return found;
}

bool sendKey(Display* display, Window window, const char* name)
{
    const KeySym sym = XStringToKeysym(name);
    if (sym == NoSymbol)
        return false;
    XKeyEvent key = {};
    key.type = KeyPress;
    key.display = display;
    key.window = window;
    key.root = DefaultRootWindow(display);
    key.same_screen = True;
    key.keycode = XKeysymToKeycode(display, sym);
    XEvent event;
    event.xkey = key;
    return XSendEvent(display, window, True, KeyPressMask, &event) != 0;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 3 || (std::strcmp(argv[2], "title") != 0 && std::strcmp(argv[2], "key") != 0)) {
        std::fprintf(stderr, "usage: %s PATTERN title | PATTERN key KEYSYM...\n", argv[0]);
        return 2;
    }
    Display* display = XOpenDisplay(0);
    if (!display) {
        std::fprintf(stderr, "%s: no display\n", argv[0]);
        return 2;
    }
    std::string title;
    const Window window = findWindow(display, argv[1], title);
    int status = window ? 0 : 1;
    if (window && std::strcmp(argv[2], "title") == 0) {
        std::printf("%s\n", title.c_str());
    } else if (window) {
        for (int i = 3; i < argc; ++i)
            if (!sendKey(display, window, argv[i])) {
                std::fprintf(stderr, "%s: cannot send %s\n", argv[0], argv[i]);
                status = 2;
            }
    }
    XCloseDisplay(display);
    return status;
}
