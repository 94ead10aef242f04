// Arbitrary strings measured and drawn by the font service at arbitrary
// positions, sizes and attributes into a small surface.
#include "FuzzSupport.h"

#include <FontMPI.h>

#include <vector>

using namespace Tadwick::Vell;

namespace {
CFontMPI* gFonts = 0;
tFontHndl gHandles[4] = {0, 0, 0, 0};
const unsigned char kSizes[4] = {1, 7, 16, 60};
} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    Fuzz::quiet();
    gFonts = new CFontMPI;
    for (int i = 0; i < 4; ++i) {
        tFontProp prop = {1, kSizes[i], 0, 0};
        gHandles[i] = gFonts->LoadFont("DejaVu Sans", prop);
    }
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    // Header: font, attribute bytes, colour, x, y, surface width and height; then the string.
    Fuzz::Reader in(data, size);
    const uint8_t which = in.byte();
    tFontAttr attr = {1, 0, 1, 0, 0};
    attr.direction = in.byte();
    attr.antialias = in.byte() & 1;
    attr.color = uint32_t(in.i32());
    const int x = in.i32();
    const int y = in.i32();
    const int width = in.byte() % 33;
    const int height = in.byte() % 33;
    const Glib::ustring text(in.restString());

    gFonts->SelectFont(gHandles[which & 3]);
    gFonts->SetFontAttr(attr);
    tRect rect = gFonts->GetStringRect(text);
    tFontMetrics metrics = gFonts->GetFontMetrics();
    // An exactly sized buffer, so that ASan sees any write past the surface.
    std::vector<uint8_t> pixels(size_t(width) * height * 4);
    tFontSurf surf = {width, height, width * 4, pixels.empty() ? 0 : pixels.data(), kPixelFormatRGBA8888};
    gFonts->DrawString(text, x, y, &surf);
    gFonts->DrawString(text, rect.left - rect.right / 2, metrics.ascent - rect.top, &surf);
    return 0;
}
