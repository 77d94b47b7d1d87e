#pragma once

#include <QString>

// The data folder of an installed copy of Nomen (resources, translations):
// share/nomen beside the bin folder that holds the running program, found
// from the program's own place so an install under any prefix, or one
// moved elsewhere, finds its own. "" when the program is not run from an
// installed copy (from the build folder, say).
namespace InstalledData {

QString folder();

} // namespace InstalledData
