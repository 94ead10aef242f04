#ifndef ZEPHRIN2D_SOAK_SOAKSAMPLER_H
#define ZEPHRIN2D_SOAK_SOAKSAMPLER_H

#include <string>
#include <vector>

/// Watches what must stay flat over a long run: resident memory, the draw
/// manager's lists and entries, and the texture cache's entries.
///
/// The counts are looked at every frame. They vary with the cels the actors
/// show, so the warm-up frames set the range they may take; any frame after
/// the warm-up outside that range is a fault. The heap in use and resident
/// memory are sampled now and then; of the samples after the warm-up, the
/// later half may not peak more than a slack above the earlier half.
class SoakSampler
{
public:
    struct tSample
    {
        long frame;
        long residentKiB;
        long heapKiB;   ///< bytes handed out by malloc and not freed
        long drawLists;
        long drawEntries;
        long textureEntries;
        long glErrors;  ///< frames so far whose GL error check reported
    };

    explicit SoakSampler(long warmupFrames) : mWarmup(warmupFrames) {}

    /// Looks at the counts after frame (every frame).
    void observe(long frame);
    /// Records a sample after frame.
    void sample(long frame, long glErrors);
    const std::vector<tSample>& samples() const { return mSamples; }
    bool writeCsv(const std::string& path) const;

    /// What did not stay flat, empty when everything did (the slacks: the
    /// growth of the heap and of resident memory allowed after the warm-up).
    std::vector<std::string> check(long heapSlackKiB, long residentSlackKiB) const;

    static long residentKiB();
    static long heapKiB();

private:
    enum { LISTS, ENTRIES, TEXTURES, KINDS };
    void count(long values[KINDS]) const;

    long mWarmup;
    bool mSeen = false;
    long mLow[KINDS] = {0, 0, 0};
    long mHigh[KINDS] = {0, 0, 0};
    std::string mOutOfRange;
    std::vector<tSample> mSamples;
};

#endif
