#include "Paths.h"

#include <cstdio>
#include <sys/stat.h>

std::string directoryOf(const std::string& path)
{
    const size_t slash = path.rfind('/');
    return slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
}

std::string fileNameOf(const std::string& path)
{
    const size_t slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

std::string stemOf(const std::string& path)
{
    const std::string name = fileNameOf(path);
    const size_t dot = name.rfind('.');
    return dot == std::string::npos || dot == 0 ? name : name.substr(0, dot);
}

std::string resolvePath(const std::string& dir, const std::string& name)
{
    return !name.empty() && name[0] == '/' ? name : dir + name;
}

bool endsWith(const std::string& text, const std::string& tail)
{
    return text.size() >= tail.size() && text.compare(text.size() - tail.size(), tail.size(), tail) == 0;
}

bool readTextFile(const std::string& path, std::string& text, std::string& error, long long limit)
{
    FILE* f = std::fopen(path.c_str(), "rb");
    struct stat st;
    if (!f || fstat(fileno(f), &st) != 0 || S_ISDIR(st.st_mode)) {
        error = "cannot be read";
        if (f)
            std::fclose(f);
        return false;
    }
    if (static_cast<long long>(st.st_size) > limit) {
        error = "is " + std::to_string(static_cast<long long>(st.st_size)) + " bytes; the limit is " +
                std::to_string(limit) + " bytes";
        std::fclose(f);
        return false;
    }
    text.clear();
    char buffer[65536];
    size_t n;
    while ((n = std::fread(buffer, 1, sizeof buffer, f)) > 0 && static_cast<long long>(text.size() + n) <= limit)
        text.append(buffer, n);
    const bool ok = !std::ferror(f) && n == 0;
    std::fclose(f);
    if (!ok)
        error = "cannot be read";
    return ok;
}

bool readTextFile(const std::string& path, std::string& text)
{
    std::string error;
    return readTextFile(path, text, error);
}
