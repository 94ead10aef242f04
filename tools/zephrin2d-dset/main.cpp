// zephrin2d-dset: compiles an actor or costume JSON file into a dataset.
#include "CommandLine.h"
#include "ContentCheck.h"
#include "DsetCompiler.h"
#include "ImageCheck.h"
#include "LoadReport.h"
#include "Paths.h"
#include "Verify.h"

#include "CGraphics2D.h"

#include <SystemData.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

static const char* const kAbout =
    "Compiles an actor JSON file (an object with \"Animation\") or a costume JSON\n"
    "file (an object with \"LODList\") into NAME.dsetBin and NAME.relinkBin.\n";

static const char* const kEpilog =
    "Every image is looked up as the runtime will for the dataset: a billboard's\n"
    "name in the sheets, then as a file beside the dataset; a costume texture\n"
    "beside the dataset, then in the art directories. A missing image is an\n"
    "error, named with where it was sought. --sheet, --costume and --art-path\n"
    "are used for the lookups and --verify; --actor and --default-path are taken\n"
    "as by every tool and not used.\n"
    "\n"
    "Errors name the file and the JSON path of the offending value.\n"
    "Exit status: 0 success, 1 compile or verify error, 2 bad usage.\n";

struct tDsetOptions
{
    ContentOptions content;
    std::vector<std::string> inputs;
    std::string input;
    std::string output;
    bool verify = false;
};

static bool parse(int argc, char** argv, tDsetOptions& o, int& status)
{
    CommandLine line("zephrin2d-dset", "INPUT.json", kAbout);
    line.text("--output", "NAME", "write NAME.dsetBin and NAME.relinkBin\n(default: INPUT without its .json extension)",
              o.output, "-o");
    line.flag("--verify", "load the dataset back and check that it holds the same\ncontent as the JSON file (needs "
                          "a GL context: headless)",
              o.verify);
    line.content(o.content);
    line.operands("input file", 1, 1, o.inputs);
    line.epilog(kEpilog);
    if (!line.parse(argc, argv, status))
        return false;
    o.input = o.inputs[0];
    if (o.output.empty())
        o.output = endsWith(o.input, ".json") ? o.input.substr(0, o.input.size() - 5) : o.input;
    for (const std::string& dir : o.content.artPaths)
        CSystemData::Instance()->AddArtPath(dir);
    return true;
}

static int verify(DsetCompiler::tKind kind, const tDsetOptions& o)
{
    std::string error;
    CGraphics2D::Instance()->init(tVect2{tFixed(16), tFixed(16)}, tColor{0, 0, 0, 255}, 0, 0);
    const bool same = verifyDataset(kind, o.input, o.output + ".dsetBin", o.content.costume, o.content.sheets, error);
    CGraphics2D::Instance()->cleanup();
    if (!same) {
        fprintf(stderr, "zephrin2d-dset: verify failed: %s\n", error.c_str());
        return 1;
    }
    printf("%s.dsetBin: verified\n", o.output.c_str());
    return 0;
}

/// What the checker refuses is not compiled: dset, check and render agree on every file.
static bool checked(const tDsetOptions& o)
{
    Diagnostics found("zephrin2d-dset");
    ContentCheck::quietly(o.content, {o.input}, ContentCheck::Unknown, found);
    for (const std::string& line : found.lines())
        if (line.find(": warning: ") == std::string::npos)
            fprintf(stderr, "%s\n", line.c_str());
    if (found.errors())
        fprintf(stderr, "zephrin2d-dset: %s: %d error%s: nothing written\n", o.input.c_str(), found.errors(),
                found.errors() == 1 ? "" : "s");
    return found.errors() == 0;
}

int main(int argc, char** argv)
{
    tDsetOptions o;
    int status = 0;
    if (!parse(argc, argv, o, status))
        return status;
    LoadReport report;
    std::string error;
    DsetCompiler::tKind kind = DsetCompiler::detectKind(o.input, error);
    std::vector<std::string> missing;
    // --verify also loads the JSON file, whose images are sought beside it.
    if (kind != DsetCompiler::KIND_UNKNOWN &&
        (!checkImages(kind, o.input, o.output + ".dsetBin", o.content.sheets, missing) ||
         (o.verify && !checkImages(kind, o.input, o.input, o.content.sheets, missing)))) {
        for (const std::string& m : missing)
            fprintf(stderr, "zephrin2d-dset: %s\n", m.c_str());
        return 1;
    }
    if (kind != DsetCompiler::KIND_UNKNOWN && !checked(o))
        return 1;
    if (!DsetCompiler::compileFile(o.input, o.output, kind, error)) {
        fprintf(stderr, "zephrin2d-dset: %s\n", error.c_str());
        return 1;
    }
    printf("%s: wrote %s.dsetBin and %s.relinkBin\n", o.input.c_str(), o.output.c_str(), o.output.c_str());
    if (o.verify && verify(kind, o) != 0)
        return 1;
    if (report.count() > 0) {
        fprintf(stderr, "zephrin2d-dset: %s\n", report.summary(o.input).c_str());
        return 1;
    }
    return 0;
}
