#include "TestSupport.h"

#include "ActorCompare.h"
#include "CActor2D.h"
#include "CAvatarCostume.h"
#include "DsetCompiler.h"

#include <boost/shared_ptr.hpp>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>

namespace fs = std::filesystem;

namespace {

/// Every example directory that holds actor or costume files, copied into a
/// scratch directory so that the datasets are compiled beside their images.
class ContentEquivalenceTest : public GLTest
{
protected:
    struct tExample
    {
        std::string dir;  // the scratch copy
        std::vector<std::string> actors, costumes;
    };

    static std::vector<tExample> examples()
    {
        std::vector<tExample> all;
        for (const fs::directory_entry& d : fs::directory_iterator(examplesPath(""))) {
            if (!d.is_directory())
                continue;
            tExample e;
            e.dir = scratchDir("content-" + d.path().filename().string());
            for (const fs::directory_entry& f : fs::directory_iterator(d.path())) {
                if (!f.is_regular_file())
                    continue;
                fs::copy_file(f.path(), e.dir + "/" + f.path().filename().string(),
                              fs::copy_options::overwrite_existing);
                if (f.path().extension() != ".json")
                    continue;
                std::string error;
                const std::string copy = e.dir + "/" + f.path().filename().string();
                switch (DsetCompiler::detectKind(f.path().string(), error)) {
                case DsetCompiler::KIND_ACTOR: e.actors.push_back(copy); break;
                case DsetCompiler::KIND_COSTUME: e.costumes.push_back(copy); break;
                default: break;
                }
            }
            if (!e.actors.empty() || !e.costumes.empty())
                all.push_back(e);
        }
        return all;
    }

    static std::string compile(const std::string& json)
    {
        const std::string base = json.substr(0, json.size() - 5) + "-compiled";
        std::string error;
        DsetCompiler::tKind kind;
        EXPECT_TRUE(DsetCompiler::compileFile(json, base, kind, error)) << json << ": " << error;
        return base + ".dsetBin";
    }

    static std::string sameCostume(const AvatarCostume& a, const AvatarCostume& b)
    {
        std::ostringstream why;
        if (a.getLODs().size() != b.getLODs().size())
            return "LOD counts differ";
        for (size_t i = 0; i < a.getLODs().size(); ++i) {
            const tAvatarLOD& x = a.getLODs()[i];
            const tAvatarLOD& y = b.getLODs()[i];
            if (x.size != y.size || x.textureURI != y.textureURI || x.texture != y.texture || !x.texture ||
                x.componentOrder != y.componentOrder)
                return "LOD " + std::to_string(i) + " differs";
            for (const std::string& key : x.componentOrder) {
                const tAvatarComponent& p = x.components.at(key);
                const tAvatarComponent& q = y.components.at(key);
                if (p.name != q.name || p.variations.size() != q.variations.size())
                    return "LOD " + std::to_string(x.size) + " component " + p.name + " differs";
                for (size_t v = 0; v < p.variations.size(); ++v) {
                    const tAvatarVariation& s = p.variations[v];
                    const tAvatarVariation& t = q.variations[v];
                    if (s.name != t.name || s.left != t.left || s.top != t.top || s.right != t.right ||
                        s.bottom != t.bottom || s.regX != t.regX || s.regY != t.regY)
                        return "LOD " + std::to_string(x.size) + " variation " + p.name + "/" + s.name + " differs";
                }
            }
        }
        if (a.getAudio() != b.getAudio())
            return "audio lists differ";
        return "";
    }
};

TEST_F(ContentEquivalenceTest, ExampleActorsAndCostumesLoadTheSameFromJsonAndDataset)
{
    const std::vector<tExample> all = examples();
    ASSERT_FALSE(all.empty());
    for (const tExample& e : all) {
        // Actors made of costume pieces load with the costume of their directory.
        std::unique_ptr<AvatarCostume> costume(new AvatarCostume);
        for (const std::string& json : e.costumes) {
            AvatarCostume fromDset;
            costume->addFromJson(json, 0, 0);
            fromDset.addFromDset(compile(json));
            EXPECT_FALSE(costume->getLODs().empty()) << json;
            EXPECT_EQ(sameCostume(*costume, fromDset), "") << json;
        }
        for (const std::string& json : e.actors) {
            AssertCapture asserts;
            boost::shared_ptr<CActor2D> fromJson(new CActor2D());
            boost::shared_ptr<CActor2D> fromDset(new CActor2D());
            ASSERT_TRUE(fromJson->loadJson(json, costume.get(), 0)) << json;
            ASSERT_TRUE(fromDset->loadDset(compile(json), costume.get(), 0)) << json;
            EXPECT_GT(fromJson->getCelCount(), 0u) << json;
            for (unsigned int c = 0; c < fromJson->getCelCount(); ++c)
                EXPECT_FALSE(fromJson->getCel(c).chunks.empty()) << json << " cel " << c << " shows nothing";
            std::string why;
            EXPECT_TRUE(sameActor(*fromJson, *fromDset, why)) << json << ": " << why;
            EXPECT_TRUE(asserts.messages().empty()) << json << ": " << asserts.messages().front();
        }
    }
}

} // namespace
