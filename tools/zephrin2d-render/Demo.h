#ifndef ZEPHRIN2D_RENDER_DEMO_H
#define ZEPHRIN2D_RENDER_DEMO_H

#include "tVect.h"

// Demos make their elements with boost::make_shared.
#include <boost/make_shared.hpp>
#include <memory>
#include <string>
#include <vector>

/// What the command line tells a demo.
struct DemoOptions
{
    int width = 320;
    int height = 240;
    int frames = 1;
    int dtMs = 33;
    /// 0 when not given: the demo picks its own default.
    int count = 0;
};

/// A scene the render tool can draw.
///
/// The tool makes the graphics context, calls build() once, then for each
/// frame clears, calls frame() and swaps. Constructors must not touch GL:
/// --help makes every demo to print its summary.
struct Demo
{
    virtual ~Demo();
    virtual const char* summary() const { return ""; }
    /// Asked before the graphics context exists.
    virtual tColor clearColor() const { return tColor{0, 0, 0, 255}; }
    virtual void build(const DemoOptions& options) = 0;
    /// After build(): whether the demo has nothing to show (the tool then exits with 1).
    virtual bool failed() const { return false; }
    /// Draws frame index, dtMs milliseconds after the previous one: updates
    /// actors, calls CDrawManager::Instance()->drawAll(), draws shapes.
    virtual void frame(int index, int dtMs) = 0;
};

namespace DemoRegistry {

typedef std::unique_ptr<Demo> (*tFactory)();

/// Returns true so that a registration can initialise a static.
bool add(const char* name, tFactory factory);
/// Empty for an unknown name.
std::unique_ptr<Demo> create(const std::string& name);
/// Sorted.
std::vector<std::string> names();

} // namespace DemoRegistry

/// The example content's folder, with its trailing "/": share/zephrin2d/examples
/// beside an installed tool, else the source tree's examples (a tool in the build tree).
std::string examplesDir();

/// Adds a demo by adding its source file only; write it once, at namespace scope:
///     Z2D_REGISTER_DEMO("shapes", DemoShapes);
#define Z2D_REGISTER_DEMO(NAME, CLASS)                                                      \
    [[maybe_unused]] static const bool z2dDemoRegistered_##CLASS =                            \
        DemoRegistry::add(NAME, []() -> std::unique_ptr<Demo> { return std::unique_ptr<Demo>(new CLASS()); })

#endif
