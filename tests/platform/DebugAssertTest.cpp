#include <BaseUtils.h>
#include <DebugMPI.h>

#include "OutputCapture.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <unistd.h>

namespace {

std::string captureStderr(const std::function<void()>& body)
{
    OutputCapture capture(2);
    body();
    return capture.finish();
}

TEST(Assert, PrintsOneLineAndReturns)
{
    std::string err = captureStderr([] {
        BaseUtils::Assert(true, "Zephrin2D/Src/X", 1, "never");
        BaseUtils::Assert(false, "Zephrin2D/Src/CBillboard", 42, "texture %s not found\n", "a.png");
        BaseUtils::Assert(false, "Zephrin2D/Src/CActor2D", 7, "no newline %d", 3);
    });
    EXPECT_EQ(err, "ASSERT Zephrin2D/Src/CBillboard:42: texture a.png not found\n"
                   "ASSERT Zephrin2D/Src/CActor2D:7: no newline 3\n");
}

TEST(Assert, HandlerReceivesExactMessage)
{
    std::vector<std::string> got;
    BaseUtils::tAssertHandler previous = BaseUtils::SetAssertHandler(
        [&](const char* file, int line, const std::string& m) { got.push_back(std::string(file) + "|" + m); });
    std::string longText(2000, 'x');
    BaseUtils::Assert(false, "F", 1, " lead %s\n", "blank");
    BaseUtils::Assert(false, "F", 2, "%s", longText.c_str());
    BaseUtils::SetAssertHandler(previous);
    EXPECT_EQ(got, (std::vector<std::string>{"F| lead blank\n", "F|" + longText}));
}

TEST(Debug, LevelFiltersStandardErrorButHandlerSeesAll)
{
    Tadwick::Vell::CDebugMPI debug(0x282);
    const int saved = debug.GetDebugLevel();
    debug.SetDebugLevel(2);
    std::string err = captureStderr([&] {
        debug.DebugOut(2, "shown %d\n", 2);
        debug.DebugOut(3, "hidden\n");
    });
    EXPECT_EQ(err, "shown 2\n");
    std::vector<std::pair<int, std::string> > got;
    auto previous = Tadwick::Vell::CDebugMPI::SetHandler(
        [&](int, int level, const std::string& t) { got.push_back({level, t}); });
    debug.DebugOut(5, "verbose %s\n", "trace");
    Tadwick::Vell::CDebugMPI::SetHandler(previous);
    debug.SetDebugLevel(saved);
    EXPECT_EQ(got, (std::vector<std::pair<int, std::string> >{{5, "verbose trace\n"}}));
}

} // namespace
