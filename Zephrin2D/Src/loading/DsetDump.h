#ifndef ZEPHRIN2D_DSETDUMP_H
#define ZEPHRIN2D_DSETDUMP_H

#include <glibmm/ustring.h>

namespace QJN { class CJSonFile; }

/// Prints the XML document of a loaded actor JSON file on standard output,
/// framed by start and end lines that hold the path, so that it can be cut
/// out of a log. Fixed-point fields are printed as raw 16.16 values.
void actorDsetDump(const Glib::ustring& path, QJN::CJSonFile& file);

/// The same for a costume JSON file.
void dsetDump(const Glib::ustring& path, QJN::CJSonFile& file);

#endif
