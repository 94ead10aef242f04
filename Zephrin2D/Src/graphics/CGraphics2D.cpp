#include "CGraphics2D.h"

#include "CDrawManager.h"
#include "CTextureManager.h"

#include <BaseUtils.h>
#include <VellOpenGLConfig.h>

#include <GLES/gl.h>
#include <cstdio>

CGraphics2D* CGraphics2D::mInstance = 0;

CGraphics2D::CGraphics2D()
    : mConfig(0), mNumCompressedFormats(0), mCompressedFormats(0), mDebug(0x282)
{
}

CGraphics2D::~CGraphics2D() {}

CGraphics2D* CGraphics2D::Instance()
{
    if (!mInstance)
        mInstance = new CGraphics2D();
    return mInstance;
}

bool CGraphics2D::init(tVect2 size, tColor clearColor, unsigned long a, unsigned long b)
{
    if (mConfig)
        return true;
    mDebug.DebugOut(2, "CGraphics2D::init()\n");
    while (glGetError() != GL_NO_ERROR) {
    }
    // A host that never chose a surface size gets one of the scene's size.
    typedef Tadwick::Vell::VellOpenGLConfig tConfig;
    const bool surfaceChosen = tConfig::IsSurfaceSizeChosen();
    if (!surfaceChosen)
        tConfig::SetSurfaceSize(size.x.toInt(), size.y.toInt());
    mConfig = new tConfig(a, b);
    if (!surfaceChosen)
        tConfig::SetSurfaceSize(0, 0);
    if (tFixed(mConfig->getWidth()) != size.x || tFixed(mConfig->getHeight()) != size.y)
        mDebug.DebugOut(1, "CGraphics2D::init - the scene is %gx%g but the surface is %dx%d: the scene is stretched to fit\n",
                        size.x.toDouble(), size.y.toDouble(), mConfig->getWidth(), mConfig->getHeight());

    glShadeModel(GL_SMOOTH);
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LEQUAL);
    glEnable(GL_TEXTURE_2D);
    glEnable(GL_ALPHA_TEST);
    glAlphaFuncx(GL_GREATER, 0);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    // The byte is shifted, not scaled: 255 becomes 0xFF00, just under 1.0.
    glClearColorx(clearColor.r << 8, clearColor.g << 8, clearColor.b << 8, clearColor.a << 8);
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    // RAM images (and text and depalettized copies) keep unpadded rows: GL must
    // not expect each row to start on 4 bytes. Every upload relies on this.
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrthox(0, size.x.raw(), 0, size.y.raw(), static_cast<GLfixed>(0xFFF60000u), 0x10000);
    glMatrixMode(GL_MODELVIEW);

    GLint count = 0;
    glGetIntegerv(GL_NUM_COMPRESSED_TEXTURE_FORMATS, &count);
    if (count < 0)
        count = 0;
    mNumCompressedFormats = count;
    mCompressedFormats = new int32_t[count > 0 ? count : 1];
    if (count > 0)
        glGetIntegerv(GL_COMPRESSED_TEXTURE_FORMATS, reinterpret_cast<GLint*>(mCompressedFormats));

    BaseUtils::Assert(!gl_checkError(), "Zephrin2D/Src/CGraphics2D", 156, "CGraphics2D::init Initialization Error");
    return true;
}

bool CGraphics2D::IsSupportedCompressedTexFormat(int format)
{
    if (format == 0xFFFF || !mCompressedFormats)
        return false;
    for (int32_t i = 0; i < mNumCompressedFormats; ++i)
        if (mCompressedFormats[i] == format)
            return true;
    return false;
}

void CGraphics2D::clearBuffer()
{
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glLoadIdentity();
}

bool CGraphics2D::swapBuffer()
{
    if (!mConfig)
        return false;
    return eglSwapBuffers(mConfig->eglDisplay, mConfig->eglSurface) != 0;
}

void CGraphics2D::cleanup()
{
    Instance()->mDebug.DebugOut(2, "CGraphics2D::cleanup()\n");
    CDrawManager::Instance()->deleteAll();
    CDrawManager::Destroy();
    CTextureManager::Instance()->deleteAll();
    CTextureManager::Destroy();
    while (glGetError() != GL_NO_ERROR) {
    }
    CGraphics2D* self = mInstance;
    delete[] self->mCompressedFormats;
    self->mCompressedFormats = 0;
    delete self->mConfig;
    self->mConfig = 0;
    delete self;
    mInstance = 0;
}

bool gl_checkError()
{
    const GLenum error = glGetError();
    if (error == GL_NO_ERROR)
        return false;
    switch (error) {
    case GL_INVALID_ENUM: puts("GL_INVALID_ENUM"); break;
    case GL_INVALID_VALUE: puts("GL_INVALID_VALUE"); break;
    case GL_INVALID_OPERATION: puts("GL_INVALID_OPERATION"); break;
    case GL_STACK_OVERFLOW: puts("GL_STACK_OVERFLOW"); break;
    case GL_STACK_UNDERFLOW: puts("GL_STACK_UNDERFLOW"); break;
    case GL_OUT_OF_MEMORY: puts("GL_OUT_OF_MEMORY"); break;
    default: puts("Unknown OpenGL Error"); break;
    }
    return true;
}
