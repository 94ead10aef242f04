#include "JsonDocument.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <memory>
#include <sstream>

bool JsonDocument::load(const std::string& path)
{
    std::ifstream in(path.c_str(), std::ios::binary);
    std::ostringstream text;
    if (!in || !(text << in.rdbuf())) {
        mError = "cannot be read";
        return false;
    }
    mText = text.str();
    mLineStarts.assign(1, 0);
    for (size_t i = 0; i < mText.size(); ++i)
        if (mText[i] == '\n')
            mLineStarts.push_back(i + 1);

    // The settings of the library's reader (comments and trailing commas allowed).
    Json::CharReaderBuilder builder;
    builder["collectComments"] = false;
    builder["failIfExtra"] = true;
    builder["stackLimit"] = 512;
    std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    std::string errors;
    bool ok = false;
    try {
        ok = reader->parse(mText.data(), mText.data() + mText.size(), &mRoot, &errors);
    } catch (const std::exception& e) {
        errors = e.what();
    }
    if (ok)
        return true;
    // The reader reports "* Line L, Column C\n  message\n" for each error; the first one counts.
    int line = 1, column = 1;
    if (std::sscanf(errors.c_str(), "* Line %d, Column %d", &line, &column) == 2) {
        mErrorPlace.line = line;
        mErrorPlace.column = column;
    }
    const size_t newline = errors.find('\n');
    mError = newline == std::string::npos ? errors : errors.substr(newline + 1);
    mError = mError.substr(0, mError.find('\n'));
    mError.erase(0, mError.find_first_not_of(' '));
    if (mError.empty())
        mError = "not valid JSON";
    mRoot = Json::Value();
    return false;
}

JsonDocument::tPlace JsonDocument::placeOfOffset(size_t offset) const
{
    const size_t line = std::upper_bound(mLineStarts.begin(), mLineStarts.end(), offset) - mLineStarts.begin();
    tPlace p = {static_cast<int>(line), static_cast<int>(offset - mLineStarts[line - 1]) + 1};
    return p;
}

JsonDocument::tPlace JsonDocument::place(const Json::Value& value) const
{
    return placeOfOffset(static_cast<size_t>(value.getOffsetStart()));
}

JsonDocument::tPlace JsonDocument::keyPlace(const Json::Value& object, const std::string& key) const
{
    const Json::Value* member = object.find(key.data(), key.data() + key.size());
    if (!member)
        return place(object);
    const size_t valueStart = static_cast<size_t>(member->getOffsetStart());
    const size_t at = mText.rfind('"' + key + '"', valueStart);
    if (at == std::string::npos || at < static_cast<size_t>(object.getOffsetStart()))
        return place(*member);
    return placeOfOffset(at);
}
