#include "ErrorMessages.h"

#include <Dataset.h>

#include <cstdio>
#include <cstring>
#include <gtest/gtest.h>
#include <unistd.h>
#include <vector>

namespace {

typedef std::vector<uint32_t> Words;

// A small dataset: header, a root record {count, pointer to list, pointer to
// name, null pointer}, a list of two words, and a string.
Words goodDataset()
{
    return Words{CDataset::kMagic, CDataset::kVersion, 12,
                 2, 28, 36, 0,             // root record at 12
                 0x11111111, 0x22222222,   // list at 28
                 0x00696821};              // "!hi" at 36
}
Words goodRelink() { return Words{16, 20, 24}; }

struct Files
{
    // Per process: ctest may run the tests of this file in parallel.
    std::string stem = std::string(Z2D_BINARY_DIR) + "/dataset-test-" + std::to_string(getpid());
    std::string dset = stem + ".dsetBin";
    std::string relink = stem + ".relinkBin";
    ~Files()
    {
        unlink(dset.c_str());
        unlink(relink.c_str());
    }
    static void write(const std::string& path, const void* bytes, size_t n)
    {
        FILE* f = fopen(path.c_str(), "wb");
        ASSERT_TRUE(f);
        if (n) {
            ASSERT_EQ(fwrite(bytes, 1, n, f), n);
        }
        fclose(f);
    }
    void write(const Words& data, const Words& relinkWords)
    {
        write(dset, data.data(), data.size() * 4);
        write(relink, relinkWords.data(), relinkWords.size() * 4);
    }
};

TEST(Dataset, FixesPointersBelow4GiB)
{
    Files files;
    files.write(goodDataset(), goodRelink());
    boost::shared_ptr<CDataset> d = LoadDataset(files.dset.c_str(), files.relink.c_str());
    ASSERT_TRUE(d);
    ASSERT_TRUE(d->base);
    EXPECT_EQ(d->size, 40u);
    EXPECT_LE(uint64_t(uintptr_t(d->base)) + d->size, uint64_t(1) << 32);
    const uint8_t* base = static_cast<const uint8_t*>(d->base);
    EXPECT_EQ(d->data, base + 12);
    const uint32_t* root = static_cast<const uint32_t*>(d->data);
    EXPECT_EQ(root[0], 2u);
    EXPECT_EQ(root[1], uint32_t(uintptr_t(base + 28)));
    EXPECT_EQ(root[2], uint32_t(uintptr_t(base + 36)));
    EXPECT_EQ(root[3], 0u) << "a null pointer stays null";
    const uint32_t* list = reinterpret_cast<const uint32_t*>(uintptr_t(root[1]));
    EXPECT_EQ(list[1], 0x22222222u);
    EXPECT_STREQ(reinterpret_cast<const char*>(uintptr_t(root[2])), "!hi");

    const struct { const uint8_t* at; size_t size; bool inside; } spans[] = {
        {base, 40, true}, {base + 36, 4, true}, {base + 37, 4, false}, {base - 1, 1, false}, {base, 41, false},
        {base + 8, size_t(-1), false}};
    for (const auto& s : spans)
        EXPECT_EQ(d->contains(s.at, s.size), s.inside) << s.at - base << " + " << s.size;

    files.write(Words{CDataset::kMagic, CDataset::kVersion, 12, 12}, Words{12});
    EXPECT_TRUE(LoadDataset(files.dset.c_str(), files.relink.c_str())) << "the last word may be a pointer";
}

std::string bytes(const Words& w) { return std::string(reinterpret_cast<const char*>(w.data()), w.size() * 4); }

struct BrokenCase
{
    const char* what;
    std::string data;
    const std::string* relink;  // null: no relink file at all
    const char* message;
};

TEST(Dataset, BrokenDatasetsAreRefusedWithAMessage)
{
    const Words d = goodDataset();
    auto with = [](Words w, size_t i, uint32_t v) { w[i] = v; return bytes(w); };
    const std::string good = bytes(d), relink = bytes(goodRelink());
    const std::string outside = bytes({16, 40}), straddle = bytes({38}), huge = bytes({0xFFFFFFFEu});
    const std::string ragged = relink.substr(0, 6), unaligned = bytes({17}), header = bytes({8});
    const std::string twice = bytes({16, 20, 16});
    const BrokenCase cases[] = {
        {"empty dataset", "", &relink, "0 bytes, shorter than the 12-byte header"},
        {"truncated header", good.substr(0, 8), &relink, "shorter than the 12-byte header"},
        {"header only", good.substr(0, 12), &relink, "root offset 12 outside"},
        {"bad magic", with(d, 0, 0x46464952), &relink, "bad magic"},
        {"bad version", with(d, 1, 2), &relink, "version 2"},
        {"root outside", with(d, 2, 40), &relink, "root offset 40"},
        {"root in header", with(d, 2, 4), &relink, "root offset 4"},
        {"missing relink", good, 0, "could not read the relink file"},
        {"ragged relink", good, &ragged, "not a whole number"},
        {"relink outside", good, &outside, "relink offset 40 outside"},
        {"relink straddles the end", good, &straddle, "relink offset 38 outside"},
        {"relink huge", good, &huge, "relink offset 4294967294 outside"},
        {"relink unaligned", good, &unaligned, "relink offset 17 not 4-byte aligned"},
        {"relink into header", good, &header, "relink offset 8 inside the header"},
        {"pointer outside", with(d, 4, 40), &relink, "holds 40, outside"},
        {"pointer huge", with(d, 5, 0x80000000u), &relink, "outside the dataset"},
        {"relink twice", good, &twice, "listed more than once"},
    };
    for (const BrokenCase& c : cases) {
        SCOPED_TRACE(c.what);
        Files files;
        Files::write(files.dset, c.data.data(), c.data.size());
        if (c.relink)
            Files::write(files.relink, c.relink->data(), c.relink->size());
        ErrorMessages messages;
        EXPECT_FALSE(LoadDataset(files.dset.c_str(), files.relink.c_str()));
        EXPECT_NE(messages.text.find(c.message), std::string::npos) << messages.text;
        EXPECT_EQ(messages.text.find("LoadDataset: "), 0u) << messages.text;
    }
    // A 3 GiB sparse file is refused by its size, before anything is read.
    Files sparse;
    sparse.write(d, goodRelink());
    ASSERT_EQ(truncate(sparse.dset.c_str(), 3LL << 30), 0);
    {
        ErrorMessages messages;
        EXPECT_FALSE(LoadDataset(sparse.dset.c_str(), sparse.relink.c_str()));
        EXPECT_NE(messages.text.find("larger than the 256 MiB a dataset may hold"), std::string::npos) << messages.text;
    }
    ErrorMessages messages;
    EXPECT_FALSE(LoadDataset("/nonexistent/scene.dsetBin", "/nonexistent/scene.relinkBin"));
    EXPECT_EQ(messages.text, "LoadDataset: /nonexistent/scene.dsetBin: could not read the dataset\n");
    EXPECT_FALSE(LoadDataset(Z2D_BINARY_DIR, Z2D_BINARY_DIR));
    EXPECT_FALSE(LoadDataset(0, 0));
}

} // namespace
