#include "PeerScenes.h"

#include <algorithm>
#include <png.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

namespace PeerScenes {

namespace {

/// A small deterministic generator, the same on every machine.
struct tRandom
{
    uint32_t s;
    explicit tRandom(uint32_t seed) : s(seed) {}
    uint32_t next()
    {
        s = s * 1103515245u + 12345u;
        return s >> 8;
    }
    int below(int n) { return static_cast<int>(next() % static_cast<uint32_t>(n)); }
};

bool writePng(const std::string& path, int w, int h, bool alpha, const std::vector<uint8_t>& pixels)
{
    FILE* f = fopen(path.c_str(), "wb");
    if (!f)
        return false;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, 0, 0, 0);
    png_infop info = png_create_info_struct(png);
    if (setjmp(png_jmpbuf(png))) {
        png_destroy_write_struct(&png, &info);
        fclose(f);
        return false;
    }
    png_init_io(png, f);
    png_set_IHDR(png, info, w, h, 8, alpha ? PNG_COLOR_TYPE_RGBA : PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_write_info(png, info);
    const int stride = w * (alpha ? 4 : 3);
    for (int y = 0; y < h; ++y)
        png_write_row(png, const_cast<png_bytep>(&pixels[static_cast<size_t>(y) * stride]));
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    fclose(f);
    return true;
}

/// Texture n of a kind: a distinct colour per texture, darker in the
/// top-left quarter so that rotations show; translucent ones have alpha
/// between 64 and 191.
tTextureDef texture(const std::string& kind, int n, int size, bool translucent)
{
    tTextureDef t;
    t.path = artDirectory() + "/" + kind + std::to_string(n) + ".png";
    t.width = size;
    t.height = size;
    t.translucent = translucent;
    if (access(t.path.c_str(), R_OK) == 0)
        return t;
    const int channels = translucent ? 4 : 3;
    std::vector<uint8_t> px(static_cast<size_t>(size) * size * channels);
    for (int y = 0; y < size; ++y)
        for (int x = 0; x < size; ++x) {
            uint8_t* p = &px[(static_cast<size_t>(y) * size + x) * channels];
            const bool dark = x < size / 2 && y < size / 2;
            p[0] = static_cast<uint8_t>((n * 97 + 40) % 256 / (dark ? 3 : 1));
            p[1] = static_cast<uint8_t>((n * 53 + 120 + x * 4) % 256 / (dark ? 3 : 1));
            p[2] = static_cast<uint8_t>((n * 151 + 200 + y * 4) % 256 / (dark ? 3 : 1));
            if (translucent)
                p[3] = static_cast<uint8_t>(64 + (x * 16 + y * 8 + n * 32) % 128);
        }
    writePng(t.path, size, size, translucent, px);
    return t;
}

/// n distinct depths between -0.9 and 9.9, shuffled.
std::vector<int32_t> distinctDepths(int n, tRandom& r)
{
    std::vector<int32_t> z(n);
    const int32_t step = static_cast<int32_t>((10.8 * 65536) / n) > 64 ? static_cast<int32_t>((10.8 * 65536) / n) : 64;
    for (int i = 0; i < n; ++i)
        z[i] = -58982 + i * step;
    for (int i = n - 1; i > 0; --i)
        std::swap(z[i], z[r.below(i + 1)]);
    return z;
}

int angleOf(tRandom& r, bool pixelCheck) { return pixelCheck ? 90 * r.below(4) : r.below(360); }

} // namespace

std::string artDirectory()
{
    static std::string dir;
    if (dir.empty()) {
        dir = "/tmp/zephrin2d-peer-art-" + std::to_string(getuid());
        mkdir(dir.c_str(), 0755);
    }
    return dir;
}

tScene makeScene(char id, bool pixelCheck)
{
    tScene s;
    s.id = id;
    s.width = 64;
    s.height = 64;
    s.cels = 0;
    tRandom r(1234u + static_cast<uint32_t>(id));
    if (id == 'a' || id == 'b' || id == 'c') {
        s.name = id == 'a' ? "10,000 static sprites, 8 textures"
                 : id == 'b' ? "10,000 sprites, 10% moving" : "10,000 sprites, all moving";
        for (int t = 0; t < 8; ++t)
            s.textures.push_back(texture("opaque", t, 8, false));
        const int n = 10000;
        std::vector<int32_t> z = distinctDepths(n, r);
        for (int i = 0; i < n; ++i) {
            tSpriteDef d = {};
            d.x = 4 + r.below(56);
            d.y = 4 + r.below(56);
            d.z = z[i];
            d.texture = r.below(8);
            d.angle = angleOf(r, pixelCheck);
            d.moving = id == 'c' || (id == 'b' && i % 10 == 0);
            s.sprites.push_back(d);
        }
    } else if (id == 'd') {
        s.name = "2,000 translucent sprites, 4 textures, 50 depths";
        for (int t = 0; t < 4; ++t)
            s.textures.push_back(texture("alpha", t, 8, true));
        for (int i = 0; i < 2000; ++i) {
            tSpriteDef d = {};
            const int depth = r.below(50);
            d.x = 4 + r.below(56);
            d.y = 4 + r.below(56);
            d.z = depth * 0x2000;    // 0 ... 6.125 in steps of 1/8
            d.texture = depth % 4;   // one texture per depth: the order within a depth is creation order
            d.angle = angleOf(r, pixelCheck);
            d.moving = false;
            s.sprites.push_back(d);
        }
    } else if (id == 'g') {
        s.name = "2,000 tinted sprites fading, 4 textures, 50 depths";
        for (int t = 0; t < 4; ++t)
            s.textures.push_back(texture("opaque", t, 8, false));
        for (int i = 0; i < 2000; ++i) {
            tSpriteDef d = {};
            const int depth = r.below(50);
            d.x = 4 + r.below(56);
            d.y = 4 + r.below(56);
            d.z = depth * 0x2000;
            d.texture = depth % 4;
            d.angle = angleOf(r, pixelCheck);
            for (int c = 0; c < 3; ++c)
                d.tint[c] = static_cast<uint8_t>(64 + r.below(192));
            d.tint[3] = static_cast<uint8_t>(64 + r.below(128));
            s.sprites.push_back(d);
        }
    } else if (id == 'e') {
        s.name = "500 actors changing cel every frame";
        s.cels = 4;
        for (int t = 0; t < 8; ++t)
            s.textures.push_back(texture("opaque", t, 8, false));
        std::vector<int32_t> z = distinctDepths(500, r);
        for (int i = 0; i < 500; ++i) {
            tSpriteDef d = {};
            d.x = 4 + r.below(56);
            d.y = 4 + r.below(56);
            d.z = z[i];
            d.texture = r.below(8);   // cel k shows texture (texture + k) % 8
            d.angle = angleOf(r, pixelCheck);
            d.moving = false;
            s.sprites.push_back(d);
        }
    } else {
        s.name = "320x240 game scene, 300 sprites";
        s.width = 320;
        s.height = 240;
        s.textures.push_back(texture("tile", 0, 32, false));
        s.textures.push_back(texture("tile", 1, 32, false));
        for (int t = 0; t < 4; ++t)
            s.textures.push_back(texture("character", t, 16, false));
        s.textures.push_back(texture("effect", 0, 16, true));
        s.textures.push_back(texture("effect", 1, 16, true));
        // 80 background tiles at one depth, side by side.
        for (int i = 0; i < 80; ++i) {
            tSpriteDef d = {16 + 32 * (i % 10), 16 + 32 * (i / 10), -0x8000, (i + i / 10) % 2, 0, false, {0, 0, 0, 0}};
            s.sprites.push_back(d);
        }
        // 200 characters and props, 40 of them walking; 20 translucent effects, all moving.
        std::vector<int32_t> z = distinctDepths(220, r);
        for (int i = 0; i < 220; ++i) {
            tSpriteDef d = {};
            d.x = 8 + r.below(304);
            d.y = 8 + r.below(224);
            d.z = i < 200 ? z[i] / 2 : 6 * 65536 + i * 256;
            d.texture = i < 200 ? 2 + r.below(4) : 6 + i % 2;
            d.angle = i < 200 ? 0 : angleOf(r, pixelCheck);
            d.moving = i < 200 ? i % 5 == 0 : true;
            s.sprites.push_back(d);
        }
    }
    return s;
}

std::vector<int> paintersOrder(const tScene& scene)
{
    std::vector<int> order(scene.sprites.size());
    for (size_t i = 0; i < order.size(); ++i)
        order[i] = static_cast<int>(i);
    std::stable_sort(order.begin(), order.end(),
                     [&scene](int a, int b) { return scene.sprites[a].z < scene.sprites[b].z; });
    return order;
}

} // namespace PeerScenes
