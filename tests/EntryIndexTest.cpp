#include "tEntryIndex.h"

#include <boost/make_shared.hpp>
#include <gtest/gtest.h>

namespace {

struct tFakeEntry
{
    boost::shared_ptr<int> element;
    boost::shared_ptr<int> chunk;
};

// Erasing closes the probe runs: every entry still present is found, every
// erased one is not, whatever the order of the erasures and re-insertions.
TEST(EntryIndexTest, FindsWhatRemainsAfterErasures)
{
    // 60000 entries: a table past 65536 values finds homes through the entries.
    const struct { size_t stride, offset, count; } cases[] = {{1, 0, 300}, {2, 1, 300}, {3, 0, 300}, {7, 3, 60000}};
    for (const auto& c : cases) {
        std::vector<tFakeEntry> entries(c.count);
        const boost::shared_ptr<int> shared = boost::make_shared<int>(0);
        tEntryIndex<std::vector<tFakeEntry> > index(entries);
        for (size_t i = 0; i < entries.size(); ++i) {
            // Pairs share an element or a chunk, as copies of an element share chunks.
            entries[i].element = i % 2 ? shared : boost::make_shared<int>(int(i));
            entries[i].chunk = i % 2 == 0 && i % 3 ? shared : boost::make_shared<int>(int(i));
            index.insert(static_cast<uint32_t>(i));
        }
        std::vector<bool> present(entries.size(), true);
        for (size_t i = c.offset; i < entries.size(); i += c.stride) {
            index.erase(entries[i].element.get(), entries[i].chunk.get());
            present[i] = false;
        }
        for (size_t i = 0; i < entries.size(); i += 5)
            if (!present[i]) {
                index.insert(static_cast<uint32_t>(i));
                present[i] = true;
            }
        size_t count = 0;
        for (size_t i = 0; i < entries.size(); ++i) {
            const uint32_t found = index.find(entries[i].element.get(), entries[i].chunk.get());
            EXPECT_EQ(present[i] ? i : size_t(index.NOT_FOUND), found) << "stride " << c.stride << " entry " << i;
            count += present[i];
        }
        EXPECT_EQ(count, index.size());
    }
}

} // namespace
