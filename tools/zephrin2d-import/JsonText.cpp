#include "JsonText.h"

#include <cstdio>
#include <vector>

JsonText::Object& JsonText::Object::set(const std::string& key, const std::string& rawJson)
{
    if (!mMembers.empty())
        mMembers += ", ";
    mMembers += quote(key) + ": " + rawJson;
    return *this;
}

JsonText::Object& JsonText::Object::setString(const std::string& key, const std::string& value)
{
    return set(key, quote(value));
}

std::string JsonText::Object::text() const
{
    return "{" + mMembers + "}";
}

std::string JsonText::quote(const std::string& s)
{
    std::string out = "\"";
    for (unsigned char c : s) {
        if (c == '"' || c == '\\') {
            out += '\\';
            out += static_cast<char>(c);
        } else if (c < 0x20) {
            char buf[8];
            snprintf(buf, sizeof buf, "\\u%04x", c);
            out += buf;
        } else {
            out += static_cast<char>(c);
        }
    }
    return out + "\"";
}

std::string JsonText::real(double value)
{
    char buf[64];
    snprintf(buf, sizeof buf, "%.6f", value);
    std::string s = buf;
    while (s.size() > 2 && s.back() == '0' && s[s.size() - 2] != '.')
        s.pop_back();
    if (s == "-0.0")
        s = "0.0";
    return s;
}

namespace {

// Splits the compact text of an array or object into its top-level items.
std::vector<std::string> items(const std::string& compact)
{
    std::vector<std::string> out;
    int depth = 0;
    bool inString = false;
    size_t start = 1;
    for (size_t i = 1; i + 1 < compact.size(); ++i) {
        const char c = compact[i];
        if (inString) {
            if (c == '\\')
                ++i;
            else if (c == '"')
                inString = false;
        } else if (c == '"') {
            inString = true;
        } else if (c == '[' || c == '{') {
            ++depth;
        } else if (c == ']' || c == '}') {
            --depth;
        } else if (c == ',' && depth == 0) {
            out.push_back(compact.substr(start, i - start));
            start = i + 2;
            ++i;
        }
    }
    if (compact.size() > 2)
        out.push_back(compact.substr(start, compact.size() - 1 - start));
    return out;
}

void prettyInto(const std::string& text, const std::string& indent, size_t width, std::string& out)
{
    if (indent.size() + text.size() <= width || text.size() < 2 || (text[0] != '[' && text[0] != '{')) {
        out += text;
        return;
    }
    const std::string inner = indent + "  ";
    out += text[0];
    const std::vector<std::string> parts = items(text);
    for (size_t i = 0; i < parts.size(); ++i) {
        out += "\n" + inner;
        const std::string& part = parts[i];
        // An object member: the key stays on the value's first line.
        size_t valueStart = 0;
        if (text[0] == '{') {
            const size_t colon = part.find("\": ");
            if (colon != std::string::npos) {
                out += part.substr(0, colon + 3);
                valueStart = colon + 3;
            }
        }
        prettyInto(part.substr(valueStart), inner, width, out);
        if (i + 1 < parts.size())
            out += ",";
    }
    out += "\n" + indent + text.back();
}

} // namespace

std::string JsonText::pretty(const std::string& compact, size_t width)
{
    std::string out;
    prettyInto(compact, "", width, out);
    return out + "\n";
}
