#include <DebugMPI.h>
#include <FontMPI.h>

#include <gtest/gtest.h>
#include <vector>

namespace {

using namespace Tadwick::Vell;

tFontProp prop(uint8_t size)
{
    tFontProp p = {2, size, 0, 0};
    return p;
}

tFontAttr attr(uint32_t color, uint8_t antialias = 1)
{
    tFontAttr a = {2, color, 1, antialias, 0};
    return a;
}

struct Surface
{
    Surface(int w, int h) : pixels(size_t(w) * h * 4, 0)
    {
        surf.width = w;
        surf.height = h;
        surf.pitch = w * 4;
        surf.buffer = pixels.data();
        surf.format = kPixelFormatRGBA8888;
    }
    const uint8_t* at(int x, int y) const { return &pixels[(size_t(y) * surf.width + x) * 4]; }
    int inked() const
    {
        int n = 0;
        for (size_t i = 3; i < pixels.size(); i += 4)
            n += pixels[i] != 0;
        return n;
    }
    std::vector<uint8_t> pixels;
    tFontSurf surf;
};

class Font : public ::testing::Test
{
protected:
    void SetUp() override
    {
        handle = fonts.LoadFont("DejaVu Sans", prop(16));
        ASSERT_NE(handle, 0u);
    }
    CFontMPI fonts;
    tFontHndl handle = 0;
};

TEST_F(Font, DrawStringInksInsideTheRectWithTheColour)
{
    const Glib::ustring text = "Agy Wq";
    fonts.SetFontAttr(attr(0x80FF2010));
    tFontMetrics m = fonts.GetFontMetrics();
    tRect r = fonts.GetStringRect(text);
    Surface s(128, 64);
    const int x0 = 10, y0 = 5;
    ASSERT_TRUE(fonts.DrawString(text, x0, y0, &s.surf, 0));
    const int baseline = y0 + m.ascent;
    int inked = 0, maxAlpha = 0;
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 128; ++x) {
            const uint8_t* p = s.at(x, y);
            if (!p[3])
                continue;
            ++inked;
            maxAlpha = std::max<int>(maxAlpha, p[3]);
            EXPECT_TRUE(p[0] == 0xFF && p[1] == 0x20 && p[2] == 0x10) << x << "," << y;
            EXPECT_GE(x, x0 - 1);
            EXPECT_LT(x, x0 + r.right);
            EXPECT_GT(y, baseline - r.top - 1);
            EXPECT_LE(y, baseline - r.bottom - 1 + 1);
        }
    EXPECT_GT(inked, 50);
    EXPECT_EQ(maxAlpha, 0x80) << "full coverage gives the colour's alpha";
}

TEST_F(Font, ClipsAtEveryEdgeWithoutOverrun)
{
    const int w = 24, h = 16, guard = 64;
    std::vector<uint8_t> memory(size_t(w) * h * 4 + 2 * guard, 0xEE);
    tFontSurf surf = {w, h, w * 4, memory.data() + guard, kPixelFormatRGBA8888};
    const int positions[][2] = {{-10, -8}, {-1000, 0}, {20, 10}, {0, -20}, {-5, 14}, {23, 15},
                                {2147483000, 0}, {0, -2147483000}, {-2147483647, 2147483647}};
    for (auto& p : positions) {
        for (int i = 0; i < w * h * 4; ++i)
            surf.buffer[i] = 0;
        EXPECT_TRUE(fonts.DrawString("WWW ggg", p[0], p[1], &surf));
        for (int i = 0; i < guard; ++i) {
            ASSERT_EQ(memory[i], 0xEE) << p[0] << "," << p[1];
            ASSERT_EQ(memory[memory.size() - 1 - i], 0xEE) << p[0] << "," << p[1];
        }
    }
    Surface s(w, h);
    fonts.DrawString("WWW", -6, -4, &s.surf);
    EXPECT_GT(s.inked(), 0) << "partly visible text is drawn";
}

