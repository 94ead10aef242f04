#include "JsonFields.h"

bool JsonFields::present(const Json::Value& object, const char* key, bool required)
{
    if (object.isObject() && object.isMember(key))
        return true;
    if (required)
        error(object, std::string("\"") + key + "\" is missing");
    return false;
}

bool JsonFields::integer(const Json::Value& object, const char* key, int& out, bool required)
{
    if (!present(object, key, required))
        return false;
    const Json::Value& v = object[key];
    if (!v.isInt()) {
        error(v, std::string("\"") + key + "\" must be an integer");
        return false;
    }
    out = v.asInt();
    return true;
}

bool JsonFields::string(const Json::Value& object, const char* key, std::string& out, bool required)
{
    if (!present(object, key, required))
        return false;
    const Json::Value& v = object[key];
    if (!v.isString()) {
        error(v, std::string("\"") + key + "\" must be a string");
        return false;
    }
    out = v.asString();
    return true;
}

bool JsonFields::boolean(const Json::Value& object, const char* key, bool& out)
{
    if (!present(object, key, false))
        return false;
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
        return false;
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
        return false;
    const Json::Value& v = object[key];
    if (v.type() != type) {
        error(v, std::string("\"") + key + "\" must be " + (type == Json::arrayValue ? "an array" : "an object"));
        return false;
    }
    return true;
}
