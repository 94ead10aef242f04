#include "Demo.h"

#include "Paths.h"

#include <sys/stat.h>
#include <unistd.h>

#include <map>

Demo::~Demo() {}

namespace DemoRegistry {

namespace {
// A function-local map: registrations run during static initialisation, in any order.
std::map<std::string, tFactory>& registry()
{
    static std::map<std::string, tFactory> demos;
    return demos;
}
} // namespace

bool add(const char* name, tFactory factory)
{
    registry()[name] = factory;
    return true;
}

std::unique_ptr<Demo> create(const std::string& name)
{
    std::map<std::string, tFactory>::const_iterator it = registry().find(name);
    return it == registry().end() ? std::unique_ptr<Demo>() : it->second();
}

std::vector<std::string> names()
{
    std::vector<std::string> out;
    for (const auto& entry : registry())
        out.push_back(entry.first);
    return out;
}

} // namespace DemoRegistry

std::string examplesDir()
{
    char exe[4096];
    const ssize_t n = readlink("/proc/self/exe", exe, sizeof exe - 1);
    if (n > 0) {
        exe[n] = 0;
        const std::string installed = directoryOf(exe) + "../share/zephrin2d/examples/";
        struct stat st;
        if (stat((installed + "demo/scene.json").c_str(), &st) == 0)
            return installed;
    }
    return ZEPHRIN2D_EXAMPLES_DIR "/";
}
