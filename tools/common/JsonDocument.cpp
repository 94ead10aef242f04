#include "JsonDocument.h"

#include "Paths.h"

#include <algorithm>
#include <cstdio>
#include <memory>

bool JsonDocument::load(const std::string& path)
{
    mPath = path;
    mRoot = Json::Value();
    mErrorPlace = tPlace{1, 1};
    mText.clear();
    mLineStarts.assign(1, 0);
    mUnreadable = !readTextFile(path, mText, mError);
    if (mUnreadable)
        return false;
    for (size_t i = 0; i < mText.size(); ++i)
        if (mText[i] == '\n')
            mLineStarts.push_back(i + 1);
    return parse();
}

bool JsonDocument::parse()
{
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
    if (std::sscanf(errors.c_str(), "* Line %d, Column %d", &line, &column) == 2)
        mErrorPlace = tPlace{line, column};
    const size_t newline = errors.find('\n');
    mError = newline == std::string::npos ? errors : errors.substr(newline + 1);
    mError = mError.substr(0, mError.find('\n'));
    mError.erase(0, mError.find_first_not_of(' '));
    if (mError.empty())
        mError = "not valid JSON";
    mRoot = Json::Value();
    return false;
}

bool JsonDocument::load(const std::string& path, Diagnostics& diag)
{
    if (load(path))
        return true;
    diag.error(path, mErrorPlace.line, mErrorPlace.column, mUnreadable ? mError : "not valid JSON: " + mError);
    return false;
}

JsonDocument::tPlace JsonDocument::placeOfOffset(size_t offset) const
{
    offset = std::min(offset, mText.size());
    const size_t line = std::upper_bound(mLineStarts.begin(), mLineStarts.end(), offset) - mLineStarts.begin();
    return tPlace{static_cast<int>(line), static_cast<int>(offset - mLineStarts[line - 1]) + 1};
}

JsonDocument::tPlace JsonDocument::place(const Json::Value& value) const
{
    return placeOfOffset(static_cast<size_t>(std::max<ptrdiff_t>(0, value.getOffsetStart())));
}

JsonDocument::tPlace JsonDocument::keyPlace(const Json::Value& object, const std::string& key) const
{
    const Json::Value* member = object.isObject() ? object.find(key.data(), key.data() + key.size()) : 0;
    if (!member)
        return place(object);
    const size_t valueStart = static_cast<size_t>(member->getOffsetStart());
    const size_t at = mText.rfind('"' + key + '"', valueStart);
    if (at == std::string::npos || at < static_cast<size_t>(object.getOffsetStart()))
        return place(*member);
    return placeOfOffset(at);
}

std::vector<std::string> JsonDocument::memberNamesInFileOrder(const Json::Value& object) const
{
    if (!object.isObject())
        return std::vector<std::string>();
    std::vector<std::string> names = object.getMemberNames();
    std::stable_sort(names.begin(), names.end(), [&object](const std::string& a, const std::string& b) {
        return object[a].getOffsetStart() < object[b].getOffsetStart();
    });
    return names;
}

void JsonDocument::error(const Json::Value& at, const std::string& message, Diagnostics& diag) const
{
    const tPlace p = place(at);
    diag.error(mPath, p.line, p.column, message);
}

void JsonDocument::warning(const Json::Value& at, const std::string& message, Diagnostics& diag) const
{
    const tPlace p = place(at);
    diag.warning(mPath, p.line, p.column, message);
}
