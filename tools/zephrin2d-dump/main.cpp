// zephrin2d-dump: prints the XML document of an actor or costume JSON file.
#include "CommandLine.h"
#include "ContentModel.h"
#include "DsetDump.h"
#include "DsetSource.h"
#include "LoadReport.h"

#include <QJN.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <unistd.h>

static const char* const kAbout =
    "Prints on standard output the XML document describing an actor JSON file\n"
    "(an object with \"Animation\") or a costume JSON file (an object with\n"
    "\"LODList\"), framed by start and end lines that name the file. A dataset\n"
    "compiled from such a file (FILE.dsetBin beside its FILE.relinkBin) gives\n"
    "the same document. The file is FILE, or the one --actor or --costume names:\n"
    "it is then read as that kind and refused when it is the other.\n";

static const char* const kEpilog =
    "Exit status: 0 success, 1 unreadable file or unknown content, 2 bad usage\n"
    "(including a file of the other kind than --actor or --costume asks for).\n";

/// The file to dump and the kind asked for ("actor", "costume" or empty).
static bool parse(int argc, char** argv, std::string& path, std::string& kind, int& status)
{
    ContentOptions content;
    std::vector<std::string> files;
    CommandLine line("zephrin2d-dump", "FILE.json|FILE.dsetBin", kAbout);
    line.content(content);
    line.operands("file", 0, 1, files);
    line.epilog(kEpilog);
    if (!line.parse(argc, argv, status))
        return false;
    const size_t given = files.size() + content.actors.size() + !content.costume.empty();
    if (given != 1) {
        status = line.usageError(given ? "only one file is taken" : "no file given");
        return false;
    }
    kind = !content.costume.empty() ? "costume" : content.actors.empty() ? "" : "actor";
    path = !files.empty() ? files[0] : !content.costume.empty() ? content.costume : content.actors[0];
    return true;
}

int main(int argc, char** argv)
{
    std::string path, kind;
    int status = 0;
    if (!parse(argc, argv, path, kind, status))
        return status;
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
    const ContentModel::FileKind held = ContentModel::kindOf(file.getRoot());
    if (detected.empty() && (held == ContentModel::FileKind::Actor || held == ContentModel::FileKind::Costume))
        detected = ContentModel::kindName(held);
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
