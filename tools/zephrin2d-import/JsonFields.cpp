#include "JsonFields.h"

#include "ImportLimits.h"

const Json::Value& JsonFields::at(const Json::Value& object, const char* key)
{
    static const Json::Value none;
    return has(object, key) ? object[key] : none;
}

bool JsonFields::present(const Json::Value& object, const char* key, bool required)
{
    if (has(object, key))
        return true;
    if (required)
        error(object, std::string("\"") + key + "\" is missing");
    return false;
}

bool JsonFields::integer(const Json::Value& object, const char* key, int& out, bool required)
{
    if (!present(object, key, required))
        return !required;
    const Json::Value& v = object[key];
    if (!v.isInt()) {
        error(v, std::string("\"") + key + "\" must be an integer");
        return false;
    }
    out = v.asInt();
    return true;
}

bool JsonFields::integer(const Json::Value& object, const char* key, int& out, int min, int max, bool required)
{
    int value = out;
    if (!integer(object, key, value, required))
        return false;
    if (value < min || value > max) {
        error(object[key], std::string("\"") + key + "\" must lie between " + std::to_string(min) + " and " +
                               std::to_string(max));
        return false;
    }
    out = value;
    return true;
}

bool JsonFields::string(const Json::Value& object, const char* key, std::string& out, bool required)
{
    if (!present(object, key, required))
        return !required;
    const Json::Value& v = object[key];
    if (!v.isString()) {
        error(v, std::string("\"") + key + "\" must be a string");
        return false;
    }
    const char* begin = nullptr;
    const char* end = nullptr;
    v.getString(&begin, &end);
    if (size_t(end - begin) > ImportLimits::MAX_STRING_BYTES) {
        error(v, ImportLimits::atMost(std::string("\"") + key + "\"'s length", long(ImportLimits::MAX_STRING_BYTES)));
        return false;
    }
    out.assign(begin, end);
    return true;
}

bool JsonFields::boolean(const Json::Value& object, const char* key, bool& out)
{
    if (!present(object, key, false))
        return true;
    const Json::Value& v = object[key];
    if (!v.isBool()) {
        error(v, std::string("\"") + key + "\" must be true or false");
        return false;
    }
    out = v.asBool();
    return true;
}

bool JsonFields::number(const Json::Value& object, const char* key, double& out)
{
    if (!present(object, key, false))
        return true;
    const Json::Value& v = object[key];
    if (!v.isNumeric()) {
        error(v, std::string("\"") + key + "\" must be a number");
        return false;
    }
    out = v.asDouble();
    return true;
}

bool JsonFields::member(const Json::Value& object, const char* key, Json::ValueType type, bool required)
{
    if (!present(object, key, required))
        return !required;
    const Json::Value& v = object[key];
    if (v.type() != type) {
        error(v, std::string("\"") + key + "\" must be " + (type == Json::arrayValue ? "an array" : "an object"));
        return false;
    }
    return true;
}
