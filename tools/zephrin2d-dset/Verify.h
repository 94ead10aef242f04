#ifndef ZEPHRIN2D_TOOLS_VERIFY_H
#define ZEPHRIN2D_TOOLS_VERIFY_H

#include "DsetCompiler.h"

#include <string>
#include <vector>

/// Loads a compiled dataset back and checks that it holds the same content
/// as its JSON source; on a difference, error says where.
/// costumePath (may be empty) dresses an actor's avatar pieces; billboards
/// look their images up in the texture sheets at sheetPaths (may be none) first.
bool verifyDataset(DsetCompiler::tKind kind, const std::string& jsonPath, const std::string& dsetPath,
                   const std::string& costumePath, const std::vector<std::string>& sheetPaths, std::string& error);

#endif
