#ifndef ZEPHRIN2D_TOOLS_DSETCOMPILER_H
#define ZEPHRIN2D_TOOLS_DSETCOMPILER_H

#include <string>

class DsetWriter;

/// Compiles actor and costume JSON files into datasets.
///
/// Errors name the file and the JSON path of the offending value, such as
/// "hero.json: Animation[2].Children[0].URL: expected a string".
namespace DsetCompiler {

enum tKind { KIND_UNKNOWN, KIND_ACTOR, KIND_COSTUME };

/// An object with "Animation" is an actor; one with "LODList" a costume.
tKind detectKind(const std::string& jsonPath, std::string& error);

bool compileActor(const std::string& jsonPath, DsetWriter& out, std::string& error);
bool compileCostume(const std::string& jsonPath, DsetWriter& out, std::string& error);

/// Compiles jsonPath into outBase.dsetBin and outBase.relinkBin.
bool compileFile(const std::string& jsonPath, const std::string& outBase, tKind& kind, std::string& error);

} // namespace DsetCompiler

#endif