TEST_F(Font, MonochromeGivesHardEdges)
{
    fonts.SetFontAttr(attr(0xFF000000, 0));
    Surface s(64, 32);
    ASSERT_TRUE(fonts.DrawString("Sao", 2, 2, &s.surf));
    EXPECT_GT(s.inked(), 20);
    for (size_t i = 3; i < s.pixels.size(); i += 4)
        ASSERT_TRUE(s.pixels[i] == 0 || s.pixels[i] == 255);
}

TEST_F(Font, InvalidUtf8AndOddStringsAreSafe)
{
    const std::string bad[] = {"\xff\xfe", "a\xc3", "\xe2\x82", "\xed\xa0\x80x", "\xf4\x90\x80\x80",
                               "\xc0\xaf", std::string("a\0b", 3), "\x01\n\t\x7f", "\xf0\x9f\x98\x80"};
    Surface s(64, 32);
    for (const std::string& raw : bad) {
        Glib::ustring text(raw);
        tRect r = fonts.GetStringRect(text);
        EXPECT_GE(r.right, 0);
        EXPECT_TRUE(fonts.DrawString(text, 0, 0, &s.surf));
    }
    EXPECT_EQ(fonts.GetStringRect("a\xff" "b").right, fonts.GetStringRect("ab").right);
    EXPECT_EQ(fonts.GetStringRect("\xed\xa0\x80").right, 0);
    // Valid at the edges: a character that ends the string, the code point just below the surrogates.
    EXPECT_GT(fonts.GetStringRect("a\xc3\xa9").right, fonts.GetStringRect("a").right);
    EXPECT_GT(fonts.GetStringRect("\xed\x9f\xbf").right, 0);
}

TEST_F(Font, HandlesAndBadInput)
{
    auto previous = CDebugMPI::SetHandler([](int, int, const std::string&) {});
    EXPECT_EQ(fonts.LoadFont("No Such Font Family 42", prop(12)), 0u);
    EXPECT_EQ(fonts.LoadFont("", prop(12)), 0u);
    EXPECT_EQ(fonts.LoadFont("/nonexistent/font.ttf", prop(12)), 0u);
    EXPECT_EQ(fonts.LoadFont(Z2D_TEST_DATA_DIR, prop(12)), 0u);
    EXPECT_EQ(fonts.LoadFont("DejaVu Sans", prop(0)), 0u);
    CDebugMPI::SetHandler(previous);

    tFontHndl big = fonts.LoadFont("DejaVu Sans", prop(32));
    ASSERT_NE(big, 0u);
    EXPECT_NE(big, handle);
    const int bigAscent = fonts.GetFontMetrics().ascent;
    ASSERT_TRUE(fonts.SelectFont(handle));
    EXPECT_LT(fonts.GetFontMetrics().ascent, bigAscent);
    EXPECT_FALSE(fonts.SelectFont(0));
    EXPECT_FALSE(fonts.SelectFont(9999));

    EXPECT_TRUE(fonts.UnloadFont(handle));
    EXPECT_FALSE(fonts.UnloadFont(handle));
    Surface s(16, 16);
    EXPECT_FALSE(fonts.DrawString("x", 0, 0, &s.surf)) << "no font selected after unloading it";
    EXPECT_EQ(fonts.GetStringRect("x").right, 0);
    ASSERT_TRUE(fonts.SelectFont(big));

    EXPECT_FALSE(fonts.DrawString("x", 0, 0, 0));
    void (*const spoil[])(tFontSurf&) = {[](tFontSurf& w) { w.format = 1; }, [](tFontSurf& w) { w.pitch = 8; },
                                          [](tFontSurf& w) { w.buffer = 0; }};
    for (auto f : spoil) {
        tFontSurf wrong = s.surf;
        f(wrong);
        EXPECT_FALSE(fonts.DrawString("x", 0, 0, &wrong));
    }
}

} // namespace
