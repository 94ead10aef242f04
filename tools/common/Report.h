#ifndef ZEPHRIN2D_CHECK_REPORT_H
#define ZEPHRIN2D_CHECK_REPORT_H

#include <ostream>
#include <set>
#include <string>
#include <tuple>
#include <vector>

/// The problems found, each reported once, in the order found.
class Report
{
public:
    enum Severity { Error, Warning };

    struct tDiagnostic
    {
        std::string file;
        int line;
        int column;
        Severity severity;
        std::string message;
    };

    void add(const std::string& file, int line, int column, Severity severity, const std::string& message);
    void fileChecked() { ++mFiles; }

    int errors() const { return mErrors; }
    int warnings() const { return mWarnings; }
    /// The first error as FILE:LINE:COLUMN: message (empty without errors).
    std::string firstError() const;

    /// FILE:LINE:COLUMN: error|warning: message lines, then the summary line.
    void printText(std::ostream& out) const;
    /// One JSON object: {"diagnostics": [...], "files", "errors", "warnings"}.
    void printJson(std::ostream& out) const;

private:
    std::vector<tDiagnostic> sorted() const;

    std::vector<tDiagnostic> mDiagnostics;
    std::set<std::tuple<std::string, int, int, std::string> > mSeen;
    int mErrors = 0;
    int mWarnings = 0;
    int mFiles = 0;
};

#endif
