#include "ErrorMessages.h"

#include <QJN.h>

#include <cstdio>
#include <gtest/gtest.h>
#include <unistd.h>

namespace {

TEST(QJN, UnparsableInputIsReportedWithTheFileName)
{
    const char* bad[] = {"", "[1, 2", "{\"a\" 1}", "[1] trailing", "\"\\uZZZZ\"", "{\"a\":}"};
    for (const char* text : bad) {
        ErrorMessages messages;
        QJN::CJSonFile file("scenes/broken.json");
        EXPECT_FALSE(file.LoadFromString(text)) << text;
        EXPECT_TRUE(file.getRoot().isNull());
        EXPECT_NE(messages.text.find("could not parse scenes/broken.json: "), std::string::npos) << messages.text;
        EXPECT_FALSE(file.getError().empty());
        EXPECT_NE(messages.text.find(file.getError()), std::string::npos);
    }
}

TEST(QJN, LoadReadsFilesAndReportsMissingOnes)
{
    std::string path = std::string(Z2D_BINARY_DIR) + "/qjn-test-" + std::to_string(getpid()) + ".json";
    FILE* f = fopen(path.c_str(), "wb");
    ASSERT_TRUE(f);
    fputs("[{\"ElementType\": \"Billboard\", \"x\": 12.5}]", f);
    fclose(f);
    QJN::CJSonFile file(path);
    ASSERT_TRUE(file.Load());
    EXPECT_EQ(file.getRoot()[0]["ElementType"].asString(), "Billboard");
    EXPECT_EQ(file.getRoot()[0]["x"].asInt(), 12);
    unlink(path.c_str());

    ErrorMessages messages;
    EXPECT_FALSE(file.Load());
    EXPECT_TRUE(file.getRoot().isNull()) << "a failed load leaves no old root behind";
    EXPECT_EQ(messages.text, "QJN::CJSonFile::Load - could not read " + path + "\n");
    QJN::CJSonFile directory(Z2D_BINARY_DIR);
    EXPECT_FALSE(directory.Load());
}

TEST(QJN, ValueKindsAtTheirLimits)
{
    QJN::CJSonFile file("inline.json");
    ASSERT_TRUE(file.LoadFromString(
        R"({"t": true, "f": false, "neg": -7, "u32": 4294967295, "huge": 10000000000000000000, "d": 2.5})"));
    const QJN::Value root = file.getRoot();
    struct { const char* key; bool isBool, asBool, isInt, isUInt; double asDouble; } cases[] = {
        {"t", true, true, false, false, 0.0},          {"f", true, false, false, false, 0.0},
        {"neg", false, false, true, false, -7.0},      {"u32", false, false, false, true, 4294967295.0},
        {"huge", false, false, false, false, 1e19},    {"d", false, false, false, false, 2.5},
    };
    for (const auto& c : cases) {
        const QJN::Value v = root[c.key];
        EXPECT_EQ(v.isBool(), c.isBool) << c.key;
        EXPECT_EQ(v.asBool(), c.asBool) << c.key;
        EXPECT_EQ(v.isInt(), c.isInt) << c.key;
        EXPECT_EQ(v.isUInt(), c.isUInt) << c.key;
        EXPECT_EQ(v.asDouble(), c.asDouble) << c.key;
    }
}

} // namespace
