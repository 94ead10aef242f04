#include "VellOpenGLConfig.h"

#include "DebugMPI.h"

#include <EGL/eglext.h>
#include <GLES/gl.h>
#if ZEPHRIN2D_X11
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#endif
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <png.h>

namespace Tadwick {
namespace Vell {

namespace {

struct tSettings
{
    int width = 0;
    int height = 0;
    bool windowed = false;
};

tSettings& settings()
{
    static tSettings s;
    return s;
}

VellOpenGLConfig*& current()
{
    static VellOpenGLConfig* c = 0;
    return c;
}

const CDebugMPI& debug()
{
    static CDebugMPI d(0x283);
    return d;
}

// The size the host chose (a setting, else ZEPHRIN2D_DISPLAY); false when none.
bool chosenSize(int& w, int& h)
{
    w = settings().width;
    h = settings().height;
    if (w > 0 && h > 0)
        return true;
    const char* env = getenv("ZEPHRIN2D_DISPLAY");
    return env && sscanf(env, "%dx%d", &w, &h) == 2 && w > 0 && h > 0 && w <= 8192 && h <= 8192;
}

void resolveSize(int& w, int& h)
{
    if (!chosenSize(w, h)) {
        w = 320;
        h = 240;
    }
}

const EGLint kContextAttribs[] = {EGL_CONTEXT_CLIENT_VERSION, 1, EGL_NONE};

} // namespace

VellOpenGLConfig::VellOpenGLConfig(unsigned long, unsigned long)
    : eglDisplay(EGL_NO_DISPLAY), eglSurface(EGL_NO_SURFACE), eglContext(EGL_NO_CONTEXT),
      mWidth(0), mHeight(0), mX11Display(0), mWindow(0)
{
    resolveSize(mWidth, mHeight);
    bool ok = settings().windowed ? initWindow() : initSurfaceless();
    if (!ok)
        debug().DebugOut(1, "VellOpenGLConfig: could not create an OpenGL ES 1.1 context (%dx%d, %s)\n",
                         mWidth, mHeight, settings().windowed ? "window" : "pbuffer");
    current() = this;
}

bool VellOpenGLConfig::initSurfaceless()
{
    PFNEGLGETPLATFORMDISPLAYEXTPROC getPlatformDisplay =
        reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(eglGetProcAddress("eglGetPlatformDisplayEXT"));
    if (!getPlatformDisplay)
        return false;
    eglDisplay = getPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, 0);
    if (eglDisplay == EGL_NO_DISPLAY || !eglInitialize(eglDisplay, 0, 0))
        return false;
    const EGLint attribs[] = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE, EGL_OPENGL_ES_BIT,
                              EGL_RED_SIZE, 8, EGL_GREEN_SIZE, 8, EGL_BLUE_SIZE, 8, EGL_ALPHA_SIZE, 8,
                              EGL_DEPTH_SIZE, 16, EGL_NONE};
    EGLConfig config;
    EGLint count = 0;
    if (!eglChooseConfig(eglDisplay, attribs, &config, 1, &count) || count < 1)
        return false;
    const EGLint pbuffer[] = {EGL_WIDTH, mWidth, EGL_HEIGHT, mHeight, EGL_NONE};
    eglSurface = eglCreatePbufferSurface(eglDisplay, config, pbuffer);
    if (eglSurface == EGL_NO_SURFACE)
        return false;
    eglBindAPI(EGL_OPENGL_ES_API);
    eglContext = eglCreateContext(eglDisplay, config, EGL_NO_CONTEXT, kContextAttribs);
    if (eglContext == EGL_NO_CONTEXT)
        return false;
    return eglMakeCurrent(eglDisplay, eglSurface, eglSurface, eglContext);
}

