#include "TestSupport.h"
#include "DrawTestSupport.h"

#include "CDrawList.h"
#include "CTexturedDrawList.h"

using namespace DrawTest;

namespace {

TEST(DrawChunk, TranslucencyFollowsTheTextureFormat)
{
    struct { tPalType pal; kPixelFormat format; bool translucent; } cases[] = {
        {PAL_NONE, kPixelFormatRGBA8888, true},     // GL_RGBA
        {PAL_NONE, kPixelFormatRGBA4444, true},     // GL_RGBA
        {PAL_NONE, kPixelFormatRGB888, false},      // GL_RGB
        {PAL_NONE, kPixelFormatRGB565, false},      // GL_RGB
        {PAL_PALETTE8, kPixelFormatRGBA8888, true}, // GL_PALETTE8_RGBA8_OES
        {PAL_PALETTE8, kPixelFormatRGBA4444, true}, // GL_PALETTE8_RGBA4_OES
        {PAL_PALETTE4, kPixelFormatRGBA8888, true}, // GL_PALETTE4_RGBA8_OES
        {PAL_PALETTE4, kPixelFormatRGBA4444, true}, // GL_PALETTE4_RGBA4_OES
        {PAL_PALETTE8, kPixelFormatRGB565, false},
        {PAL_PALETTE4, kPixelFormatRGB888, false},
        {PAL_PALETTE1, kPixelFormatRGBA4444, false}, // no GL format (0xFFFF)
    };
    for (const auto& c : cases) {
        CTexturedChunk chunk(4, 6);
        chunk.setTexture(formatOnlyTexture(c.pal, c.format));
        EXPECT_EQ(chunk.isTranslucent(), c.translucent) << c.pal << "/" << c.format;
        chunk.setTexture(formatOnlyTexture(c.pal, c.format), true);
        EXPECT_FALSE(chunk.isTranslucent()) << "binary alpha is drawn opaque: " << c.pal << "/" << c.format;
    }
}

TEST(DrawChunk, MergeRules)
{
    boost::shared_ptr<CTexture> opaque = formatOnlyTexture(PAL_NONE, kPixelFormatRGB888);
    boost::shared_ptr<CTexture> opaque2 = formatOnlyTexture(PAL_NONE, kPixelFormatRGB888);
    boost::shared_ptr<CTexture> alpha = formatOnlyTexture(PAL_NONE, kPixelFormatRGBA8888);
    struct {
        const char* what;
        boost::shared_ptr<CTexture> mine, theirs;
        int myZ, elementZ, theirZ;
        bool withElement;
        bool merges;
    } cases[] = {
        {"opaque, same texture, other depths", opaque, opaque, 1, 5, 2, true, true},
        {"opaque, other texture", opaque, opaque2, 0, 0, 0, true, false},
        {"translucent, same resulting depth", alpha, alpha, 3, 1, 2, true, true},
        {"translucent, other resulting depth", alpha, alpha, 3, 2, 2, true, false},
        {"translucent, no element counts as z 0", alpha, alpha, 2, 0, 2, false, true},
        {"translucent, no element, other depth", alpha, alpha, 2, 0, 1, false, false},
        {"opaque with translucent", opaque, alpha, 0, 0, 0, true, false},
    };
    for (const auto& c : cases) {
        boost::shared_ptr<CTexturedChunk> mine = quad(c.mine, 4, 4, Z(c.myZ));
        boost::shared_ptr<CTexturedChunk> theirs = quad(c.theirs, 4, 4, Z(c.theirZ));
        boost::shared_ptr<Element> e = c.withElement ? element(7, 7, Z(c.elementZ)) : boost::shared_ptr<Element>();
        EXPECT_EQ(mine->canMerge(e, theirs), c.merges) << c.what;
    }
}

TEST(DrawChunk, NeverMergesPastSixteenBitCounts)
{
    boost::shared_ptr<CTexture> texture = formatOnlyTexture(PAL_NONE, kPixelFormatRGB888);
    boost::shared_ptr<CTexturedChunk> big(new CTexturedChunk(40000, 6));
    boost::shared_ptr<CTexturedChunk> other(new CTexturedChunk(30000, 6));
    big->setTexture(texture);
    other->setTexture(texture);
    EXPECT_FALSE(big->canMerge(element(), other));
    AssertCapture asserts;
    big->merge(element(), other);
    EXPECT_EQ(big->getVertices().size(), 40000u) << "refused, unchanged";
    EXPECT_TRUE(asserts.has("CTexturedChunk::merge merged chunk would exceed 65535 vertices or indices"));
}

TEST(DrawChunk, MergedChunkAppendsRenumberedGeometry)
{
    boost::shared_ptr<CTexture> texture = formatOnlyTexture(PAL_NONE, kPixelFormatRGB888);
    boost::shared_ptr<CTexturedChunk> a = quad(texture, 4, 4);
    boost::shared_ptr<CTexturedChunk> b = quad(texture, 2, 2);
    b->getTexCoords()[3] = tVect2{ONE_HALF_X, ONE_HALF_X};
    boost::shared_ptr<Element> placed = element(100, 50);
    placed->scaleTo(tVect2{tFixed(2), tFixed(2)});
    boost::shared_ptr<CTexturedChunk> merged =
        boost::dynamic_pointer_cast<CTexturedChunk>(a->createMergedChunk(placed, b));
    ASSERT_TRUE(merged);
    EXPECT_EQ(a->getVertices().size(), 4u) << "the source is unchanged";
    ASSERT_EQ(merged->getVertices().size(), 8u);
    ASSERT_EQ(merged->getTexCoords().size(), 8u);
    const std::vector<uint16_t> indices = {0, 1, 2, 2, 1, 3, 4, 5, 6, 6, 5, 7};
    EXPECT_EQ(merged->getIndices(), indices);
    EXPECT_EQ(merged->getVertices()[5], (tVect3{tFixed(104), tFixed(54), ZERO_X}));
    EXPECT_EQ(merged->getVertices()[6], (tVect3{tFixed(100), tFixed(50), ZERO_X}));
    EXPECT_EQ(merged->getTexCoords()[7], (tVect2{ONE_HALF_X, ONE_HALF_X}));

    a->merge(placed, a);  // with itself
    EXPECT_EQ(a->getVertices().size(), 8u);
    EXPECT_EQ(a->getIndices()[11], 7);
}

} // namespace
