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
    int count() const { return mCount; }
    const std::string& first() const { return mFirst; }

    /// One line naming the file, the count and the first problem, and
    /// suggesting zephrin2d-check for the details.
    std::string summary(const std::string& file) const;

    /// Whether a debug message reports content that did not load.
    static bool isFailure(int level, const std::string& text);

private:
    LoadReport(const LoadReport&);
    LoadReport& operator=(const LoadReport&);
    void note(const std::string& text);

    int mCount;
    std::string mFirst;
};

#endif
