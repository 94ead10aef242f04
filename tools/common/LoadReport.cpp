#include "LoadReport.h"

#include <BaseUtils.h>
#include <CLoadReport.h>
#include <DebugMPI.h>

namespace {

// Level-3 messages of the loaders and textures that mean something was not
// loaded as written. A sheet lookup that misses ("could not find") is not
// one: billboards then try the file, and only that failing counts.
const char* const kFailures[] = {
    "ID number is wrong", "failed to open file", "libpng error", "should be power of 2",
    "names no file", "has no name", "OpenGL Error", "could not select font", "could not load font",
};

} // namespace

LoadReport::LoadReport() : mCount(0), mFound(0)
{
    BaseUtils::SetAssertListener([this](const char*, int, const std::string& message) { note(message); });
    Tadwick::Vell::CDebugMPI::SetListener([this](int, int level, const std::string& text) {
        if (isFailure(level, text))
            note(text);
    });
}

LoadReport::~LoadReport()
{
    BaseUtils::SetAssertListener(BaseUtils::tAssertHandler());
    Tadwick::Vell::CDebugMPI::SetListener(Tadwick::Vell::CDebugMPI::tHandler());
}

void LoadReport::reset()
{
    mCount = 0;
    mFound = 0;
    mFirst.clear();
}

void LoadReport::add(int count, const std::string& first)
{
    if (count <= 0)
        return;
    mFirst = CLoadReport::oneLine(first);
    mFound += count;
}

void LoadReport::note(const std::string& text)
{
    if (mCount++ == 0 && mFound == 0)
        mFirst = CLoadReport::oneLine(text);
}

bool LoadReport::isFailure(int level, const std::string& text)
{
    if (level <= 1)
        return true;
    if (level > 3)
        return false;
    for (const char* failure : kFailures)
        if (text.find(failure) != std::string::npos)
            return true;
    return false;
}

std::string LoadReport::summary(const std::string& file, const std::string& checkArguments) const
{
    return file + ": " + std::to_string(count()) + (count() == 1 ? " problem" : " problems") +
           " while loading (first: " + mFirst + "); run zephrin2d-check " +
           (checkArguments.empty() ? file : checkArguments) + " for each with its place";
}
