#ifndef ZEPHRIN2D_TOOLS_JSONDOCUMENT_H
#define ZEPHRIN2D_TOOLS_JSONDOCUMENT_H

#include "Diagnostics.h"

#include <json/json.h>

#include <string>
#include <vector>

/// A JSON file parsed as the library's JSON reader parses it (comments and
/// trailing commas allowed), kept with its text so that every value and
/// every member's key can be located by line and column.
class JsonDocument
{
public:
    struct tPlace
    {
        int line;
        int column;
    };

    /// False when the file cannot be read, is larger than the text file
    /// limit or cannot be parsed; error() and errorPlace() say why and where.
    bool load(const std::string& path);
    /// The same, the problem reported as "cannot be read" or "not valid JSON: ..." in diag.
    bool load(const std::string& path, Diagnostics& diag);

    const Json::Value& root() const { return mRoot; }
    const std::string& path() const { return mPath; }
    const std::string& error() const { return mError; }
    tPlace errorPlace() const { return mErrorPlace; }

    /// Where a value starts.
    tPlace place(const Json::Value& value) const;
    /// Where the key of member `key` of object `object` is written.
    tPlace keyPlace(const Json::Value& object, const std::string& key) const;
    int lineOf(const Json::Value& value) const { return place(value).line; }
    /// Members of an object in the order the file gives them.
    std::vector<std::string> memberNamesInFileOrder(const Json::Value& object) const;

    void error(const Json::Value& at, const std::string& message, Diagnostics& diag) const;
    void warning(const Json::Value& at, const std::string& message, Diagnostics& diag) const;

private:
    bool parse();
    tPlace placeOfOffset(size_t offset) const;

    std::string mPath;
    std::string mText;
    std::vector<size_t> mLineStarts;
    Json::Value mRoot;
    std::string mError;
    tPlace mErrorPlace = {1, 1};
    bool mUnreadable = false;
};

#endif
