// Draws scenes (a) and (d) four ways (draw manager, immediate draws, the
// driver's floor, SDL2) and compares the pictures: exit status 0 when every
// pair agrees within the tolerance. Rotations are multiples of 90 degrees
// here, so that the two rasterisers cover the same pixels.
#include "ImageIO.h"
#include "PeerFloor.h"
#include "PeerScenes.h"
#include "PeerSdl.h"
#include "PeerZephrin.h"

#include <stdio.h>

namespace {

using namespace PeerScenes;

ImageIO::tImage image(const tScene& s, const std::vector<uint8_t>& rgba)
{
    ImageIO::tImage i;
    i.width = s.width;
    i.height = s.height;
    i.rgba = rgba;
    for (size_t p = 3; p < i.rgba.size(); p += 4)
        i.rgba[p] = 255;   // compare colour only: the two surfaces keep alpha differently
    return i;
}

template <class S> ImageIO::tImage render(S& scene, const tScene& s)
{
    scene.update(0);
    scene.draw();
    ImageIO::tImage i = image(s, scene.pixels());
    scene.finish();
    return i;
}

} // namespace

int main(int argc, char** argv)
{
    const int tolerance = 3;          // channel difference allowed
    const double maxShare = 0.01;     // share of pixels allowed beyond it
    const char* outDir = argc > 1 ? argv[1] : 0;
    int failures = 0;
    for (char id : {'a', 'd', 'g'}) {
        const tScene s = makeScene(id, true);
        ImageIO::tImage managed, immediate, floor, peer;
        {
            ZephrinScene z(s, true);
            managed = render(z, s);
        }
        {
            ZephrinScene z(s, false);
            immediate = render(z, s);
        }
        {
            FloorScene f(s);
            floor = render(f, s);
        }
        {
            SdlScene p(s);
            if (!p.error().empty()) {
                fprintf(stderr, "scene %c: SDL2 unavailable: %s\n", id, p.error().c_str());
                return 77;
            }
            peer = render(p, s);
        }
        if (outDir) {
            const std::string base = std::string(outDir) + "/scene-" + id;
            ImageIO::writePNG(base + "-zephrin2d.png", managed);
            ImageIO::writePNG(base + "-immediate.png", immediate);
            ImageIO::writePNG(base + "-floor.png", floor);
            ImageIO::writePNG(base + "-sdl2.png", peer);
        }
        const struct
        {
            const char* name;
            const ImageIO::tImage& a;
            const ImageIO::tImage& b;
        } pairs[] = {{"Zephrin2D/immediate", managed, immediate},
                     {"Zephrin2D/floor", managed, floor},
                     {"Zephrin2D/SDL2", managed, peer}};
        for (const auto& pair : pairs) {
            const ImageIO::tDifference d = ImageIO::compare(pair.a, pair.b, tolerance);
            const double share = static_cast<double>(d.pixelsOver) / (s.width * s.height);
            const bool ok = d.sameSize && share <= maxShare;
            printf("scene %c %-20s pixels over %d: %ld (%.2f%%), largest channel difference %d: %s\n", id, pair.name,
                   tolerance, d.pixelsOver, share * 100.0, d.maxChannelDiff, ok ? "ok" : "DIFFERENT");
            failures += !ok;
        }
    }
    return failures ? 1 : 0;
}
