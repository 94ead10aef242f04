#ifndef ZEPHRIN2D_IMPORT_JSONFIELDS_H
#define ZEPHRIN2D_IMPORT_JSONFIELDS_H

#include "Diagnostics.h"

/// Reads typed members, reporting a missing or mistyped one at its place.
class JsonFields
{
public:
    JsonFields(const JsonDocument& doc, Diagnostics& diag) : mDoc(doc), mDiag(diag) {}

    bool integer(const Json::Value& object, const char* key, int& out, bool required = true);
    bool string(const Json::Value& object, const char* key, std::string& out, bool required = true);
    bool boolean(const Json::Value& object, const char* key, bool& out);
    bool number(const Json::Value& object, const char* key, double& out);
    /// An object member that must be an object (or an array when wanted).
    bool member(const Json::Value& object, const char* key, Json::ValueType type, bool required = true);

    const JsonDocument& doc() const { return mDoc; }
    Diagnostics& diag() { return mDiag; }
    void error(const Json::Value& at, const std::string& message) { mDoc.error(at, message, mDiag); }

private:
    bool present(const Json::Value& object, const char* key, bool required);

    const JsonDocument& mDoc;
    Diagnostics& mDiag;
};

#endif
