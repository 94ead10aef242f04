#include "Diagnostics.h"

#include <json/json.h>

#include <algorithm>
#include <cstdio>
#include <memory>

void Diagnostics::add(const std::string& file, int line, int column, Severity severity, const std::string& message)
{
    if (!mSeen.insert(std::make_tuple(file, line, column, message)).second)
        return;
    mDiagnostics.push_back(tDiagnostic{file, line, column, severity, message});
    mLines.push_back(format(mDiagnostics.back()));
    ++(severity == Error ? mErrors : severity == Warning ? mWarnings : mNotes);
}

void Diagnostics::addLine(const std::string& text)
{
    // FILE may hold ':' itself: the place is the last "N:N: severity: " in front of the message.
    static const char* const kinds[] = {": error: ", ": warning: ", ": note: "};
    for (int k = 0; k < 3; ++k) {
        const size_t at = text.find(kinds[k]);
        int line = 0, column = 0;
        const size_t c2 = at == std::string::npos ? at : text.rfind(':', at - 1);
        const size_t c1 = c2 == std::string::npos || c2 == 0 ? std::string::npos : text.rfind(':', c2 - 1);
        if (c1 != std::string::npos && std::sscanf(text.c_str() + c1, ":%d:%d", &line, &column) == 2) {
            add(text.substr(0, c1), line, column, static_cast<Severity>(k),
                text.substr(at + std::string(kinds[k]).size()));
            return;
        }
    }
    add(text, 1, 1, Error, "failed");
}

namespace {

std::string plural(int n, const char* word) { return std::to_string(n) + " " + word + (n == 1 ? "" : "s"); }

} // namespace

const char* Diagnostics::severityName(Severity severity)
{
    return severity == Error ? "error" : severity == Warning ? "warning" : "note";
}

std::string Diagnostics::format(const tDiagnostic& d)
{
    return d.file + ":" + std::to_string(d.line) + ":" + std::to_string(d.column) + ": " + severityName(d.severity) +
           ": " + d.message;
}

std::vector<Diagnostics::tDiagnostic> Diagnostics::sorted() const
{
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

std::string Diagnostics::firstError() const
{
    for (const tDiagnostic& d : sorted())
        if (d.severity == Error)
            return d.file + ":" + std::to_string(d.line) + ":" + std::to_string(d.column) + ": " + d.message;
    return std::string();
}

void Diagnostics::printText(std::ostream& out) const
{
    for (const tDiagnostic& d : sorted())
        out << format(d) << '\n';
    out << mTool << ": " << plural(mFiles, "file") << ", " << plural(mErrors, "error") << ", "
        << plural(mWarnings, "warning") << (mNotes ? ", " + plural(mNotes, "note") : std::string()) << '\n';
}

void Diagnostics::printJson(std::ostream& out) const
{
    Json::Value root(Json::objectValue);
    Json::Value& list = root["diagnostics"] = Json::Value(Json::arrayValue);
    for (const tDiagnostic& d : sorted()) {
        Json::Value item(Json::objectValue);
        item["file"] = d.file;
        item["line"] = d.line;
        item["column"] = d.column;
        item["severity"] = severityName(d.severity);
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
