#include "SoakSampler.h"

#include "CDrawManager.h"
#include "CPointSpriteDrawList.h"
#include "CTextureManager.h"
#include "CTexturedDrawList.h"

#include <algorithm>
#include <cstdio>
#include <malloc.h>
#include <unistd.h>

namespace {

long entriesOf(const boost::shared_ptr<CDrawList>& list)
{
    if (const CTexturedDrawList* t = dynamic_cast<const CTexturedDrawList*>(list.get()))
        return static_cast<long>(t->getEntryCount());
    if (const CPointSpriteDrawList* p = dynamic_cast<const CPointSpriteDrawList*>(list.get()))
        return static_cast<long>(p->getEntryCount());
    return 0;
}

} // namespace

long SoakSampler::residentKiB()
{
    long pages = 0, resident = 0;
    FILE* f = fopen("/proc/self/statm", "r");
    if (!f)
        return -1;
    if (fscanf(f, "%ld %ld", &pages, &resident) != 2)
        resident = -1;
    fclose(f);
    return resident < 0 ? -1 : resident * (sysconf(_SC_PAGESIZE) / 1024);
}

long SoakSampler::heapKiB()
{
    const struct mallinfo2 m = mallinfo2();
    return static_cast<long>((m.uordblks + m.hblkhd) / 1024);
}

void SoakSampler::count(long values[KINDS]) const
{
    values[LISTS] = values[ENTRIES] = 0;
    CDrawManager* manager = CDrawManager::Instance();
    for (const auto* lists : {&manager->getOpaqueLists(), &manager->getTranslucentLists()}) {
        for (const auto& list : *lists) {
            ++values[LISTS];
            values[ENTRIES] += entriesOf(list);
        }
    }
    values[TEXTURES] = static_cast<long>(CTextureManager::Instance()->getEntryCount());
}

void SoakSampler::observe(long frame)
{
    long v[KINDS];
    count(v);
    if (frame < mWarmup) {
        for (int k = 0; k < KINDS; ++k) {
            mLow[k] = mSeen && mLow[k] < v[k] ? mLow[k] : v[k];
            mHigh[k] = mSeen && mHigh[k] > v[k] ? mHigh[k] : v[k];
        }
        mSeen = true;
        return;
    }
    if (!mOutOfRange.empty())
        return;
    for (int k = 0; k < KINDS; ++k) {
        if (v[k] < mLow[k] || v[k] > mHigh[k]) {
            char line[256];
            snprintf(line, sizeof line,
                     "frame %ld: %ld lists, %ld entries, %ld textures; the warm-up saw %ld-%ld, %ld-%ld, %ld-%ld", frame,
                     v[LISTS], v[ENTRIES], v[TEXTURES], mLow[LISTS], mHigh[LISTS], mLow[ENTRIES], mHigh[ENTRIES],
                     mLow[TEXTURES], mHigh[TEXTURES]);
            mOutOfRange = line;
            return;
        }
    }
}

void SoakSampler::sample(long frame, long glErrors)
{
    long v[KINDS];
    count(v);
    mSamples.push_back(tSample{frame, residentKiB(), heapKiB(), v[LISTS], v[ENTRIES], v[TEXTURES], glErrors});
}

bool SoakSampler::writeCsv(const std::string& path) const
{
    FILE* f = fopen(path.c_str(), "w");
    if (!f)
        return false;
    fprintf(f, "frame,resident_kib,heap_kib,draw_lists,draw_entries,texture_entries,gl_errors\n");
    for (const tSample& s : mSamples)
        fprintf(f, "%ld,%ld,%ld,%ld,%ld,%ld,%ld\n", s.frame, s.residentKiB, s.heapKiB, s.drawLists, s.drawEntries,
                s.textureEntries, s.glErrors);
    return fclose(f) == 0;
}

std::vector<std::string> SoakSampler::check(long heapSlackKiB, long residentSlackKiB) const
{
    std::vector<std::string> problems;
    char line[256];
    if (!mSamples.empty() && mSamples.back().glErrors) {
        snprintf(line, sizeof line, "%ld frame(s) with GL errors", mSamples.back().glErrors);
        problems.push_back(line);
    }
    // Memory breathes: the GL driver releases buffer storage in batches, so
    // the heap rises for dozens of frames and falls back, and resident memory
    // follows the allocators' trimming. Peaks are what repeats: each is
    // compared between the two halves of the samples after the warm-up.
    std::vector<const tSample*> after;
    for (const tSample& s : mSamples)
        if (s.frame >= mWarmup)
            after.push_back(&s);
    const size_t half = after.size() / 2;
    const struct
    {
        const char* what;
        long tSample::*field;
        long slack;
    } kinds[] = {{"heap in use", &tSample::heapKiB, heapSlackKiB},
                 {"resident memory", &tSample::residentKiB, residentSlackKiB}};
    for (const auto& kind : kinds) {
        long earlier = 0, later = 0, laterFrame = 0;
        for (size_t i = 0; i < after.size(); ++i) {
            const long v = after[i]->*kind.field;
            const bool firstOfHalf = i == 0 || i == half;
            if (i < half) {
                if (firstOfHalf || v > earlier)
                    earlier = v;
            } else if (firstOfHalf || v > later) {
                later = v;
                laterFrame = after[i]->frame;
            }
        }
        if (half > 0 && later > earlier + kind.slack) {
            snprintf(line, sizeof line, "%s peaks at %ld KiB (frame %ld), %ld KiB above the earlier half", kind.what, later,
                     laterFrame, later - earlier);
            problems.push_back(line);
        }
    }
    if (!mOutOfRange.empty())
        problems.push_back(mOutOfRange);
    if (half == 0 || !mSeen)
        problems.push_back("too few frames: no warm-up, or fewer than two samples after it");
    return problems;
}
