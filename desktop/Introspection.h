#pragma once

#include "MethodRegistry.h"

#include <QVariant>

// Describing any object for debugging: its class chain, its views, the
// methods a script can call on its class, and its instance variables (a
// native object's own properties).
namespace Introspection {

QString classNameOf(const MethodRegistry &methods, const QVariant &object);
QStringList superclassesForObject(const MethodRegistry &methods, const QVariant &object);
QVariantList classMethodsForObject(const MethodRegistry &methods, const QVariant &object);
QVariantList instanceMethodsForObject(const MethodRegistry &methods, const QVariant &object);
QStringList classMethodNamesForObject(const MethodRegistry &methods, const QVariant &object);
QStringList instanceMethodNamesForObject(const MethodRegistry &methods, const QVariant &object);
QVariantList ivarsForObject(const QVariant &object);
QString describeObject(const MethodRegistry &methods, const QVariant &object);

// The one-letter type code of a value type ("c", "i", "d", "@", ...).
QString typeCode(QMetaType type);

} // namespace Introspection
