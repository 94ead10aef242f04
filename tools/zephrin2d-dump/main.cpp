// zephrin2d-dump: prints the XML document of an actor or costume JSON file.
#include "DsetDump.h"
#include "DsetSource.h"
#include "LoadReport.h"

#include <QJN.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <unistd.h>

static void usage(FILE* out)
{
    fprintf(out,
            "Usage: zephrin2d-dump [--actor | --costume] FILE.json|FILE.dsetBin\n"
            "\n"
            "Prints on standard output the XML document describing an actor JSON file\n"
            "(an object with \"Animation\") or a costume JSON file (an object with\n"
            "\"LODList\"), framed by start and end lines that name the file. A dataset\n"
            "compiled from such a file (FILE.dsetBin beside its FILE.relinkBin) gives\n"
            "the same document.\n"
            "\n"
            "Options:\n"
            "  --actor      read the file as an actor (refused when it is a costume)\n"
            "  --costume    read the file as a costume (refused when it is an actor)\n"
            "  -h, --help   show this help\n"
            "\n"
            "Exit status: 0 success, 1 unreadable file or unknown content, 2 bad usage\n"
            "(including a file of the other kind than --actor or --costume asks for).\n");
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
    LoadReport report;
    std::string jsonPath = path, detected, tmp;
    const bool dataset = path.size() > 8 && path.compare(path.size() - 8, 8, ".dsetBin") == 0;
    if (dataset) {
        std::string json, error;
        const DsetSource::tKind k = DsetSource::read(path, json, error);
        if (k == DsetSource::KIND_NONE) {
            fprintf(stderr, "zephrin2d-dump: %s: %s\n", path.c_str(), error.c_str());
            return 1;
        }
        detected = k == DsetSource::KIND_ACTOR ? "actor" : "costume";
        char name[] = "/tmp/zephrin2d-dump-XXXXXX";
        const int fd = mkstemp(name);
        if (fd < 0 || write(fd, json.data(), json.size()) != static_cast<ssize_t>(json.size())) {
            fprintf(stderr, "zephrin2d-dump: cannot write a temporary file\n");
            return 1;
        }
        close(fd);
        jsonPath = tmp = name;
    }
    QJN::CJSonFile file(jsonPath, 0);
    const bool loaded = file.Load();
    if (!tmp.empty())
        unlink(tmp.c_str());
    if (!loaded) {
        fprintf(stderr, "zephrin2d-dump: %s: %s\n", path.c_str(),
                file.getError().empty() ? "cannot be read or parsed" : file.getError().c_str());
        return 1;
    }
    if (detected.empty()) {
        if (file.getRoot().isMember("Animation"))
            detected = "actor";
        else if (file.getRoot().isMember("LODList"))
            detected = "costume";
    }
    if (!kind.empty() && !detected.empty() && kind != detected) {
        fprintf(stderr, "zephrin2d-dump: %s: --%s asked for, but the file is %s\n", path.c_str(), kind.c_str(),
                detected == "actor" ? "an actor" : "a costume");
        return 2;
    }
    if (detected.empty())
        detected = kind;
    if (detected == "actor")
        actorDsetDump(path, file);
    else if (detected == "costume")
        dsetDump(path, file);
    else {
        fprintf(stderr, "zephrin2d-dump: %s: neither an actor (no \"Animation\") nor a costume (no \"LODList\")\n",
                path.c_str());
        return 1;
    }
    if (report.count() > 0) {
        fprintf(stderr, "zephrin2d-dump: %s\n", report.summary(path).c_str());
        return 1;
    }
    return 0;
}
