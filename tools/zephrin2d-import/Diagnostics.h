#ifndef ZEPHRIN2D_IMPORT_DIAGNOSTICS_H
#define ZEPHRIN2D_IMPORT_DIAGNOSTICS_H

#include <json/json.h>

#include <string>
#include <vector>

/// Problems found in the input, reported compiler-style:
/// "FILE:LINE:COLUMN: error: message".
class Diagnostics
{
public:
    void error(const std::string& file, int line, int column, const std::string& message);
    void warning(const std::string& file, int line, int column, const std::string& message);
    /// A line already in the form above, counted as an error.
    void errorLine(const std::string& line)
    {
        mLines.push_back(line);
        ++mErrors;
    }
    bool failed() const { return mErrors > 0; }
    const std::vector<std::string>& lines() const { return mLines; }

private:
    std::vector<std::string> mLines;
    int mErrors = 0;
};

/// A JSON file kept with its text, so that values can be located.
class JsonDocument
{
public:
    /// False (with the parser's message in diag) when the file cannot be read or parsed.
    bool load(const std::string& path, Diagnostics& diag);
    const Json::Value& root() const { return mRoot; }
    const std::string& path() const { return mPath; }

    void error(const Json::Value& at, const std::string& message, Diagnostics& diag) const;
    void warning(const Json::Value& at, const std::string& message, Diagnostics& diag) const;
    /// The line a value starts on.
    int lineOf(const Json::Value& at) const
    {
        int line, column;
        locate(at, line, column);
        return line;
    }
    /// Members of an object in the order the file gives them.
    std::vector<std::string> memberNamesInFileOrder(const Json::Value& object) const;

private:
    void locate(const Json::Value& at, int& line, int& column) const;

    std::string mPath;
    std::string mText;
    Json::Value mRoot;
};

/// False when the file cannot be read or is larger than the importer reads;
/// why then says which, worded to follow the file's name.
bool readTextFile(const std::string& path, std::string& text, std::string* why = nullptr);
/// The directory part of a path, with its trailing "/" ("" when there is none).
std::string directoryOf(const std::string& path);
/// The file name without directory and extension.
std::string stemOf(const std::string& path);

#endif
