#include "DebugMPI.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace Tadwick {
namespace Vell {

namespace {

int clampLevel(int level) { return level < 0 ? 0 : level > 5 ? 5 : level; }

bool levelFromEnvironment(int& level)
{
    const char* env = getenv("ZEPHRIN2D_DEBUG_LEVEL");
    if (!env || !*env)
        return false;
    level = clampLevel(atoi(env));
    return true;
}

int initialLevel()
{
    int level = 1;
    levelFromEnvironment(level);
    return level;
}

int& level()
{
    static int sLevel = initialLevel();
    return sLevel;
}

CDebugMPI::tHandler& handler()
{
    static CDebugMPI::tHandler sHandler;
    return sHandler;
}

CDebugMPI::tHandler& listener()
{
    static CDebugMPI::tHandler sListener;
    return sListener;
}

} // namespace

CDebugMPI::CDebugMPI(int module) : mModule(module) {}

void CDebugMPI::DebugOut(int msgLevel, const char* format, ...) const
{
    if (!handler() && !listener() && msgLevel > level())
        return;
    char small[512];
    va_list args;
    va_start(args, format);
    int n = vsnprintf(small, sizeof small, format, args);
    va_end(args);
    if (n < 0)
        return;
    std::string text;
    if (static_cast<size_t>(n) < sizeof small) {
        text.assign(small, n);
    } else {
        std::vector<char> big(n + 1);
        va_start(args, format);
        vsnprintf(big.data(), big.size(), format, args);
        va_end(args);
        text.assign(big.data(), n);
    }
    if (listener())
        listener()(mModule, msgLevel, text);
    if (handler()) {
        handler()(mModule, msgLevel, text);
        return;
    }
    if (msgLevel > level())
        return;
    fputs(text.c_str(), stderr);
}

void CDebugMPI::SetDebugLevel(int newLevel) { level() = newLevel; }

void CDebugMPI::SetDefaultDebugLevel(int newLevel)
{
    int fromEnvironment;
    if (!levelFromEnvironment(fromEnvironment))
        level() = clampLevel(newLevel);
}

int CDebugMPI::GetDebugLevel() const { return level(); }

CDebugMPI::tHandler CDebugMPI::SetHandler(tHandler newHandler)
{
    tHandler old = handler();
    handler() = newHandler;
    return old;
}

CDebugMPI::tHandler CDebugMPI::SetListener(tHandler newListener)
{
    tHandler old = listener();
    listener() = newListener;
    return old;
}

} // namespace Vell
} // namespace Tadwick
