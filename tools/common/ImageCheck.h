#ifndef ZEPHRIN2D_CHECK_IMAGECHECK_H
#define ZEPHRIN2D_CHECK_IMAGECHECK_H

#include <map>
#include <string>
#include <vector>

/// Whether an image file is one the library loads and GL ES 1.1 can use:
/// a PNG of a kind the library takes, each side a power of two. The image is
/// decoded by the library's own PNG loader; no GL is needed.
class ImageCheck
{
public:
    /// Whether path names a regular file.
    static bool exists(const std::string& path);
    /// The problems of the file at path (empty when it is fine); the first
    /// call for a path decodes it, later calls are told `seen`.
    const std::vector<std::string>& problems(const std::string& path, bool& seen);
    /// The size of an image the PNG loader takes (false for one it refuses or that is not there).
    bool size(const std::string& path, unsigned int& width, unsigned int& height);

private:
    struct tResult
    {
        std::vector<std::string> problems;
        unsigned int width = 0;
        unsigned int height = 0;  ///< 0 when the loader refuses the file
    };
    tResult& result(const std::string& path, bool& seen);
    tResult decode(const std::string& path);
    std::map<std::string, tResult> mResults;
};

#endif
