#include "TestSupport.h"

#include "CTexture.h"
#include "CTextureManager.h"

#include <SystemData.h>

namespace {

std::string png(const std::string& name) { return testDataPath("png/" + name); }

class TextureManagerTest : public ::testing::Test
{
protected:
    void TearDown() override { CTextureManager::Destroy(); }
    boost::shared_ptr<CTexture> loadRAM(const std::string& path)
    {
        return CTextureManager::Instance()->load(path, false, true, false);
    }
};

TEST_F(TextureManagerTest, NothingLoadedGivesEmptyAndNoEntry)
{
    AssertCapture asserts;
    CTextureManager* m = CTextureManager::Instance();
    struct { const char* file; bool create, keep; } cases[] = {
        {"truncated.png", false, true}, {"grey.png", true, true}, {"huge_100000.png", true, false},
        {"rgb.png", false, false},  // loaded, then neither uploaded nor kept
    };
    for (const auto& c : cases) {
        EXPECT_FALSE(m->load(png(c.file), c.create, c.keep, false)) << c.file;
        EXPECT_FALSE(m->get(png(c.file))) << c.file;
    }
    EXPECT_EQ(m->getEntryCount(), 0u);
}

// A missing file is reported and loads the placeholder of the art path, cached under its own path.
TEST_F(TextureManagerTest, MissingFileIsCachedUnderItsOwnPath)
{
    const std::string dir = scratchDir("texture-manager-placeholder");
    copyFile(png("pal4.png"), dir + "/missingAsset.png");
    CSystemData::Instance()->AddArtPath(dir);
    DebugCapture debug;
    AssertCapture asserts;
    boost::shared_ptr<CTexture> t = loadRAM("nowhere/hero.png");
    CSystemData::Instance()->ClearPaths();
    ASSERT_TRUE(t);
    EXPECT_TRUE(debug.has(3, "CTexturePNG::LoadPNG() failed to open file: nowhere/hero.png\n"));
    EXPECT_TRUE(asserts.entries().empty());
    EXPECT_EQ(t->imageInfo.palType, PAL_PALETTE4);
    EXPECT_EQ(CTextureManager::Instance()->get("nowhere/hero.png"), t);
}

TEST_F(TextureManagerTest, SharesALiveTextureUntilUnloaded)
{
    CTextureManager* m = CTextureManager::Instance();
    boost::shared_ptr<CTexture> held = loadRAM(png("rgb.png"));
    ASSERT_TRUE(held);
    EXPECT_EQ(loadRAM(png("rgb.png")), held);
    EXPECT_EQ(m->get(png("rgb.png")), held);
    EXPECT_EQ(m->getEntryCount(), 1u);
    const boost::shared_ptr<CTexture> other = loadRAM(png("rgba.png"));
    EXPECT_NE(other, held);
    EXPECT_TRUE(m->unload(png("rgba.png")) && m->unload(png("rgb.png")));
    EXPECT_FALSE(m->get(png("rgb.png")));
    EXPECT_EQ(m->getEntryCount(), 0u);
    EXPECT_TRUE(held->inRAM) << "holders keep their texture";
    boost::shared_ptr<CTexture> fresh = loadRAM(png("rgb.png"));
    EXPECT_NE(fresh, held);

    fresh.reset();
    EXPECT_FALSE(m->unload(png("rgb.png"))) << "expired";
    EXPECT_EQ(m->getEntryCount(), 1u) << "unload leaves an expired entry alone";
    EXPECT_FALSE(m->unload(png("never-loaded.png")));
}

using TextureManagerGLTest = GLTest;

TEST_F(TextureManagerGLTest, FirstLoadsFlagsWin)
{
    boost::shared_ptr<CTexture> a = CTextureManager::Instance()->load(png("pal4.png"), true, false, false);
    ASSERT_TRUE(a);
    EXPECT_NE(a->glTextureId, 0u);
    EXPECT_FALSE(a->inRAM);
    boost::shared_ptr<CTexture> b = CTextureManager::Instance()->load(png("pal4.png"), false, true, true);
    EXPECT_EQ(b, a);
    EXPECT_FALSE(b->inRAM);
}

} // namespace
