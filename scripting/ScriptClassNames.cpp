#include "ScriptClassNames.h"

#include <QMetaClassInfo>
#include <QObject>

QString scriptClassName(const QMetaObject &meta)
{
    // Class info is inherited: only the class's own counts.
    const int index = meta.indexOfClassInfo("nomenClassName");
    if (index >= meta.classInfoOffset())
        return QString::fromLatin1(meta.classInfo(index).value());
    return QString::fromLatin1(meta.className());
}

QString scriptClassName(const QObject &object)
{
    const QVariant declared = object.property("nomenClassName");
    return declared.isValid() ? declared.toString() : scriptClassName(*object.metaObject());
}
