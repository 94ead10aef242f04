// Text layout against the length of the text: a line of words as wide as the
// texture allows, wrapped into a forced rectangle, and unwrapped. Both must
// grow linearly (the reported complexity is O(N)); drawing stops at 512
// pixels, so the unwrapped one should hardly grow at all.
#include "CGraphics2D.h"
#include "CText.h"

#include <benchmark/benchmark.h>
#include <boost/shared_ptr.hpp>
#include <climits>

namespace {

Glib::ustring words(long bytes)
{
    std::string s;
    while (static_cast<long>(s.size()) < bytes)
        s += "word\xC3\xA9 ";
    return Glib::ustring(s);
}

void layout(benchmark::State& state, int forcedWidth, int forcedHeight)
{
    CGraphics2D::Instance()->init(tVect2{tFixed(16), tFixed(16)}, tColor{0, 0, 0, 255}, 0, 0);
    {
        boost::shared_ptr<CText> text(new CText(words(state.range(0)), "DejaVu Sans", 12));
        text->forceRectSize(forcedWidth, forcedHeight);
        for (auto _ : state) {
            text->setAlignment(1);
            text->remakeTexture();
        }
    }
    state.SetComplexityN(state.range(0));
    CGraphics2D::Instance()->cleanup();
}

void BM_TextWrappedOneLine(benchmark::State& state) { layout(state, INT_MAX, INT_MAX); }
void BM_TextWrapped(benchmark::State& state) { layout(state, 300, 200); }
void BM_TextUnwrapped(benchmark::State& state) { layout(state, 0, 0); }

} // namespace

BENCHMARK(BM_TextWrappedOneLine)->RangeMultiplier(4)->Range(4 << 10, 256 << 10)->Complexity(benchmark::oN)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_TextWrapped)->RangeMultiplier(4)->Range(4 << 10, 1 << 20)->Complexity()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_TextUnwrapped)->RangeMultiplier(4)->Range(4 << 10, 1 << 20)->Complexity()->Unit(benchmark::kMillisecond);
