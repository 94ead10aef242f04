#ifndef ZEPHRIN2D_BENCH_PEERGLCOUNT_H
#define ZEPHRIN2D_BENCH_PEERGLCOUNT_H

// Counts the GL calls of a peer that loads its GL entry points at run time
// (SDL2 asks dlsym and eglGetProcAddress for them, so the link-time
// recorder never sees them). The executable defines dlsym; for the handful
// of names below, a lookup through a library handle or eglGetProcAddress
// returns a counting wrapper around the real function. The library's own
// GL calls are linked directly and never pass through here.
namespace PeerGLCount {

struct tCounters
{
    unsigned long drawCalls;      ///< glDrawArrays + glDrawElements
    unsigned long uploadBytes;    ///< glBufferData + glBufferSubData bytes
    unsigned long wrappedLookups; ///< lookups answered with a wrapper (0: nothing could be counted)
};

tCounters counters();
void resetCounters();

} // namespace PeerGLCount

#endif
