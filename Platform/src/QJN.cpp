#include "QJN.h"
#include "DebugMPI.h"

#include <json/json.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <cstdio>
#include <limits>
#include <sstream>

namespace QJN {

namespace {

// Deep enough for any scene, shallow enough that the recursive parser and
// the tree's destructor stay well inside a thread's stack.
const int kStackLimit = 512;

bool inRange(double d, double low, double high)
{
    return !std::isnan(d) && d >= low && d <= high;
}

// jsoncpp reports errors over several indented lines; one line reads better in a log.
std::string oneLine(const std::string& text)
{
    std::string out;
    std::istringstream lines(text);
    std::string line;
    while (std::getline(lines, line)) {
        size_t first = line.find_first_not_of(" \t\r");
        if (first == std::string::npos)
            continue;
        size_t last = line.find_last_not_of(" \t\r");
        if (!out.empty())
            out += ' ';
        out.append(line, first, last - first + 1);
    }
    return out;
}

bool readFile(const std::string& path, std::string& text)
{
    FILE* file = fopen(path.c_str(), "rb");
    if (!file)
        return false;
    char buffer[16384];
    size_t n;
    while ((n = fread(buffer, 1, sizeof buffer, file)) > 0)
        text.append(buffer, n);
    bool ok = !ferror(file);
    fclose(file);
    return ok;
}

} // namespace

Value::Value() : mNode(0) {}

Value::Value(std::shared_ptr<const Json::Value> root, const Json::Value* node)
    : mRoot(node ? root : std::shared_ptr<const Json::Value>()), mNode(node)
{
}

int Value::type() const
{
    if (!mNode)
        return nullValue;
    switch (mNode->type()) {
    case Json::intValue: return intValue;
    case Json::uintValue: return uintValue;
    case Json::realValue: return realValue;
    case Json::stringValue: return stringValue;
    case Json::booleanValue: return booleanValue;
    case Json::arrayValue: return arrayValue;
    case Json::objectValue: return objectValue;
    default: return nullValue;
    }
}

bool Value::isNull() const { return type() == nullValue; }
bool Value::isBool() const { return type() == booleanValue; }
bool Value::isString() const { return type() == stringValue; }
bool Value::isArray() const { return type() == arrayValue; }
bool Value::isObject() const { return type() == objectValue; }

bool Value::isInt() const
{
    switch (type()) {
    case intValue: {
        Json::Int64 v = mNode->asInt64();
        return v >= std::numeric_limits<int32_t>::min() && v <= std::numeric_limits<int32_t>::max();
    }
    case uintValue:
        return mNode->asUInt64() <= static_cast<Json::UInt64>(std::numeric_limits<int32_t>::max());
    default:
        return false;
    }
}

bool Value::isUInt() const
{
    switch (type()) {
    case intValue: {
        Json::Int64 v = mNode->asInt64();
        return v >= 0 && v <= static_cast<Json::Int64>(std::numeric_limits<uint32_t>::max());
    }
    case uintValue:
        return mNode->asUInt64() <= std::numeric_limits<uint32_t>::max();
    default:
        return false;
    }
}

bool Value::isDouble() const
{
    int t = type();
    return t == intValue || t == uintValue || t == realValue;
}

bool Value::isMember(const char* key) const
{
    if (!key || !isObject())
        return false;
    try {
        return mNode->find(key, key + strlen(key)) != 0;
    } catch (...) {
        return false;
    }
}

Value Value::operator[](const char* key) const
{
    if (!key || !isObject())
        return Value();
    try {
        return Value(mRoot, mNode->find(key, key + strlen(key)));
    } catch (...) {
        return Value();
    }
}

Value Value::operator[](unsigned int index) const
{
    if (!isArray() || index >= mNode->size())
        return Value();
    try {
        return Value(mRoot, &(*mNode)[static_cast<Json::ArrayIndex>(index)]);
    } catch (...) {
        return Value();
    }
}

Value Value::operator[](int index) const
{
    if (index < 0)
        return Value();
    return (*this)[static_cast<unsigned int>(index)];
}

unsigned int Value::size() const
{
    if (!isArray() && !isObject())
        return 0;
    return mNode->size();
}

std::vector<std::string> Value::getMemberNames() const
{
    if (!isObject())
        return std::vector<std::string>();
    try {
        return mNode->getMemberNames();
    } catch (...) {
        return std::vector<std::string>();
    }
}

int Value::asInt() const
{
    switch (type()) {
    case intValue:
    case uintValue:
        return isInt() ? static_cast<int>(mNode->asInt64()) : 0;
    case realValue: {
        double d = std::trunc(mNode->asDouble());
        return inRange(d, -2147483648.0, 2147483647.0) ? static_cast<int>(d) : 0;
    }
    default:
        return 0;
    }
}

unsigned int Value::asUInt() const
{
    switch (type()) {
    case intValue:
    case uintValue:
        return isUInt() ? static_cast<unsigned int>(mNode->asUInt64()) : 0;
    case realValue: {
        double d = std::trunc(mNode->asDouble());
        return inRange(d, 0.0, 4294967295.0) ? static_cast<unsigned int>(d) : 0;
    }
    default:
        return 0;
    }
}

double Value::asDouble() const
{
    switch (type()) {
    case intValue: return static_cast<double>(mNode->asInt64());
    case uintValue: return static_cast<double>(mNode->asUInt64());
    case realValue: return mNode->asDouble();
    default: return 0.0;
    }
}

bool Value::asBool() const
{
    return isBool() && mNode->asBool();
}

std::string Value::asString() const
{
    if (!isString())
        return std::string();
    try {
        return mNode->asString();
    } catch (...) {
        return std::string();
    }
}

CJSonFile::CJSonFile(const Glib::ustring& path, unsigned char flag)
    : mPath(path), mFlag(flag)
{
}

bool CJSonFile::Load()
{
    mRoot = Value();
    mError.clear();
    std::string text;
    if (!readFile(mPath.raw(), text)) {
        mError = "could not read";
        Tadwick::Vell::CDebugMPI().DebugOut(1, "QJN::CJSonFile::Load - could not read %s\n", mPath.c_str());
        return false;
    }
    return LoadFromString(text);
}

bool CJSonFile::LoadFromString(const std::string& text)
{
    mRoot = Value();
    mError.clear();
    std::shared_ptr<Json::Value> root;
    bool ok = false;
    try {
        Json::CharReaderBuilder builder;
        if (mFlag & kStrict)
            Json::CharReaderBuilder::strictMode(&builder.settings_);
        builder["collectComments"] = false;
        builder["failIfExtra"] = true;
        builder["stackLimit"] = kStackLimit;
        std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
        root = std::make_shared<Json::Value>();
        std::string errors;
        ok = reader->parse(text.data(), text.data() + text.size(), root.get(), &errors);
        if (!ok)
            mError = oneLine(errors);
    } catch (const std::exception& e) {
        ok = false;
        mError = oneLine(e.what());
    } catch (...) {
        ok = false;
        mError = "unknown error";
    }
    if (!ok) {
        if (mError.empty())
            mError = "syntax error";
        Tadwick::Vell::CDebugMPI().DebugOut(1, "QJN::CJSonFile::Load - could not parse %s: %s\n",
                                            mPath.c_str(), mError.c_str());
        return false;
    }
    std::shared_ptr<const Json::Value> constRoot = root;
    mRoot = Value(constRoot, constRoot.get());
    return true;
}

} // namespace QJN
