#include "TestSupport.h"

#include "DsetDump.h"

#include <QJN.h>

namespace {

TEST(ContentDumpTest, DemoActorAndCostumeDumpAsExpected)
{
    // The path is only printed: a relative one keeps the expected files
    // independent of where the tree lies.
    const struct
    {
        const char* name;
        void (*dump)(const Glib::ustring&, QJN::CJSonFile&);
        const char* expected;
    } cases[] = {
        {"examples/demo/hero.json", actorDsetDump, "expected/hero-actor.xml"},
        {"examples/demo/kid-costume.json", dsetDump, "expected/kid-costume.xml"},
    };
    for (const auto& c : cases) {
        QJN::CJSonFile file(std::string(Z2D_SOURCE_DIR) + "/" + c.name, 0);
        ASSERT_TRUE(file.Load()) << c.name;
        StdoutCapture out;
        c.dump(c.name, file);
        const std::string text = out.finish();
        const std::string expected = readFile(testDataPath(c.expected));
        ASSERT_FALSE(expected.empty()) << c.expected;
        EXPECT_EQ(text, expected) << c.name;
    }
}

} // namespace
