#ifndef ZEPHRIN2D_TOOLS_LOADREPORT_H
#define ZEPHRIN2D_TOOLS_LOADREPORT_H

#include <string>

/// Counts what loading reported: every failed assertion and the loaders'
/// failure messages on the debug service, whatever the debug level. Reports
/// still go where they went before. One at a time: it listens while it lives.
class LoadReport
{
public:
    LoadReport();
    ~LoadReport();

    void reset();
    /// Problems found beforehand by the content checker, first the first of
    /// them. Most are also reported while loading, so the count is the larger
    /// of the two, and the checker's first (which has a place) is shown.
    void add(int count, const std::string& first);
    int count() const { return mCount > mFound ? mCount : mFound; }
    const std::string& first() const { return mFirst; }

    /// One line naming the file, the count and the first problem, and
    /// suggesting zephrin2d-check (with checkArguments, default: the file) for the details.
    std::string summary(const std::string& file, const std::string& checkArguments = std::string()) const;

    /// Whether a debug message reports content that did not load.
    static bool isFailure(int level, const std::string& text);

private:
    LoadReport(const LoadReport&);
    LoadReport& operator=(const LoadReport&);
    void note(const std::string& text);

    int mCount;
    int mFound;
    std::string mFirst;
};

#endif
