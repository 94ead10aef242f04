// Inputs that once made the library fail, kept in tests/data/fuzz-regressions
// and named after the fuzz target that found them. Each must now load as bad
// input does: reported, with its fallback, without a crash or a runaway.
#include "TestSupport.h"

#include "CTexturePNG.h"

#include <dirent.h>
#include <sys/resource.h>

#include <algorithm>
#include <functional>
#include <map>

namespace {

long peakResidentKiB()
{
    rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

std::vector<std::string> regressionFiles()
{
    std::vector<std::string> files;
    const std::string dir = testDataPath("fuzz-regressions");
    if (DIR* d = opendir(dir.c_str())) {
        while (dirent* e = readdir(d))
            if (e->d_name[0] != '.')
                files.push_back(e->d_name);
        closedir(d);
    }
    std::sort(files.begin(), files.end());
    return files;
}

// A corrupt PNG leaves no RAM image and costs no more memory than a real image would.
void loadPNG(const std::string& path)
{
    const long before = peakResidentKiB();
    for (bool expand : {false, true}) {
        AssertCapture asserts;
        CTexturePNG texture(path, false, true, expand);
        EXPECT_FALSE(texture.inRAM) << path;
        EXPECT_FALSE(asserts.entries().empty()) << path;
    }
    EXPECT_LT(peakResidentKiB() - before, 64 * 1024) << path;
}

const std::map<std::string, std::function<void(const std::string&)> > kLoaders = {
    {"png-", loadPNG},
};

} // namespace

TEST(FuzzRegression, EveryInputLoadsAsBadInput)
{
    const std::vector<std::string> files = regressionFiles();
    EXPECT_FALSE(files.empty());
    for (const std::string& name : files) {
        SCOPED_TRACE(name);
        const auto loader = std::find_if(kLoaders.begin(), kLoaders.end(), [&](const auto& entry) {
            return name.compare(0, entry.first.size(), entry.first) == 0;
        });
        if (loader == kLoaders.end()) {
            ADD_FAILURE() << "no loader for this name: start it with the fuzz target's prefix";
            continue;
        }
        loader->second(testDataPath("fuzz-regressions/" + name));
    }
}
