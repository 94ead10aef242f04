// zephrin2d-dump: prints the XML document of an actor or costume JSON file.
#include "DsetDump.h"

#include <QJN.h>

#include <cstdio>
#include <string>

static void usage(FILE* out)
{
    fprintf(out,
            "Usage: zephrin2d-dump [--actor | --costume] FILE.json\n"
            "\n"
            "Prints on standard output the XML document describing an actor JSON file\n"
            "(an object with \"Animation\") or a costume JSON file (an object with\n"
            "\"LODList\"), framed by start and end lines that name the file.\n"
            "\n"
            "Options:\n"
            "  --actor      read FILE.json as an actor, whatever its keys\n"
            "  --costume    read FILE.json as a costume, whatever its keys\n"
            "  -h, --help   show this help\n"
            "\n"
            "Exit status: 0 success, 1 unreadable file or unknown content, 2 bad usage.\n");
}

int main(int argc, char** argv)
{
    std::string path, kind;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "-h" || arg == "--help") {
            usage(stdout);
            return 0;
        } else if (arg == "--actor" || arg == "--costume") {
            kind = arg.substr(2);
        } else if (!arg.empty() && arg[0] == '-') {
            fprintf(stderr, "zephrin2d-dump: unknown option %s (see --help)\n", arg.c_str());
            return 2;
        } else if (path.empty()) {
            path = arg;
        } else {
            fprintf(stderr, "zephrin2d-dump: only one file is taken\n");
            return 2;
        }
    }
    if (path.empty()) {
        usage(stderr);
        return 2;
    }
    QJN::CJSonFile file(path, 0);
    if (!file.Load()) {
        fprintf(stderr, "zephrin2d-dump: %s: %s\n", path.c_str(),
                file.getError().empty() ? "cannot be read or parsed" : file.getError().c_str());
        return 1;
    }
    if (kind.empty()) {
        if (file.getRoot().isMember("Animation"))
            kind = "actor";
        else if (file.getRoot().isMember("LODList"))
            kind = "costume";
    }
    if (kind == "actor")
        actorDsetDump(path, file);
    else if (kind == "costume")
        dsetDump(path, file);
    else {
        fprintf(stderr, "zephrin2d-dump: %s: neither an actor (no \"Animation\") nor a costume (no \"LODList\")\n",
                path.c_str());
        return 1;
    }
    return 0;
}
