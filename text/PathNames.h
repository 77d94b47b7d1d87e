#pragma once

#include <QString>

namespace PathNames {

// The last component of a path: trailing slashes do not count, and the root
// is itself.
QString lastComponent(const QString &path);

} // namespace PathNames
