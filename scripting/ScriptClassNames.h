#pragma once

#include <QString>

class QObject;
struct QMetaObject;

// The class name scripts know a native object by: the object's own
// "nomenClassName" property, else its class's "nomenClassName" class info
// (Q_CLASSINFO), else its C++ class name. The script-visible names live in
// those strings, so C++ names are free to be this system's own.
QString scriptClassName(const QObject &object);
QString scriptClassName(const QMetaObject &meta);
