// zephrin2d-check: finds what would make content load wrong, with its place.
#include "CommandLine.h"
#include "ContentCheck.h"
#include "Diagnostics.h"

#include <DebugMPI.h>

#include <algorithm>
#include <iostream>
#include <string>
#include <vector>

static const char* const kAbout =
    "Checks scene, actor, texture-sheet, costume and dataset files against what\n"
    "the loaders read, and the images they name as the loaders find them. Each\n"
    "problem is printed once as FILE:LINE:COLUMN: error|warning: message, then a\n"
    "summary line. In a dataset the place is line 1, column = byte offset + 1.\n"
    "The --sheet, --costume and --actor files are checked too.\n";

int main(int argc, char** argv)
{
    SceneOptions options;
    std::vector<std::string> files;
    int kind = -1;  // the index of a --kind word, the enumerators following Unknown
    bool json = false;
    CommandLine line("zephrin2d-check", "FILE...", kAbout);
    line.content(options);
    line.choice("--kind", "scene, actor, sheet, costume or dataset (default: from the content)",
                {"scene", "actor", "sheet", "costume", "dataset"}, kind);
    line.format(json);
    line.operands("files", 0, 100000, files);
    line.epilog("Exit status: 0 no errors (warnings allowed), 1 errors, 2 bad usage.\n");
    int status = 0;
    if (!line.parse(argc, argv, status))
        return status;
    if (files.empty() && options.sheets.empty() && options.costume.empty() && options.actors.empty())
        return line.usageError("no files given");
    // Everything the library says while files are looked at is the checker's business, not the user's.
    Tadwick::Vell::CDebugMPI::SetHandler([](int, int, const std::string&) {});

    Diagnostics report("zephrin2d-check");
    ContentCheck check(report, options);
    std::vector<std::string> extras = options.sheets;
    extras.push_back(options.costume);
    extras.insert(extras.end(), options.actors.begin(), options.actors.end());
    for (size_t i = 0; i < extras.size(); ++i)
        if (!extras[i].empty() && std::find(files.begin(), files.end(), extras[i]) == files.end())
            check.check(extras[i], i < options.sheets.size() ? ContentCheck::Sheet : ContentCheck::Unknown);
    for (const std::string& file : files)
        check.check(file, static_cast<ContentCheck::Kind>(kind + 1));
    report.print(std::cout, json);
    return report.errors() ? 1 : 0;
}
