#include "CommandLine.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <algorithm>

CommandLine::CommandLine(const char* tool, const char* usage, const std::string& about)
    : mTool(tool), mUsage(usage), mAbout(about)
{
}

void CommandLine::flag(const char* name, const char* help, bool& target)
{
    bool* t = &target;
    add(tOption{name, "", "", help, [t](const std::string&) { *t = true; return std::string(); }});
}

void CommandLine::text(const char* name, const char* value, const char* help, std::string& target, const char* alias)
{
    std::string* t = &target;
    const std::string option = name;
    add(tOption{name, alias, value, help, [t, option](const std::string& v) {
                    *t = v;
                    return v.empty() ? option + " needs a value" : std::string();
                }});
}

namespace {

bool toLong(const std::string& text, long low, long high, long& out)
{
    if (text.empty() || text.size() > 12)
        return false;
    char* end = 0;
    errno = 0;
    out = std::strtol(text.c_str(), &end, 10);
    return errno == 0 && *end == '\0' && out >= low && out <= high;
}

} // namespace

void CommandLine::number(const char* name, const char* value, const char* help, long low, long high, int& target)
{
    int* t = &target;
    const std::string message = std::string(name) + " takes a number from " + std::to_string(low) + " to " +
                                std::to_string(high);
    add(tOption{name, "", value, help, [=](const std::string& v) {
                    long n = 0;
                    if (!toLong(v, low, high, n))
                        return message + ", not '" + v + "'";
                    *t = static_cast<int>(n);
                    return std::string();
                }});
}

void CommandLine::choice(const char* name, const char* help, const std::vector<std::string>& words, int& target)
{
    int* t = &target;
    std::string list;
    for (size_t i = 0; i < words.size(); ++i)
        list += (i == 0 ? "" : i + 1 == words.size() ? " or " : ", ") + words[i];
    const std::string message = std::string(name) + " takes " + list;
    add(tOption{name, "", "WORD", help, [=](const std::string& v) {
                    for (size_t i = 0; i < words.size(); ++i)
                        if (words[i] == v) {
                            *t = static_cast<int>(i);
                            return std::string();
                        }
                    return message + ", not '" + v + "'";
                }});
}

void CommandLine::content(ContentOptions& o)
{
    ContentOptions* t = &o;
    auto need = [](const char* name, const std::string& v) {
        return v.empty() ? std::string(name) + " needs a value" : std::string();
    };
    add(tOption{"--sheet", "", "FILE", "a texture-sheet description for the billboards; repeatable,\nevery sheet is loaded",
                [=](const std::string& v) { t->sheets.push_back(v); return need("--sheet", v); }});
    add(tOption{"--costume", "", "FILE", "an avatar costume (JSON or .dsetBin) for avatar pieces",
                [=](const std::string& v) { t->costume = v; return need("--costume", v); }});
    add(tOption{"--art-path", "", "DIR", "a directory searched for art (before ZEPHRIN2D_ART_PATH);\nrepeatable",
                [=](const std::string& v) { t->artPaths.push_back(v); return need("--art-path", v); }});
    add(tOption{"--default-path", "", "P",
                "prefix of billboard file names (plain concatenation;\ndefault: the scene file's directory)",
                [=](const std::string& v) {
                    t->defaultPath = v;
                    t->hasDefaultPath = true;
                    return std::string();
                }});
    add(tOption{"--actor", "", "FILE", "an actor file (JSON or .dsetBin), at its own position,\nwith the sheets and costume; repeatable",
                [=](const std::string& v) { t->actors.push_back(v); return need("--actor", v); }});
}

void CommandLine::maxSize(int& target)
{
    int* t = &target;
    add(tOption{"--max-size", "", "N", "largest page side, a power of two from 16 to 2048\n(default " +
                                           std::to_string(target) + ")",
                [t](const std::string& v) {
                    long n = 0;
                    if (!toLong(v, 16, 2048, n) || (n & (n - 1)) != 0)
                        return "--max-size takes a power of two from 16 to 2048, not '" + v + "'";
                    *t = static_cast<int>(n);
                    return std::string();
                }});
}

