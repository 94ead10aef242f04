#ifndef ZEPHRIN2D_TOOLS_IMAGECHECK_H
#define ZEPHRIN2D_TOOLS_IMAGECHECK_H

#include "DsetCompiler.h"

#include <string>
#include <vector>

/// Finds every image an actor or costume names the way the runtime will for
/// a dataset at datasetPath: a billboard's name in the texture sheet first
/// (when there is one), then as a file in the dataset's directory; a costume
/// texture beside the dataset, then through the art lookup. Each image found
/// nowhere gives one message in missing, naming it and where it was sought.
bool checkImages(DsetCompiler::tKind kind, const std::string& jsonPath, const std::string& datasetPath,
                 const std::vector<std::string>& sheetPaths, std::vector<std::string>& missing);

#endif
