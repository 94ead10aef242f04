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

const Json::Value* JsonFields::typed(const Json::Value& object, const char* key, bool required,
                                     bool (Json::Value::*is)() const, const char* wanted, bool& ok)
{
    ok = !required;
    if (!present(object, key, required))
        return nullptr;
    const Json::Value& v = object[key];
    ok = (v.*is)();
    if (!ok)
        error(v, std::string("\"") + key + "\" must be " + wanted);
    return ok ? &v : nullptr;
}

bool JsonFields::integer(const Json::Value& object, const char* key, int& out, bool required)
{
    bool ok = false;
    if (const Json::Value* v = typed(object, key, required, &Json::Value::isInt, "an integer", ok))
        out = v->asInt();
    return ok;
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
    bool ok = false;
    const Json::Value* v = typed(object, key, required, &Json::Value::isString, "a string", ok);
    if (!v)
        return ok;
    const char* begin = nullptr;
    const char* end = nullptr;
    v->getString(&begin, &end);
    if (size_t(end - begin) > ImportLimits::MAX_STRING_BYTES) {
        error(*v, ImportLimits::atMost(std::string("\"") + key + "\"'s length", long(ImportLimits::MAX_STRING_BYTES)));
        return false;
    }
    out.assign(begin, end);
    return true;
}

bool JsonFields::boolean(const Json::Value& object, const char* key, bool& out)
{
    bool ok = false;
    if (const Json::Value* v = typed(object, key, false, &Json::Value::isBool, "true or false", ok))
        out = v->asBool();
    return ok;
}

bool JsonFields::number(const Json::Value& object, const char* key, double& out)
{
    bool ok = false;
    if (const Json::Value* v = typed(object, key, false, &Json::Value::isNumeric, "a number", ok))
        out = v->asDouble();
    return ok;
}

bool JsonFields::member(const Json::Value& object, const char* key, Json::ValueType type, bool required)
{
    bool ok = false;
    const bool array = type == Json::arrayValue;
    typed(object, key, required, array ? &Json::Value::isArray : &Json::Value::isObject, array ? "an array" : "an object",
          ok);
    return ok;
}