void CommandLine::format(bool& json)
{
    bool* t = &json;
    add(tOption{"--format", "", "FORMAT", "text (default) or json: one JSON object for other programs",
                [t](const std::string& v) {
                    if (v != "text" && v != "json")
                        return "--format takes text or json, not '" + v + "'";
                    *t = v == "json";
                    return std::string();
                }});
}

void CommandLine::operands(const char* what, size_t min, size_t max, std::vector<std::string>& target)
{
    mOperandName = what;
    mMinOperands = min;
    mMaxOperands = max;
    mOperands = &target;
}

const CommandLine::tOption* CommandLine::find(const std::string& name) const
{
    for (const tOption& o : mOptions)
        if (o.name == name || (!o.alias.empty() && o.alias == name))
            return &o;
    return 0;
}

int CommandLine::usageError(const std::string& message) const
{
    std::fprintf(stderr, "%s: %s (see --help)\n", mTool.c_str(), message.c_str());
    return 2;
}

bool CommandLine::parseOne(int argc, char** argv, int& i, bool& help)
{
    std::string arg = argv[i], value;
    if (arg.size() < 2 || arg[0] != '-') {
        if (!mOperands || mOperands->size() >= mMaxOperands) {
            mError = mOperands && mMaxOperands > 0 ? "only " + std::to_string(mMaxOperands) + " " + mOperandName +
                                                         " taken, got '" + arg + "' as well"
                                                   : "unexpected argument '" + arg + "'";
            return false;
        }
        mOperands->push_back(arg);
        return true;
    }
    const size_t eq = arg.compare(0, 2, "--") == 0 ? arg.find('=') : std::string::npos;
    const bool hasValue = eq != std::string::npos;
    if (hasValue) {
        value = arg.substr(eq + 1);
        arg.resize(eq);
    }
    if (arg == "-h" || arg == "--help") {
        help = true;
        return true;
    }
    const tOption* option = find(arg);
    if (!option) {
        mError = "unknown option '" + arg + "'";
        return false;
    }
    if (option->value.empty() && hasValue) {
        mError = arg + " takes no value";
        return false;
    }
    if (!option->value.empty() && !hasValue) {
        if (i + 1 >= argc) {
            mError = arg + " needs a value";
            return false;
        }
        value = argv[++i];
    }
    mError = option->take(value);
    return mError.empty();
}

bool CommandLine::parse(int argc, char** argv, int& status)
{
    bool help = false;
    int i = 1;
    for (; i < argc && std::string(argv[i]) != "--"; ++i)
        if (!parseOne(argc, argv, i, help)) {
            status = usageError(mError);
            return false;
        }
    for (++i; i < argc; ++i) {
        if (!mOperands || mOperands->size() >= mMaxOperands) {
            status = usageError(std::string("unexpected argument '") + argv[i] + "'");
            return false;
        }
        mOperands->push_back(argv[i]);
    }
    if (help) {
        std::fputs(this->help().c_str(), stdout);
        status = 0;
        return false;
    }
    if (mOperands && mOperands->size() < mMinOperands) {
        status = usageError("no " + mOperandName + " given");
        return false;
    }
    return true;
}

std::string CommandLine::help() const
{
    std::vector<std::pair<std::string, std::string> > rows;
    for (const tOption& o : mOptions)
        rows.push_back(std::make_pair((o.alias.empty() ? "" : o.alias + ", ") + o.name +
                                          (o.value.empty() ? "" : " " + o.value),
                                      o.help));
    rows.push_back(std::make_pair("-h, --help", "show this help"));
    size_t width = 18;
    for (const auto& row : rows)
        width = std::min<size_t>(24, std::max(width, row.first.size() + 2));
    std::string text = "Usage: " + mTool + " [options] " + mUsage + "\n\n" + mAbout + "\nOptions:\n";
    for (const auto& row : rows) {
        text += "  " + row.first;
        text += row.first.size() + 2 > width ? "\n  " + std::string(width, ' ') : std::string(width - row.first.size(), ' ');
        for (char c : row.second)
            text += c == '\n' ? "\n  " + std::string(width, ' ') : std::string(1, c);
        text += "\n";
    }
    return text + (mEpilog.empty() ? "" : "\n" + mEpilog);
}
