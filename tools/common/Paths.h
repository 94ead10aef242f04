#ifndef ZEPHRIN2D_TOOLS_PATHS_H
#define ZEPHRIN2D_TOOLS_PATHS_H

#include <string>

/// Path helpers of the tools. Paths use '/'; a name starting with '/' is absolute.

/// The directory part of a path, with its trailing "/" ("" when there is none).
std::string directoryOf(const std::string& path);
/// The last part of a path.
std::string fileNameOf(const std::string& path);
/// The file name without directory and extension.
std::string stemOf(const std::string& path);
/// name behind directory dir ("" for none), unless name is absolute.
std::string resolvePath(const std::string& dir, const std::string& name);
bool endsWith(const std::string& text, const std::string& tail);

/// The largest text file the tools read: no content a handheld needs comes near it.
const long long kMaxTextFileBytes = 64ll << 20;

/// Reads a whole file whose size is checked first; false with error when it
/// cannot be read or is larger than limit.
bool readTextFile(const std::string& path, std::string& text, std::string& error,
                  long long limit = kMaxTextFileBytes);
bool readTextFile(const std::string& path, std::string& text);

#endif
