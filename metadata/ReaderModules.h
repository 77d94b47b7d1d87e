#pragma once

#include "modules/ReaderModule.h"

// The reader modules, each loaded the first time it is wanted and kept for
// the rest of the run. Found in the folder NOMEN_MODULES names, else beside
// the running program as an install puts them, else in the build.
namespace ReaderModules {

enum class Module { Heif, Media };

// The module's readers; nullptr when it cannot be loaded (its files then
// read as holding nothing).
const ReaderModule::Api *load(Module module);

} // namespace ReaderModules
