#include "Report.h"

#include <json/json.h>

#include <algorithm>
#include <memory>

void Report::add(const std::string& file, int line, int column, Severity severity, const std::string& message)
{
    if (!mSeen.insert(std::make_tuple(file, line, column, message)).second)
        return;
    mDiagnostics.push_back(tDiagnostic{file, line, column, severity, message});
    ++(severity == Error ? mErrors : mWarnings);
}

namespace {

std::string plural(int n, const char* word) { return std::to_string(n) + " " + word + (n == 1 ? "" : "s"); }

} // namespace

std::vector<Report::tDiagnostic> Report::sorted() const
{
    // By file in the order first met, then by place.
    std::vector<std::string> files;
    for (const tDiagnostic& d : mDiagnostics)
        if (std::find(files.begin(), files.end(), d.file) == files.end())
            files.push_back(d.file);
    std::vector<tDiagnostic> list = mDiagnostics;
    std::stable_sort(list.begin(), list.end(), [&files](const tDiagnostic& a, const tDiagnostic& b) {
        const long fa = std::find(files.begin(), files.end(), a.file) - files.begin();
        const long fb = std::find(files.begin(), files.end(), b.file) - files.begin();
        return std::make_tuple(fa, a.line, a.column) < std::make_tuple(fb, b.line, b.column);
    });
    return list;
}

std::string Report::firstError() const
{
    for (const tDiagnostic& d : sorted())
        if (d.severity == Error)
            return d.file + ":" + std::to_string(d.line) + ":" + std::to_string(d.column) + ": " + d.message;
    return std::string();
}

void Report::printText(std::ostream& out) const
{
    for (const tDiagnostic& d : sorted())
        out << d.file << ':' << d.line << ':' << d.column << ": " << (d.severity == Error ? "error" : "warning")
            << ": " << d.message << '\n';
    out << "zephrin2d-check: " << plural(mFiles, "file") << ", " << plural(mErrors, "error") << ", "
        << plural(mWarnings, "warning") << '\n';
}

void Report::printJson(std::ostream& out) const
{
    Json::Value root(Json::objectValue);
    Json::Value& list = root["diagnostics"] = Json::Value(Json::arrayValue);
    for (const tDiagnostic& d : sorted()) {
        Json::Value item(Json::objectValue);
        item["file"] = d.file;
        item["line"] = d.line;
        item["column"] = d.column;
        item["severity"] = d.severity == Error ? "error" : "warning";
        item["message"] = d.message;
        list.append(item);
    }
    root["files"] = mFiles;
    root["errors"] = mErrors;
    root["warnings"] = mWarnings;
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    std::unique_ptr<Json::StreamWriter> writer(builder.newStreamWriter());
    writer->write(root, &out);
    out << '\n';
}
