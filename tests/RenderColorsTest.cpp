#include "TestSupport.h"

#include <cstdlib>

namespace {

/// zephrin2d-render on a scene file; the frame it wrote.
ImageIO::tImage render(const std::string& dir, const std::string& scene, const std::string& options)
{
    writeFile(dir + "/scene.json", scene);
    const std::string out = dir + "/frame.png";
    std::remove(out.c_str());
    const std::string command = std::string(Z2D_RENDER) + " " + dir + "/scene.json --art-path " + dir +
                                " --size 48x8 --out " + out + " " + options + " >/dev/null";
    EXPECT_EQ(std::system(command.c_str()), 0) << command;
    ImageIO::tImage image;
    EXPECT_TRUE(ImageIO::readPNG(out, image)) << out;
    return image;
}

tColor at(const ImageIO::tImage& image, int x)
{
    const size_t p = (static_cast<size_t>(image.height / 2) * image.width + x) * 4;
    return p + 3 < image.rgba.size() ? tColor{image.rgba[p], image.rgba[p + 1], image.rgba[p + 2], 255} : tColor{};
}

TEST(RenderColorsTest, ColorTintsFadesAndHidesUnlessTurnedOff)
{
    const std::string dir = scratchDir("render-colors");
    writeSolidPNG(dir + "/white.png", 8, 8, tColor{255, 255, 255, 255});
    writeSolidPNG(dir + "/blue.png", 8, 8, BLUE);
    // Half-faded white over blue; white tinted red; blue at alpha 0.
    const std::string scene = R"([
      {"ElementType": 0, "ID": 0, "URL": "blue.png", "Position": [0.0, 0.0, 0.0]},
      {"ElementType": 0, "ID": 1, "URL": "white.png", "Position": [0.0, 0.0, 1.0], "Color": [255, 255, 255, 128]},
      {"ElementType": 0, "ID": 2, "URL": "white.png", "Position": [16.0, 0.0, 0.0], "Color": [255, 0, 0, 255]},
      {"ElementType": 0, "ID": 3, "URL": "blue.png", "Position": [32.0, 0.0, 0.0], "Color": [0, 255, 0, 0]}])";
    const tColor WHITE{255, 255, 255, 255}, BLACK_{0, 0, 0, 255};
    struct { const char* options; tColor blended, tinted, hidden; } cases[] = {
        {"", {128, 128, 255, 255}, RED, BLACK_},
        {"--no-colors", WHITE, WHITE, BLUE},
    };
    for (const auto& c : cases) {
        const ImageIO::tImage frame = render(dir, scene, c.options);
        const tColor got[3] = {at(frame, 4), at(frame, 20), at(frame, 36)}, want[3] = {c.blended, c.tinted, c.hidden};
        for (int i = 0; i < 3; ++i)
            for (int k = 0; k < 3; ++k)
                EXPECT_NEAR((&got[i].r)[k], (&want[i].r)[k], 2) << c.options << " sprite " << i << ": " << got[i];
    }
}

} // namespace
