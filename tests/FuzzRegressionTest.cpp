// Inputs that once made the library fail, kept in tests/data/fuzz-regressions
// and named after the fuzz target that found them (the file formats are the
// targets', see fuzz/). Each must now load as bad input does: reported, with
// its fallback, without a crash, undefined behaviour or a runaway.
#include "TestSupport.h"

#include "CActor2D.h"
#include "CAvatarCostume.h"
#include "CDsetReader.h"
#include "CSceneLoaderDset.h"
#include "CTexturePNG.h"
#include "Importer.h"

#include <dirent.h>
#include <sys/resource.h>

#include <algorithm>
#include <fstream>
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
        EXPECT_FALSE(texture.inRAM);
        EXPECT_FALSE(asserts.entries().empty());
    }
    EXPECT_LT(peakResidentKiB() - before, 64 * 1024);
}

// Writes the dset target's input (a 16-bit count of relink entries, the
// entries, the dataset) as a dataset and its relink file; returns the dataset's path.
std::string writeDataset(const std::string& path)
{
    const std::string bytes = readFile(path);
    const size_t count = bytes.size() < 2 ? 0 : size_t(uint8_t(bytes[0]) | uint8_t(bytes[1]) << 8);
    const std::string rest = bytes.size() < 2 ? std::string() : bytes.substr(2);
    const size_t relink = std::min(rest.size(), count * 4);
    const std::string base = scratchDir("fuzz-regressions") + "/input";
    std::ofstream(base + ".relinkBin", std::ios::binary) << rest.substr(0, relink);
    std::ofstream(base + ".dsetBin", std::ios::binary) << rest.substr(relink);
    return base + ".dsetBin";
}

void loadDataset(const std::string& path)
{
    const std::string dataset = writeDataset(path);
    AssertCapture asserts;
    CActor2D actor;
    EXPECT_FALSE(actor.loadDset(dataset, 0, 0));
    EXPECT_EQ(0u, actor.getCelCount());
    AvatarCostume costume;
    costume.addFromDset(dataset);
    EXPECT_TRUE(costume.getLODs().empty());
    EXPECT_FALSE(asserts.entries().empty());
}

// An importer input is refused with a message, in little memory.
void import(const std::string& path)
{
    const long before = peakResidentKiB();
    tImportOptions options;
    options.input = path;
    options.outDir = scratchDir("fuzz-regressions") + "/import";
    Diagnostics diag;
    std::vector<std::string> report;
    EXPECT_EQ(runImport(options, diag, report), 1);
    EXPECT_FALSE(diag.lines().empty());
    EXPECT_LT(peakResidentKiB() - before, 64 * 1024);
}

const std::map<std::string, std::function<void(const std::string&)> > kLoaders = {
    {"png-", loadPNG},
    {"dset-", loadDataset},
    {"import-", import},
};

using FuzzRegression = GLTest;

} // namespace

TEST_F(FuzzRegression, EveryInputLoadsAsBadInput)
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

