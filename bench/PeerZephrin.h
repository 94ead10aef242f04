#ifndef ZEPHRIN2D_BENCH_PEERZEPHRIN_H
#define ZEPHRIN2D_BENCH_PEERZEPHRIN_H

#include "PeerScenes.h"

#include <boost/shared_ptr.hpp>
#include <stdint.h>
#include <vector>

class CActor2D;
class CBillboard;
class CGraphicElement;

namespace PeerScenes {

/// A scene built from Zephrin2D elements in a fresh graphics context of the
/// scene's size: billboards (or actors whose cels are billboards).
/// managed: registered with the draw manager and drawn by drawAll();
/// otherwise drawn one by one with each element's immediate draw.
class ZephrinScene
{
public:
    /// colors: element colours on for all (always for a scene with tints).
    ZephrinScene(const tScene& scene, bool managed, bool colors = false);
    ~ZephrinScene();

    /// Moves the moving sprites and advances the actors by one cel.
    void update(int frame);
    /// Clears and draws the frame, up to the last GL call before the swap.
    void draw();
    /// glFinish and the swap: outside the timed region.
    void finish();
    /// The last frame's pixels, RGBA rows top first.
    std::vector<uint8_t> pixels();

private:
    void drawImmediate();

    tScene mScene;
    bool mManaged;
    std::vector<boost::shared_ptr<CBillboard> > mBillboards;
    std::vector<boost::shared_ptr<CActor2D> > mActors;
    /// Per actor and cel: the billboard whose chunk the cel holds (immediate draws).
    std::vector<boost::shared_ptr<CBillboard> > mCelBillboards;
    std::vector<int> mPainters;
    std::vector<int> mMoving;   ///< the billboards that move
    std::vector<int> mTinted;   ///< the billboards that fade
};

} // namespace PeerScenes

#endif
