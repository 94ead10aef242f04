// zephrin2d-dset: compiles an actor or costume JSON file into a dataset.
#include "DsetCompiler.h"
#include "ImageCheck.h"
#include "LoadReport.h"
#include "Verify.h"

#include "CGraphics2D.h"

#include <SystemData.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

static void usage(FILE* out)
{
    fprintf(out,
            "Usage: zephrin2d-dset [options] INPUT.json\n"
            "\n"
            "Compiles an actor JSON file (an object with \"Animation\") or a costume JSON\n"
            "file (an object with \"LODList\") into NAME.dsetBin and NAME.relinkBin.\n"
            "\n"
            "Options:\n"
            "  -o, --output NAME  write NAME.dsetBin and NAME.relinkBin\n"
            "                     (default: INPUT without its .json extension)\n"
            "  --verify           load the dataset back and check that it holds the same\n"
            "                     content as the JSON file (needs a GL context: headless)\n"
            "  --costume FILE     the costume that an actor's avatar pieces come from\n"
            "                     (for --verify of an actor with avatar pieces)\n"
            "  --sheet FILE       the texture sheet the actor's billboards are looked up in\n"
            "                     first, as the runtime will be given it\n"
            "  --art-path DIR     a directory searched for art (costume textures) before\n"
            "                     ZEPHRIN2D_ART_PATH; may be given more than once\n"
            "  -h, --help         show this help\n"
            "\n"
            "Every image is looked up as the runtime will for the dataset: a billboard's\n"
            "name in the sheet, then as a file beside the dataset; a costume texture\n"
            "beside the dataset, then in the art directories. A missing image is an\n"
            "error, named with where it was sought.\n"
            "\n"
            "Errors name the file and the JSON path of the offending value.\n"
            "Exit status: 0 success, 1 compile or verify error, 2 bad usage.\n");
}

int main(int argc, char** argv)
{
    std::string input, output, costume, sheet;
    bool verify = false;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "-h" || arg == "--help") {
            usage(stdout);
            return 0;
        } else if (arg == "--verify") {
            verify = true;
        } else if (arg == "--costume" || arg == "--sheet" || arg == "--art-path") {
            if (++i >= argc) {
                fprintf(stderr, "zephrin2d-dset: %s needs a value\n", arg.c_str());
                return 2;
            }
            if (arg == "--art-path")
                CSystemData::Instance()->AddArtPath(argv[i]);
            else
                (arg == "--costume" ? costume : sheet) = argv[i];
        } else if (arg == "-o" || arg == "--output") {
            if (++i >= argc) {
                fprintf(stderr, "zephrin2d-dset: %s needs a value\n", arg.c_str());
                return 2;
            }
            output = argv[i];
        } else if (!arg.empty() && arg[0] == '-') {
            fprintf(stderr, "zephrin2d-dset: unknown option %s (see --help)\n", arg.c_str());
            return 2;
        } else if (input.empty()) {
            input = arg;
        } else {
            fprintf(stderr, "zephrin2d-dset: only one input file is taken\n");
            return 2;
        }
    }
    if (input.empty()) {
        usage(stderr);
        return 2;
    }
    if (output.empty()) {
        output = input;
        if (output.size() > 5 && output.compare(output.size() - 5, 5, ".json") == 0)
            output.resize(output.size() - 5);
    }
    LoadReport report;
    std::string error;
    DsetCompiler::tKind kind = DsetCompiler::detectKind(input, error);
    std::vector<std::string> missing;
    // --verify also loads the JSON file, whose images are sought beside it.
    if (kind != DsetCompiler::KIND_UNKNOWN &&
        (!checkImages(kind, input, output + ".dsetBin", sheet, missing) ||
         (verify && !checkImages(kind, input, input, sheet, missing)))) {
        for (const std::string& m : missing)
            fprintf(stderr, "zephrin2d-dset: %s\n", m.c_str());
        return 1;
    }
    if (!DsetCompiler::compileFile(input, output, kind, error)) {
        fprintf(stderr, "zephrin2d-dset: %s\n", error.c_str());
        return 1;
    }
    printf("%s: wrote %s.dsetBin and %s.relinkBin\n", input.c_str(), output.c_str(), output.c_str());
    if (verify) {
        CGraphics2D::Instance()->init(tVect2{tFixed(16), tFixed(16)}, tColor{0, 0, 0, 255}, 0, 0);
        const bool same = verifyDataset(kind, input, output + ".dsetBin", costume, sheet, error);
        CGraphics2D::Instance()->cleanup();
        if (!same) {
            fprintf(stderr, "zephrin2d-dset: verify failed: %s\n", error.c_str());
            return 1;
        }
        printf("%s.dsetBin: verified\n", output.c_str());
    }
    if (report.count() > 0) {
        fprintf(stderr, "zephrin2d-dset: %s\n", report.summary(input).c_str());
        return 1;
    }
    return 0;
}
