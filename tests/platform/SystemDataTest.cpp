#include <SystemData.h>

#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// Three art directories, each holding some of the files, so that the order of
// the search decides which one is found.
class SystemData : public ::testing::Test
{
protected:
    void SetUp() override
    {
        root = std::string(Z2D_BINARY_DIR) + "/systemdata-" + std::to_string(getpid());
        for (const char* d : {"", "/host", "/env1", "/env2", "/audio", "/host/sub"})
            mkdir((root + d).c_str(), 0755);
        for (const char* f : {"/host/both.png", "/env1/both.png", "/env1/env.png", "/env2/env.png", "/env2/late.png",
                              "/env2/missingAsset.png", "/host/sub/deep.png", "/audio/clip.ogg", "/env1/clip.ogg",
                              "/env1/artside.ogg"})
            touch(f);
        setenv("ZEPHRIN2D_ART_PATH", (root + "/env1::" + root + "/env2/").c_str(), 1);
        setenv("ZEPHRIN2D_AUDIO_PATH", (root + "/audio").c_str(), 1);
        CSystemData::Destroy();
        data = CSystemData::Instance();
        data->AddArtPath(root + "/host");
    }
    void TearDown() override
    {
        CSystemData::Destroy();
        unsetenv("ZEPHRIN2D_ART_PATH");
        unsetenv("ZEPHRIN2D_AUDIO_PATH");
        std::string command = "rm -rf '" + root + "'";
        EXPECT_EQ(system(command.c_str()), 0);
    }
    void touch(const char* name)
    {
        FILE* f = fopen((root + name).c_str(), "w");
        ASSERT_TRUE(f);
        fclose(f);
    }
    std::string root;
    CSystemData* data = 0;
};

TEST_F(SystemData, SearchOrder)
{
    struct Case { std::string name; std::string expected; };
    const Case cases[] = {
        {root + "/env2/late.png", root + "/env2/late.png"},
        {root + "/host/late.png", ""}, // an absolute path is not searched
        {"both.png", root + "/host/both.png"},
        {"env.png", root + "/env1/env.png"},
        {"late.png", root + "/env2/late.png"},
        {"sub/deep.png", root + "/host/sub/deep.png"},
        {"missingAsset.png", root + "/env2/missingAsset.png"},
        {"nowhere.png", ""},
        {"", ""},
        {"sub", ""},
    };
    for (const Case& c : cases)
        EXPECT_EQ(data->FindArt(c.name).raw(), c.expected) << c.name;
}

TEST_F(SystemData, AudioLooksInAudioDirectoriesThenArt)
{
    EXPECT_EQ(data->FindAudio("clip.ogg").raw(), root + "/audio/clip.ogg");
    EXPECT_EQ(data->FindAudio("artside.ogg").raw(), root + "/env1/artside.ogg");
    data->AddAudioPath(root + "/env1");
    EXPECT_EQ(data->FindAudio("clip.ogg").raw(), root + "/env1/clip.ogg");
}

TEST_F(SystemData, ClearPathsKeepsEnvironmentAndLibrary)
{
    data->ClearPaths();
    EXPECT_EQ(data->FindArt("both.png").raw(), root + "/env1/both.png");
    CSystemData::Destroy();
    unsetenv("ZEPHRIN2D_ART_PATH");
    data = CSystemData::Instance();
    EXPECT_EQ(data->FindArt("both.png").raw(), "");
    EXPECT_EQ(data->FindArt("missingAsset.png").raw(), data->GetLibraryArtDirectory() + "/missingAsset.png");
}

} // namespace
