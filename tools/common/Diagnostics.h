#ifndef ZEPHRIN2D_TOOLS_DIAGNOSTICS_H
#define ZEPHRIN2D_TOOLS_DIAGNOSTICS_H

#include <ostream>
#include <set>
#include <string>
#include <tuple>
#include <vector>

/// The problems a tool found, each kept once, reported compiler-style:
/// "FILE:LINE:COLUMN: error|warning|note: message", then a summary line;
/// or, for other programs, as one JSON object.
class Diagnostics
{
public:
    enum Severity { Error, Warning, Note };

    struct tDiagnostic
    {
        std::string file;
        int line;
        int column;
        Severity severity;
        std::string message;
    };

    /// tool names the summary line ("zephrin2d-check: 2 files, ...").
    explicit Diagnostics(const std::string& tool = "zephrin2d-check") : mTool(tool) {}

    void add(const std::string& file, int line, int column, Severity severity, const std::string& message);
    void error(const std::string& file, int line, int column, const std::string& message)
    {
        add(file, line, column, Error, message);
    }
    void warning(const std::string& file, int line, int column, const std::string& message)
    {
        add(file, line, column, Warning, message);
    }
    void note(const std::string& file, int line, int column, const std::string& message)
    {
        add(file, line, column, Note, message);
    }
    /// A line already in the FILE:LINE:COLUMN: SEVERITY: message form (an error when it is not).
    void addLine(const std::string& line);
    void fileChecked() { ++mFiles; }

    int errors() const { return mErrors; }
    int warnings() const { return mWarnings; }
    bool failed() const { return mErrors > 0; }
    /// The first error as FILE:LINE:COLUMN: message (empty without errors).
    std::string firstError() const;
    /// Every diagnostic as one line, in the order found.
    const std::vector<std::string>& lines() const { return mLines; }

    /// The lines by file (in the order first met) and place, then the summary line.
    void printText(std::ostream& out) const;
    /// One JSON object: {"diagnostics": [...], "files", "errors", "warnings"}.
    void printJson(std::ostream& out) const;
    void print(std::ostream& out, bool json) const { json ? printJson(out) : printText(out); }

    static const char* severityName(Severity severity);
    static std::string format(const tDiagnostic& d);

private:
    std::vector<tDiagnostic> sorted() const;

    std::string mTool;
    std::vector<tDiagnostic> mDiagnostics;
    std::vector<std::string> mLines;
    std::set<std::tuple<std::string, int, int, std::string> > mSeen;
    int mErrors = 0;
    int mWarnings = 0;
    int mNotes = 0;
    int mFiles = 0;
};

#endif
