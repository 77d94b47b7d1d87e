#include "MethodRegistry.h"
#include "ScriptClassNames.h"

#include "ArgumentConversion.h"

#include <stdexcept>

QString MethodRegistry::methodName(MethodKind kind, const QString &className, const QString &selector)
{
    return QStringLiteral("%1[%2 %3]").arg(QChar(kind == MethodKind::Class ? u'+' : u'-')).arg(className, selector);
}

void MethodRegistry::addInstanceMethod(const QString &className, const QString &selector, NativeMethod method)
{
    add(MethodKind::Instance, className, selector, std::move(method));
}

void MethodRegistry::addClassMethod(const QString &className, const QString &selector, NativeMethod method)
{
    add(MethodKind::Class, className, selector, std::move(method));
}

void MethodRegistry::add(MethodKind kind, const QString &className, const QString &selector, NativeMethod method)
{
    const QString name = methodName(kind, className, selector);
    if (m_methods.contains(name))
        throw std::logic_error("method registered twice: " + name.toStdString());
    m_methods.insert(name, std::move(method));
    m_selectors[methodName(kind, className, QString())].append(selector);
}

const NativeMethod *MethodRegistry::find(MethodKind kind, const QString &className, const QString &selector) const
{
    const auto found = m_methods.constFind(methodName(kind, className, selector));
    return found == m_methods.constEnd() ? nullptr : &found.value();
}

QStringList MethodRegistry::selectors(MethodKind kind, const QString &className) const
{
    QStringList list = m_selectors.value(methodName(kind, className, QString()));
    list.sort();
    return list;
}

void MethodRegistry::addValueClass(QMetaType type, const QString &className)
{
    m_valueClasses.insert(type.id(), className);
}

QString MethodRegistry::valueClassName(QMetaType type) const
{
    return m_valueClasses.value(type.id());
}

QString MethodRegistry::classNameOf(const QVariant &value) const
{
    switch (value.typeId()) {
    case QMetaType::QString:
        return QStringLiteral("NSString");
    case QMetaType::QDateTime:
        return QStringLiteral("NSDate");
    case QMetaType::QVariantList: case QMetaType::QStringList:
        return QStringLiteral("NSArray");
    case QMetaType::QVariantMap:
        return QStringLiteral("NSDictionary");
    case QMetaType::QByteArray:
        return QStringLiteral("NSData");
    case QMetaType::QObjectStar: {
        const QObject *object = value.value<QObject *>();
        return object ? scriptClassName(*object) : QStringLiteral("NSObject");
    }
    default:
        break;
    }
    if (ArgumentConversion::isNumber(value) || value.typeId() == QMetaType::Bool)
        return QStringLiteral("NSNumber");
    const QString name = valueClassName(value.metaType());
    return name.isEmpty() ? QString::fromLatin1(value.metaType().name()) : name;
}
