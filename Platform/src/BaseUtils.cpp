#include "BaseUtils.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace BaseUtils {

namespace {

tAssertHandler& handler()
{
    static tAssertHandler sHandler;
    return sHandler;
}

tAssertHandler& listener()
{
    static tAssertHandler sListener;
    return sListener;
}

std::string format(const char* fmt, va_list args)
{
    va_list copy;
    va_copy(copy, args);
    char small[512];
    int n = vsnprintf(small, sizeof small, fmt, copy);
    va_end(copy);
    if (n < 0)
        return std::string();
    if (static_cast<size_t>(n) < sizeof small)
        return std::string(small, n);
    std::vector<char> big(n + 1);
    vsnprintf(big.data(), big.size(), fmt, args);
    return std::string(big.data(), n);
}

} // namespace

void Assert(bool condition, const char* file, int line, const char* fmt, ...)
{
    if (condition)
        return;
    va_list args;
    va_start(args, fmt);
    std::string message = format(fmt ? fmt : "", args);
    va_end(args);
    if (listener())
        listener()(file ? file : "", line, message);
    if (handler()) {
        handler()(file ? file : "", line, message);
        return;
    }
    const char* newline = (!message.empty() && message.back() == '\n') ? "" : "\n";
    fprintf(stderr, "ASSERT %s:%d: %s%s", file ? file : "?", line, message.c_str(), newline);
    const char* mode = getenv("ZEPHRIN2D_ASSERT");
    if (mode && strcmp(mode, "abort") == 0)
        abort();
}

tAssertHandler SetAssertHandler(tAssertHandler newHandler)
{
    tAssertHandler old = handler();
    handler() = newHandler;
    return old;
}

tAssertHandler SetAssertListener(tAssertHandler newListener)
{
    tAssertHandler old = listener();
    listener() = newListener;
    return old;
}

} // namespace BaseUtils