#if ZEPHRIN2D_X11
bool VellOpenGLConfig::initWindow()
{
    Display* dpy = XOpenDisplay(0);
    if (!dpy)
        return false;
    mX11Display = dpy;
    Window root = DefaultRootWindow(dpy);
    XSetWindowAttributes swa;
    memset(&swa, 0, sizeof swa);
    swa.event_mask = ExposureMask | KeyPressMask | StructureNotifyMask;
    mWindow = XCreateWindow(dpy, root, 0, 0, mWidth, mHeight, 0, CopyFromParent, InputOutput,
                            CopyFromParent, CWEventMask, &swa);
    XSizeHints hints;
    memset(&hints, 0, sizeof hints);
    hints.flags = PMinSize | PMaxSize;
    hints.min_width = hints.max_width = mWidth;
    hints.min_height = hints.max_height = mHeight;
    XSetWMNormalHints(dpy, mWindow, &hints);
    XStoreName(dpy, mWindow, "Zephrin2D");
    XMapWindow(dpy, mWindow);
    XFlush(dpy);

    PFNEGLGETPLATFORMDISPLAYEXTPROC getPlatformDisplay =
        reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(eglGetProcAddress("eglGetPlatformDisplayEXT"));
    eglDisplay = getPlatformDisplay ? getPlatformDisplay(EGL_PLATFORM_X11_KHR, dpy, 0) : eglGetDisplay(dpy);
    if (eglDisplay == EGL_NO_DISPLAY || !eglInitialize(eglDisplay, 0, 0))
        return false;
    const EGLint attribs[] = {EGL_SURFACE_TYPE, EGL_WINDOW_BIT, EGL_RENDERABLE_TYPE, EGL_OPENGL_ES_BIT,
                              EGL_RED_SIZE, 8, EGL_GREEN_SIZE, 8, EGL_BLUE_SIZE, 8,
                              EGL_DEPTH_SIZE, 16, EGL_NONE};
    EGLConfig config;
    EGLint count = 0;
    if (!eglChooseConfig(eglDisplay, attribs, &config, 1, &count) || count < 1)
        return false;
    eglSurface = eglCreateWindowSurface(eglDisplay, config, static_cast<EGLNativeWindowType>(mWindow), 0);
    if (eglSurface == EGL_NO_SURFACE)
        return false;
    // Keep the back buffer's content after a swap so that the last frame can be read back.
    eglSurfaceAttrib(eglDisplay, eglSurface, EGL_SWAP_BEHAVIOR, EGL_BUFFER_PRESERVED);
    eglBindAPI(EGL_OPENGL_ES_API);
    eglContext = eglCreateContext(eglDisplay, config, EGL_NO_CONTEXT, kContextAttribs);
    if (eglContext == EGL_NO_CONTEXT)
        return false;
    return eglMakeCurrent(eglDisplay, eglSurface, eglSurface, eglContext);
}
#else
// Built for a device without X11: it presents through EGL on its own display.
bool VellOpenGLConfig::initWindow()
{
    debug().DebugOut(1, "VellOpenGLConfig: this build has no X11 window support\n");
    return false;
}
#endif

VellOpenGLConfig::~VellOpenGLConfig()
{
    if (eglDisplay != EGL_NO_DISPLAY) {
        eglMakeCurrent(eglDisplay, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
        if (eglContext != EGL_NO_CONTEXT)
            eglDestroyContext(eglDisplay, eglContext);
        if (eglSurface != EGL_NO_SURFACE)
            eglDestroySurface(eglDisplay, eglSurface);
        eglTerminate(eglDisplay);
    }
#if ZEPHRIN2D_X11
    if (mX11Display) {
        Display* dpy = static_cast<Display*>(mX11Display);
        if (mWindow)
            XDestroyWindow(dpy, mWindow);
        XCloseDisplay(dpy);
    }
#endif
    if (current() == this)
        current() = 0;
}

void VellOpenGLConfig::setWindowTitle(const char* title)
{
#if ZEPHRIN2D_X11
    if (mX11Display && mWindow) {
        XStoreName(static_cast<Display*>(mX11Display), mWindow, title);
        XFlush(static_cast<Display*>(mX11Display));
    }
#endif
}

void VellOpenGLConfig::SetSurfaceSize(int width, int height)
{
    settings().width = width;
    settings().height = height;
}

void VellOpenGLConfig::GetSurfaceSize(int& width, int& height) { resolveSize(width, height); }

bool VellOpenGLConfig::IsSurfaceSizeChosen()
{
    int w, h;
    return chosenSize(w, h);
}

void VellOpenGLConfig::SetWindowed(bool windowed) { settings().windowed = windowed; }

VellOpenGLConfig* VellOpenGLConfig::Current() { return current(); }

bool VellOpenGLConfig::readPixels(std::vector<uint8_t>& rgba, int& width, int& height) const
{
    width = mWidth;
    height = mHeight;
    if (!isValid())
        return false;
    rgba.resize(static_cast<size_t>(width) * height * 4);
    GLint alignment = 4;
    glGetIntegerv(GL_PACK_ALIGNMENT, &alignment);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, rgba.data());
    glPixelStorei(GL_PACK_ALIGNMENT, alignment);
    const size_t row = static_cast<size_t>(width) * 4;
    std::vector<uint8_t> tmp(row);
    for (int y = 0; y < height / 2; ++y) {
        uint8_t* a = &rgba[y * row];
        uint8_t* b = &rgba[(height - 1 - y) * row];
        memcpy(tmp.data(), a, row);
        memcpy(a, b, row);
        memcpy(b, tmp.data(), row);
    }
    return true;
}

bool VellOpenGLConfig::writePNG(const char* path) const
{
    if (!path)
        path = "";
    std::vector<uint8_t> rgba;
    int width = 0, height = 0;
    if (!readPixels(rgba, width, height)) {
        debug().DebugOut(1, "VellOpenGLConfig::writePNG - no frame to write to %s\n", path);
        return false;
    }
    png_image image;
    memset(&image, 0, sizeof image);
    image.version = PNG_IMAGE_VERSION;
    image.width = width;
    image.height = height;
    image.format = PNG_FORMAT_RGBA;
    if (!png_image_write_to_file(&image, path, 0, rgba.data(), width * 4, 0)) {
        debug().DebugOut(1, "VellOpenGLConfig::writePNG - could not write %s: %s\n", path, image.message);
        return false;
    }
    return true;
}

bool VellOpenGLConfig::SaveFrame(const char* path)
{
    if (!path)
        path = "";
    if (!Current()) {
        debug().DebugOut(1, "VellOpenGLConfig::SaveFrame - no graphics context, %s not written\n", path);
        return false;
    }
    return Current()->writePNG(path);
}

} // namespace Vell
} // namespace Tadwick
