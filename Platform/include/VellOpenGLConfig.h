#ifndef ZEPHRIN2D_PLATFORM_VELLOPENGLCONFIG_H
#define ZEPHRIN2D_PLATFORM_VELLOPENGLCONFIG_H

#include <EGL/egl.h>
#include <stdint.h>
#include <vector>

namespace Tadwick {
namespace Vell {

/// Creates the EGL display, surface and a current OpenGL ES 1.1 context.
///
/// Headless by default (a pbuffer on Mesa's surfaceless platform); an X11
/// window when the host asked for one with SetWindowed(true). The surface
/// size is set by the host before construction, else ZEPHRIN2D_DISPLAY=WxH,
/// else 320x240. The two numbers are the device's own and are ignored here.
class VellOpenGLConfig
{
public:
    VellOpenGLConfig(unsigned long a = 0, unsigned long b = 0);
    ~VellOpenGLConfig();

    EGLDisplay eglDisplay;
    EGLSurface eglSurface;
    EGLContext eglContext;

    bool isValid() const { return eglContext != EGL_NO_CONTEXT; }
    int getWidth() const { return mWidth; }
    int getHeight() const { return mHeight; }
    bool isWindowed() const { return mWindow != 0; }
    void* getX11Display() const { return mX11Display; }
    unsigned long getX11Window() const { return mWindow; }
    void setWindowTitle(const char* title);

    /// Host settings, read when the next configuration is made.
    static void SetSurfaceSize(int width, int height);
    static void GetSurfaceSize(int& width, int& height);
    /// Whether the host set a size (or ZEPHRIN2D_DISPLAY gives one); 0 x 0 unsets it.
    static bool IsSurfaceSizeChosen();
    static void SetWindowed(bool windowed);

    /// The most recently made configuration, or null.
    static VellOpenGLConfig* Current();

    /// Reads the surface's pixels as RGBA rows, top row first. For a
    /// pbuffer this is the last frame, also after the swap.
    bool readPixels(std::vector<uint8_t>& rgba, int& width, int& height) const;
    /// Writes the last frame to an RGBA PNG file. False, with a message, when
    /// the frame cannot be read or the file cannot be written.
    bool writePNG(const char* path) const;
    /// writePNG of the current configuration; false, with a message, when there is none.
    static bool SaveFrame(const char* path);

private:
    VellOpenGLConfig(const VellOpenGLConfig&);
    VellOpenGLConfig& operator=(const VellOpenGLConfig&);
    bool initSurfaceless();
    bool initWindow();

    int mWidth;
    int mHeight;
    void* mX11Display;
    unsigned long mWindow;
};

} // namespace Vell
} // namespace Tadwick

#endif
