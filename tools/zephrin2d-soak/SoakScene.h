#ifndef ZEPHRIN2D_SOAK_SOAKSCENE_H
#define ZEPHRIN2D_SOAK_SOAKSCENE_H

#include "DemoScene.h"

#include "CBillboard.h"

#include <boost/shared_ptr.hpp>
#include <string>
#include <vector>

/// What the soak run draws: the demo scene, plus a few hundred billboards
/// (a third of them moving every frame), actors built cel by cel in code that
/// loop forever, and churn: every CYCLE frames a billboard of an image that
/// nothing else shows and a text are made, drawn for half a cycle and
/// dropped, so that textures and lists are created and released all along;
/// the draw manager is then shrunk, as a host that drops elements must do.
class SoakScene
{
public:
    enum { CYCLE = 100, BILLBOARDS = 300, ACTORS = 4 };

    /// examples is the examples directory; the graphics context must be up.
    explicit SoakScene(const std::string& examples);
    ~SoakScene();

    /// Advances everything by one frame of ms milliseconds (frame counts from 0).
    void step(long frame, int ms);

private:
    SoakScene(const SoakScene&);
    SoakScene& operator=(const SoakScene&);
    boost::shared_ptr<CActor2D> makeActor(int index);

    std::string mArt;
    tDemoScene mDemo;
    std::vector<boost::shared_ptr<CBillboard> > mBillboards;
    std::vector<boost::shared_ptr<CActor2D> > mActors;
    boost::shared_ptr<CBillboard> mTransient;
    boost::shared_ptr<CText> mTransientText;
};

#endif
