#ifndef ZEPHRIN2D_PLATFORM_DEBUGMPI_H
#define ZEPHRIN2D_PLATFORM_DEBUGMPI_H

#include <functional>
#include <string>

namespace Tadwick {
namespace Vell {

/// Levelled debug output.
///
/// A message is printed on standard error when its level is at or below
/// the current debug level (0 silent ... 5 most verbose). The starting level
/// comes from ZEPHRIN2D_DEBUG_LEVEL and defaults to 1, so a program that
/// works says nothing: problems are level 1, "CGraphics2D::init()" and
/// "CGraphics2D::cleanup()" level 2. The level is shared by every channel
/// of the process.
class CDebugMPI
{
public:
    /// Receives every message, whatever the current level, in place of
    /// standard error. Tests install one to capture output.
    typedef std::function<void(int module, int level, const std::string& text)> tHandler;

    explicit CDebugMPI(int module = 0);

    void DebugOut(int level, const char* format, ...) const
        __attribute__((format(printf, 3, 4)));

    void SetDebugLevel(int level);
    int GetDebugLevel() const;
    /// Sets the level unless ZEPHRIN2D_DEBUG_LEVEL gives one.
    static void SetDefaultDebugLevel(int level);
    int GetModule() const { return mModule; }

    /// Installs a handler (an empty one restores standard error); returns the previous one.
    static tHandler SetHandler(tHandler handler);
    /// Installs a listener told of every message, whatever the current level,
    /// before it is printed or handled; an empty one removes it. Returns the previous one.
    static tHandler SetListener(tHandler listener);

private:
    int mModule;
};

} // namespace Vell
} // namespace Tadwick

#endif
