#include "ErrorMessages.h"

#include <QJN.h>

#include <cstdio>
#include <gtest/gtest.h>
#include <unistd.h>

namespace {

QJN::Value parse(const std::string& text, unsigned char flag = 0)
{
    QJN::CJSonFile file("inline.json", flag);
    EXPECT_TRUE(file.LoadFromString(text)) << text << ": " << file.getError();
    return file.getRoot();
}

struct NumberCase
{
    const char* json;
    int type;
    bool isInt, isUInt;
    int asInt;
    unsigned asUInt;
    double asDouble;
};

TEST(QJN, WrongTypesAndMissingKeysGiveNullNeverThrow)
{
    QJN::Value root = parse("{\"s\": \"text\", \"b\": true, \"n\": null, \"a\": [1, {\"k\": 2}], \"o\": {}}");
    ASSERT_TRUE(root.isObject());
    EXPECT_EQ(root.type(), QJN::objectValue);
    EXPECT_EQ(root.size(), 5u);
    EXPECT_EQ(root["s"].type(), QJN::stringValue);
    EXPECT_EQ(root["b"].type(), QJN::booleanValue);
    EXPECT_EQ(root["n"].type(), QJN::nullValue);
    EXPECT_EQ(root["a"].type(), QJN::arrayValue);
    EXPECT_EQ(root["a"][1]["k"].asInt(), 2);
    EXPECT_TRUE(root.isMember("n"));
    EXPECT_FALSE(root.isMember("missing"));

    const QJN::Value others[] = {root["s"], root["b"], root["n"], root["missing"], root["o"],
                                 root["a"][5], root["a"][-1], root["s"]["x"], root["s"][0], QJN::Value()};
    for (const QJN::Value& v : others) {
        EXPECT_EQ(v.asInt(), 0);
        EXPECT_EQ(v.asUInt(), 0u);
        EXPECT_EQ(v.asDouble(), 0.0);
        EXPECT_FALSE(v.isInt());
        EXPECT_FALSE(v.isDouble());
        EXPECT_TRUE(v["key"].isNull());
        EXPECT_TRUE(v[0u].isNull());
        EXPECT_FALSE(v.isMember("k"));
        EXPECT_FALSE(v.isMember(static_cast<const char*>(0)));
    }
    EXPECT_EQ(root["s"].asString(), "text");
    EXPECT_EQ(root["s"].size(), 0u);
    EXPECT_TRUE(root["b"].asBool());
    EXPECT_EQ(root["a"].asString(), "");
    EXPECT_EQ(root["a"].asInt(), 0);
    EXPECT_TRUE(root["a"]["k"].isNull());
    EXPECT_TRUE(root["missing"].isNull());
    EXPECT_TRUE(root[static_cast<const char*>(0)].isNull());
}

TEST(QJN, StrictFlagRefusesCommentsAndTrailingCommas)
{
    const std::string relaxed = "// scene\n[1, 2,]";
    QJN::CJSonFile lenient("a.json", 0);
    ASSERT_TRUE(lenient.LoadFromString(relaxed));
    EXPECT_EQ(lenient.getRoot().size(), 2u);
    ErrorMessages messages;
    QJN::CJSonFile strict("a.json", QJN::CJSonFile::kStrict);
    EXPECT_FALSE(strict.LoadFromString(relaxed));
    EXPECT_TRUE(strict.getRoot().isNull());
}

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

TEST(QJN, DeepNestingFailsCleanly)
{
    ErrorMessages messages;
    QJN::CJSonFile file("deep.json");
    EXPECT_FALSE(file.LoadFromString(std::string(100000, '[')));
    EXPECT_TRUE(file.getRoot().isNull());
    EXPECT_NE(messages.text.find("deep.json"), std::string::npos);
    // Nesting within the limit still loads.
    std::string ok = std::string(200, '[') + std::string(200, ']');
    EXPECT_TRUE(file.LoadFromString(ok));
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
    QJN::CJSonFile missing(path);
    EXPECT_FALSE(missing.Load());
    EXPECT_TRUE(missing.getRoot().isNull());
    EXPECT_EQ(messages.text, "QJN::CJSonFile::Load - could not read " + path + "\n");
    QJN::CJSonFile directory(Z2D_BINARY_DIR);
    EXPECT_FALSE(directory.Load());
}

} // namespace
