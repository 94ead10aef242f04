#include "Demo.h"

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
