#ifndef ZEPHRIN2D_IMPORT_JSONTEXT_H
#define ZEPHRIN2D_IMPORT_JSONTEXT_H

#include <json/json.h>

#include <string>

/// JSON text for people to read: a value that fits on one line is written on
/// one line, keys in the order given (not sorted), numbers without exponents.
class JsonText
{
public:
    /// An object whose keys keep their insertion order.
    class Object
    {
    public:
        Object& set(const std::string& key, const std::string& rawJson);
        Object& set(const std::string& key, int value) { return set(key, std::to_string(value)); }
        Object& setString(const std::string& key, const std::string& value);
        bool empty() const { return mMembers.empty(); }
        std::string text() const;

    private:
        std::string mMembers;
    };

    static std::string quote(const std::string& s);
    /// A number with at most 6 decimals, trailing zeros removed but one ("8.0").
    static std::string real(double value);
    static std::string array(const std::string& items) { return "[" + items + "]"; }
    /// Indents the compact text so that long arrays and objects break lines.
    static std::string pretty(const std::string& compact, size_t width = 100);
};

#endif
