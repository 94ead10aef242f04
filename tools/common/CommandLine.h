#ifndef ZEPHRIN2D_TOOLS_COMMANDLINE_H
#define ZEPHRIN2D_TOOLS_COMMANDLINE_H

#include <functional>
#include <string>
#include <vector>

/// The content files a tool loads or looks at, as every tool takes them.
struct ContentOptions
{
    std::vector<std::string> sheets;  ///< --sheet: texture-sheet descriptions, every one loaded
    std::string costume;              ///< --costume: an avatar costume (every LOD)
    std::vector<std::string> artPaths;  ///< --art-path: directories searched for art, in order
    std::string defaultPath;          ///< --default-path: prefix of billboard file names
    bool hasDefaultPath = false;
    std::vector<std::string> actors;  ///< --actor: actor files (JSON or .dsetBin)
};

/// A tool's command line as one table: each row names an option, its value,
/// its help and what taking it does. --help is printed from the table, and
/// every tool spells and checks the shared options the same way.
/// Values come as "--name VALUE", "--name=VALUE" or "-x VALUE"; "--" ends the options.
class CommandLine
{
public:
    /// Takes a value; returns an empty string when it is good, else what is wrong.
    typedef std::function<std::string(const std::string&)> tTake;

    struct tOption
    {
        std::string name;     ///< "--output"
        std::string alias;    ///< "-o", or empty
        std::string value;    ///< "NAME", or empty for a switch
        std::string help;     ///< lines separated by '\n'
        tTake take;
    };

    /// usage follows "Usage: TOOL [options] "; about is printed below it.
    CommandLine(const char* tool, const char* usage, const std::string& about);

    void add(const tOption& option) { mOptions.push_back(option); }
    void flag(const char* name, const char* help, bool& target);
    void text(const char* name, const char* value, const char* help, std::string& target, const char* alias = "");
    void number(const char* name, const char* value, const char* help, long low, long high, int& target);
    /// One of words (value i sets target = i).
    void choice(const char* name, const char* help, const std::vector<std::string>& words, int& target);
    /// --sheet (repeatable), --costume, --art-path, --default-path and --actor (repeatable).
    void content(ContentOptions& target);
    /// --max-size N: the largest page side, a power of two from 16 to 2048.
    void maxSize(int& target);
    /// --format text|json.
    void format(bool& json);
    /// The operands: at least min, at most max; what names them in messages.
    void operands(const char* what, size_t min, size_t max, std::vector<std::string>& target);
    /// Printed after the options in --help.
    void epilog(const std::string& text) { mEpilog = text; }

    /// True when the tool is to run; else it exits with status: 0 after
    /// --help, 2 after a usage error (printed with a hint).
    bool parse(int argc, char** argv, int& status);
    std::string help() const;
    /// Prints "TOOL: message (see --help)" on standard error; returns 2.
    int usageError(const std::string& message) const;

private:
    const tOption* find(const std::string& name) const;
    bool parseOne(int argc, char** argv, int& i, bool& help);

    std::string mTool;
    std::string mUsage;
    std::string mAbout;
    std::string mEpilog;
    std::vector<tOption> mOptions;
    std::string mOperandName;
    size_t mMinOperands = 0;
    size_t mMaxOperands = 0;
    std::vector<std::string>* mOperands = 0;
    std::string mError;
};

#endif
