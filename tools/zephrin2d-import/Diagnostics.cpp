#include "Diagnostics.h"

#include "ImportLimits.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <memory>
#include <sstream>

void Diagnostics::error(const std::string& file, int line, int column, const std::string& message)
{
    mLines.push_back(file + ":" + std::to_string(line) + ":" + std::to_string(column) + ": error: " + message);
    ++mErrors;
}

void Diagnostics::warning(const std::string& file, int line, int column, const std::string& message)
{
    mLines.push_back(file + ":" + std::to_string(line) + ":" + std::to_string(column) + ": warning: " + message);
}

bool readTextFile(const std::string& path, std::string& text, std::string* why)
{
    std::ifstream in(path, std::ios::binary);
    if (why)
        *why = "cannot be read";
    if (!in)
        return false;
    in.seekg(0, std::ios::end);
    const std::streamoff size = in.tellg();
    in.seekg(0, std::ios::beg);
    if (size < 0 || static_cast<unsigned long long>(size) > ImportLimits::MAX_FILE_BYTES) {
        if (why && size >= 0)
            *why = "is " + std::to_string(size) + " bytes: " +
                   ImportLimits::atMost("an input file's size", long(ImportLimits::MAX_FILE_BYTES));
        return false;
    }
    std::ostringstream s;
    s << in.rdbuf();
    text = s.str();
    return !in.bad();
}

std::string directoryOf(const std::string& path)
{
    const size_t slash = path.rfind('/');
    return slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
}

std::string stemOf(const std::string& path)
{
    const size_t slash = path.rfind('/');
    std::string name = slash == std::string::npos ? path : path.substr(slash + 1);
    const size_t dot = name.rfind('.');
    return dot == std::string::npos || dot == 0 ? name : name.substr(0, dot);
}

bool JsonDocument::load(const std::string& path, Diagnostics& diag)
{
    mPath = path;
    std::string why;
    if (!readTextFile(path, mText, &why)) {
        diag.error(path, 1, 1, why);
        return false;
    }
    Json::CharReaderBuilder builder;
    builder["collectComments"] = false;
    std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    std::string message;
    if (!reader->parse(mText.data(), mText.data() + mText.size(), &mRoot, &message)) {
        // The reader words its first error "* Line N, Column M\n  what".
        int line = 1, column = 1;
        sscanf(message.c_str(), "* Line %d, Column %d", &line, &column);
        const size_t what = message.find('\n');
        message = what == std::string::npos ? message : message.substr(what + 1);
        const size_t next = message.find('\n');
        if (next != std::string::npos)
            message.resize(next);
        while (!message.empty() && message[0] == ' ')
            message.erase(0, 1);
        diag.error(path, line, column, "not valid JSON: " + message);
        mRoot = Json::Value();
        return false;
    }
    return true;
}

void JsonDocument::locate(const Json::Value& at, int& line, int& column) const
{
    line = 1;
    column = 1;
    const ptrdiff_t offset = std::min<ptrdiff_t>(at.getOffsetStart(), mText.size());
    for (ptrdiff_t i = 0; i < offset; ++i) {
        if (mText[i] == '\n') {
            ++line;
            column = 1;
        } else {
            ++column;
        }
    }
}

void JsonDocument::error(const Json::Value& at, const std::string& message, Diagnostics& diag) const
{
    int line, column;
    locate(at, line, column);
    diag.error(mPath, line, column, message);
}

void JsonDocument::warning(const Json::Value& at, const std::string& message, Diagnostics& diag) const
{
    int line, column;
    locate(at, line, column);
    diag.warning(mPath, line, column, message);
}

std::vector<std::string> JsonDocument::memberNamesInFileOrder(const Json::Value& object) const
{
    std::vector<std::string> names = object.getMemberNames();
    std::stable_sort(names.begin(), names.end(), [&object](const std::string& a, const std::string& b) {
        return object[a].getOffsetStart() < object[b].getOffsetStart();
    });
    return names;
}
