#pragma once

#include <QString>

// Where the application's resources are: the folder named by
// NOMEN_RESOURCES, else the one the build was configured with.
namespace ResourceFolder {

QString path();
// The information property list (name, identifier, version): the one in
// the resource folder when it holds one, else the one the build made.
QString infoPlistPath();

} // namespace ResourceFolder
