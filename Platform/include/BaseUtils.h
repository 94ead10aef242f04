#ifndef ZEPHRIN2D_PLATFORM_BASEUTILS_H
#define ZEPHRIN2D_PLATFORM_BASEUTILS_H

#include <functional>
#include <string>

namespace BaseUtils {

/// Reports a failed condition, then returns so that the caller can take its
/// fallback. Prints "ASSERT <file>:<line>: <message>" on standard error;
/// with ZEPHRIN2D_ASSERT=abort in the environment it aborts instead.
void Assert(bool condition, const char* file, int line, const char* format, ...)
    __attribute__((format(printf, 4, 5)));

/// Receives each failed assertion (the message exactly as formatted) in place
/// of standard error. An empty handler restores the default. Returns the previous one.
typedef std::function<void(const char* file, int line, const std::string& message)> tAssertHandler;
tAssertHandler SetAssertHandler(tAssertHandler handler);

/// Also told of each failed assertion, before the handler or standard error,
/// so that a host can count problems without changing where reports go.
/// An empty listener removes it. Returns the previous one.
tAssertHandler SetAssertListener(tAssertHandler listener);

} // namespace BaseUtils

#endif
