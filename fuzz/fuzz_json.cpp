// JSON text through the platform reader, then every accessor over the tree.
#include "FuzzSupport.h"

#include <QJN.h>

namespace {

size_t walk(const QJN::Value& v, int depth)
{
    size_t n = size_t(v.type()) + size_t(v.asInt()) + v.asUInt() + size_t(v.asDouble() != 0) + v.asString().size() +
               v.isInt() + v.isUInt() + v.isDouble() + v.isString() + v.isBool() + v.isNull() + v.asBool();
    // Wrong-kind accesses must give null values, never fail.
    n += v["ElementType"].asInt() + v[0u].asInt() + v[-1].type() + v[v.size()].type();
    if (depth > 64)
        return n;
    if (v.isArray()) {
        for (unsigned int i = 0; i < v.size(); ++i)
            n += walk(v[i], depth + 1);
    } else if (v.isObject()) {
        for (const std::string& key : v.getMemberNames())
            n += v.isMember(key) + walk(v[key], depth + 1);
    }
    return n;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    Fuzz::quiet();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    volatile size_t sink = 0;
    for (unsigned char flag : {0, int(QJN::CJSonFile::kStrict)}) {
        QJN::CJSonFile file("fuzz.json", flag);
        file.LoadFromString(text);
        sink += walk(file.getRoot(), 0) + file.getError().size();
    }
    (void)sink;
    return 0;
}
