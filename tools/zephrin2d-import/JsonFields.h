#ifndef ZEPHRIN2D_IMPORT_JSONFIELDS_H
#define ZEPHRIN2D_IMPORT_JSONFIELDS_H

#include "JsonDocument.h"
#include "Paths.h"

/// Reads typed members, reporting a missing or mistyped one at its place.
/// Every reader checks the value's type before using it, so no jsoncpp
/// exception can escape whatever the file holds. An optional member that is
/// absent leaves out unchanged and counts as read.
class JsonFields
{
public:
    JsonFields(const JsonDocument& doc, Diagnostics& diag) : mDoc(doc), mDiag(diag) {}

    bool integer(const Json::Value& object, const char* key, int& out, bool required = true);
    /// An integer that must lie within [min, max].
    bool integer(const Json::Value& object, const char* key, int& out, int min, int max, bool required = true);
    bool string(const Json::Value& object, const char* key, std::string& out, bool required = true);
    bool boolean(const Json::Value& object, const char* key, bool& out);
    bool number(const Json::Value& object, const char* key, double& out);
    /// An object member that must be an object (or an array when wanted).
    bool member(const Json::Value& object, const char* key, Json::ValueType type, bool required = true);
    /// True when object is an object holding key (no report either way).
    static bool has(const Json::Value& object, const char* key) { return object.isObject() && object.isMember(key); }
    /// object[key] when object is an object, else a null value.
    static const Json::Value& at(const Json::Value& object, const char* key);

    const JsonDocument& doc() const { return mDoc; }
    Diagnostics& diag() { return mDiag; }
    void error(const Json::Value& at, const std::string& message) { mDoc.error(at, message, mDiag); }
    void warning(const Json::Value& at, const std::string& message) { mDoc.warning(at, message, mDiag); }

private:
    bool present(const Json::Value& object, const char* key, bool required);
    /// The member when it is there and `is` holds for it; ok is false when a
    /// required one is missing or it is of another type (both reported).
    const Json::Value* typed(const Json::Value& object, const char* key, bool required,
                             bool (Json::Value::*is)() const, const char* wanted, bool& ok);

    const JsonDocument& mDoc;
    Diagnostics& mDiag;
};

#endif
