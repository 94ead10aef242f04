#ifndef ZEPHRIN2D_TOOLS_DSETSOURCE_H
#define ZEPHRIN2D_TOOLS_DSETSOURCE_H

#include <string>

/// The JSON text of the actor or costume a dataset was compiled from, as far
/// as the dataset holds it (every value the XML document shows).
namespace DsetSource {

enum tKind { KIND_NONE, KIND_ACTOR, KIND_COSTUME };

/// Loads path (with its ".relinkBin") and rebuilds its JSON; KIND_NONE with
/// a message in error when the file is not a loadable actor or costume dataset.
tKind read(const std::string& path, std::string& json, std::string& error);

} // namespace DsetSource

#endif
