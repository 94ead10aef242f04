#ifndef ZEPHRIN2D_CHECK_JSONDOCUMENT_H
#define ZEPHRIN2D_CHECK_JSONDOCUMENT_H

#include <json/json.h>

#include <string>
#include <vector>

/// A JSON file parsed as the library's JSON reader parses it, with the line
/// and column of every value (and of every member's key).
class JsonDocument
{
public:
    struct tPlace
    {
        int line;
        int column;
    };

    /// False when the file cannot be read or parsed; error() and errorPlace() say why and where.
    bool load(const std::string& path);

    const Json::Value& root() const { return mRoot; }
    const std::string& error() const { return mError; }
    tPlace errorPlace() const { return mErrorPlace; }

    /// Where a value starts.
    tPlace place(const Json::Value& value) const;
    /// Where the key of member `key` of object `object` is written.
    tPlace keyPlace(const Json::Value& object, const std::string& key) const;

private:
    tPlace placeOfOffset(size_t offset) const;

    std::string mText;
    std::vector<size_t> mLineStarts;
    Json::Value mRoot;
    std::string mError;
    tPlace mErrorPlace = {1, 1};
};

#endif
