#ifndef ZEPHRIN2D_PLATFORM_QJN_H
#define ZEPHRIN2D_PLATFORM_QJN_H

#include <glibmm/ustring.h>
#include <memory>
#include <string>
#include <vector>

namespace Json { class Value; }

namespace QJN {

/// Type codes as Value::type() returns them.
enum ValueType
{
    nullValue = 0,
    intValue = 1,
    uintValue = 2,
    realValue = 3,
    stringValue = 4,
    booleanValue = 5,
    arrayValue = 6,
    objectValue = 7
};

/// A read-only view of one JSON value. Never throws: indexing something that
/// is not an object or an array, or a missing key, gives a null value;
/// converting a value of the wrong type gives 0 or an empty string.
class Value
{
public:
    Value();

    int type() const;
    bool isNull() const;
    bool isBool() const;
    bool isInt() const;     ///< an integer that fits in 32 signed bits
    bool isUInt() const;    ///< an integer that fits in 32 unsigned bits
    bool isDouble() const;  ///< any number
    bool isNumeric() const { return isDouble(); }
    bool isString() const;
    bool isArray() const;
    bool isObject() const;
    bool isMember(const char* key) const;
    bool isMember(const std::string& key) const { return isMember(key.c_str()); }

    Value operator[](const char* key) const;
    Value operator[](const std::string& key) const { return (*this)[key.c_str()]; }
    Value operator[](unsigned int index) const;
    Value operator[](int index) const;
    unsigned int size() const;  ///< entries of an array or object, else 0
    std::vector<std::string> getMemberNames() const;

    int asInt() const;
    unsigned int asUInt() const;
    double asDouble() const;
    bool asBool() const;
    std::string asString() const;

private:
    friend class CJSonFile;
    Value(std::shared_ptr<const Json::Value> root, const Json::Value* node);
    std::shared_ptr<const Json::Value> mRoot;
    const Json::Value* mNode;
};

/// A JSON file. Load() reads and parses it; on failure it reports the file
/// and the parse error on the debug service and the root stays null.
class CJSonFile
{
public:
    enum { kStrict = 0x01 };  ///< flag: refuse comments and trailing commas

    CJSonFile(const Glib::ustring& path, unsigned char flag = 0);
    bool Load();
    /// Parses text instead of a file (the path is only used in messages).
    bool LoadFromString(const std::string& text);

    const Value& getRoot() const { return mRoot; }
    const Glib::ustring& getPath() const { return mPath; }
    const std::string& getError() const { return mError; }

private:
    Glib::ustring mPath;
    unsigned char mFlag;
    Value mRoot;
    std::string mError;
};

} // namespace QJN

#endif
