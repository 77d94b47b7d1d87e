#pragma once

#include <QString>

// Where the application's resources are: the folder named by
// NOMEN_RESOURCES, else an installed copy's data folder, else the source
// folder the build was configured from.
namespace ResourceFolder {

QString path();
// The information property list (name, identifier, version): the one in
// the resource folder when it holds one, else the one the build made.
QString infoPlistPath();

} // namespace ResourceFolder
