// zephrin2d-check: finds what would make content load wrong, with its place.
#include "ContentCheck.h"
#include "Report.h"

#include <DebugMPI.h>

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <string>
#include <vector>

static void usage(FILE* out)
{
    fprintf(out,
            "Usage: zephrin2d-check [options] FILE...\n"
            "\n"
            "Checks scene, actor, texture-sheet, costume and dataset files against what\n"
            "the loaders read, and the images they name as the loaders find them. Each\n"
            "problem is printed once as FILE:LINE:COLUMN: error|warning: message, then a\n"
            "summary line. In a dataset the place is line 1, column = byte offset + 1.\n"
            "The --sheet, --costume and --actor files are checked too.\n"
            "\n"
            "Options:\n"
            "%s"
            "  --kind KIND         scene, actor, sheet, costume or dataset (default: from the content)\n"
            "  --format FORMAT     text (default) or json: one JSON object for other programs\n"
            "  -h, --help          show this help\n"
            "\n"
            "Exit status: 0 no errors (warnings allowed), 1 errors, 2 bad usage.\n",
            SceneOptions::help());
}

int main(int argc, char** argv)
{
    SceneOptions options;
    std::vector<std::string> files;
    ContentCheck::Kind kind = ContentCheck::Unknown;
    bool json = false;
    for (int i = 1; i < argc; ++i) {
        std::string arg = argv[i];
        if (arg == "-h" || arg == "--help") {
            usage(stdout);
            return 0;
        }
        std::string error;
        const int taken = options.parse(argc, argv, i, error);
        if (taken < 0) {
            fprintf(stderr, "zephrin2d-check: %s\n", error.c_str());
            return 2;
        }
        if (taken > 0)
            continue;
        std::string value;
        const bool hasValue = SceneOptions::splitValue(arg, value);
        if (arg == "--kind" || arg == "--format") {
            if (!hasValue && i + 1 < argc)
                value = argv[++i];
            if (arg == "--kind" && (kind = ContentCheck::kindOf(value)) == ContentCheck::Unknown) {
                fprintf(stderr, "zephrin2d-check: --kind takes scene, actor, sheet, costume or dataset\n");
                return 2;
            }
            if (arg == "--format") {
                if (value != "text" && value != "json") {
                    fprintf(stderr, "zephrin2d-check: --format takes text or json\n");
                    return 2;
                }
                json = value == "json";
            }
        } else if (arg.size() > 1 && arg[0] == '-') {
            fprintf(stderr, "zephrin2d-check: unknown option %s (see --help)\n", arg.c_str());
            return 2;
        } else {
            files.push_back(arg);
        }
    }
    if (files.empty()) {
        usage(stderr);
        return 2;
    }
    // Everything the library says while files are looked at is the checker's business, not the user's.
    Tadwick::Vell::CDebugMPI::SetHandler([](int, int, const std::string&) {});

    Report report;
    ContentCheck check(report, options);
    for (const std::string* extra : {&options.sheet, &options.costume})
        if (!extra->empty() && std::find(files.begin(), files.end(), *extra) == files.end())
            check.check(*extra, extra == &options.sheet ? ContentCheck::Sheet : ContentCheck::Unknown);
    for (const std::string& actor : options.actors)
        if (std::find(files.begin(), files.end(), actor) == files.end())
            check.check(actor, ContentCheck::Unknown);
    for (const std::string& file : files)
        check.check(file, kind);
    if (json)
        report.printJson(std::cout);
    else
        report.printText(std::cout);
    return report.errors() ? 1 : 0;
}
