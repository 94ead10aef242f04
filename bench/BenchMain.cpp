// The benchmark program: records the GL renderer of both sides in the
// report's context, then runs every benchmark.
#include "CGraphics2D.h"
#include "PeerScenes.h"
#include "PeerSdl.h"

#include <GLES/gl.h>
#include <VellOpenGLConfig.h>
#include <benchmark/benchmark.h>
#include <string>

int main(int argc, char** argv)
{
    Tadwick::Vell::VellOpenGLConfig::SetSurfaceSize(16, 16);
    CGraphics2D::Instance()->init(tVect2{tFixed(16), tFixed(16)}, tColor{0, 0, 0, 255}, 0, 0);
    const char* renderer = reinterpret_cast<const char*>(glGetString(GL_RENDERER));
    const char* version = reinterpret_cast<const char*>(glGetString(GL_VERSION));
    benchmark::AddCustomContext("gl_renderer", renderer ? renderer : "?");
    benchmark::AddCustomContext("gl_version", version ? version : "?");
    CGraphics2D::Instance()->cleanup();
    {
        PeerScenes::SdlScene probe(PeerScenes::makeScene('d'));
        benchmark::AddCustomContext("sdl_renderer", probe.error().empty() ? probe.rendererName() : probe.error());
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
