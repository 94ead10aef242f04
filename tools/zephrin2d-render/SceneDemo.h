#ifndef ZEPHRIN2D_RENDER_SCENEDEMO_H
#define ZEPHRIN2D_RENDER_SCENEDEMO_H

#include "Demo.h"
#include "SceneFiles.h"

#include <cstdio>

/// A scene file drawn like a demo: its actors play, dt milliseconds a frame.
class SceneDemo : public Demo
{
public:
    explicit SceneDemo(const SceneOptions& options) : mFiles(options) {}

    void build(const DemoOptions&) override
    {
        std::string error;
        mFailed = !mFiles.load(error);
        if (mFailed)
            std::fprintf(stderr, "zephrin2d-render: %s\n", error.c_str());
    }

    bool failed() const override { return mFailed; }

    void frame(int index, int dtMs) override
    {
        if (index > 0)
            mFiles.step(dtMs);
        mFiles.draw();
    }

private:
    SceneFiles mFiles;
    bool mFailed = false;
};

#endif
