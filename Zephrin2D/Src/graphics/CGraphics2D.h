#ifndef ZEPHRIN2D_CGRAPHICS2D_H
#define ZEPHRIN2D_CGRAPHICS2D_H

#include "tVect.h"

#include <DebugMPI.h>

namespace Tadwick { namespace Vell { class VellOpenGLConfig; } }

/// The process-wide graphics context.
///
/// init() creates the display, surface and GL ES 1.1 context and puts GL into
/// the fixed state the library assumes: bottom-left origin, one unit per
/// pixel, visible depth -1.0 ... 10.0 (greater z nearer), depth test, alpha
/// test, blending, vertex and texture-coordinate arrays on. Each frame:
/// clearBuffer(), draw, swapBuffer(). cleanup() releases the draw manager,
/// the texture manager and the context, and deletes the instance.
class CGraphics2D
{
public:
    static CGraphics2D* Instance();

    /// Always true; a second call changes nothing. a and b go to the platform unchanged.
    ///
    /// size is the scene's size in units; it is stretched over the whole
    /// surface. A host that never chose a surface size
    /// (VellOpenGLConfig::SetSurfaceSize, ZEPHRIN2D_DISPLAY) gets a surface of
    /// exactly this size, one unit per pixel. When the host's surface has
    /// another size, the debug service says so at level 1, naming both.
    bool init(tVect2 size, tColor clearColor, unsigned long a, unsigned long b);
    /// Whether the GPU takes the compressed format (never 0xFFFF, "no format").
    bool IsSupportedCompressedTexFormat(int format);
    void clearBuffer();
    bool swapBuffer();
    /// Deletes this instance: do not use the pointer afterwards.
    void cleanup();

    /// The platform configuration, null before init.
    Tadwick::Vell::VellOpenGLConfig* getConfig() const { return mConfig; }

private:
    CGraphics2D();
    ~CGraphics2D();
    CGraphics2D(const CGraphics2D&);
    CGraphics2D& operator=(const CGraphics2D&);

    Tadwick::Vell::VellOpenGLConfig* mConfig;
    int32_t mNumCompressedFormats;
    int32_t* mCompressedFormats;
    Tadwick::Vell::CDebugMPI mDebug;

    static CGraphics2D* mInstance;
};

/// Reads glGetError() once; on an error prints its name on standard output
/// and returns true.
bool gl_checkError();

#endif
