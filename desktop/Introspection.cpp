#include "Introspection.h"
#include "ScriptClassNames.h"

#include "ScriptCoertions.h"

#include <QMetaMethod>
#include <QMetaProperty>
#include <QObject>
#include <QWidget>

namespace Introspection {

namespace {

QObject *objectOf(const QVariant &value)
{
    return (value.metaType().flags() & QMetaType::PointerToQObject) ? value.value<QObject *>() : nullptr;
}

// A class name a script gives stands for that class.
QString targetClass(const MethodRegistry &methods, const QVariant &object, MethodKind kind)
{
    if (object.typeId() == QMetaType::QString) {
        const QString name = object.toString();
        if (!methods.selectors(kind, name).isEmpty())
            return name;
    }
    return classNameOf(methods, object);
}

QString encodingFor(qsizetype parameters)
{
    return QStringLiteral("@@:") + QString(parameters, u'@');
}

QVariantList methodRecords(const MethodRegistry &methods, const QVariant &object, MethodKind kind)
{
    QVariantList records;
    QStringList selectors = methods.selectors(kind, targetClass(methods, object, kind));
    if (kind == MethodKind::Instance) {
        if (const QObject *native = objectOf(object)) {
            const QMetaObject *meta = native->metaObject();
            for (int i = meta->methodOffset(); i < meta->methodCount(); ++i) {
                const QMetaMethod method = meta->method(i);
                if (method.access() == QMetaMethod::Public && method.methodType() != QMetaMethod::Signal
                    && !selectors.contains(QString::fromLatin1(method.name())))
                    selectors.append(QString::fromLatin1(method.name()));
            }
        }
    }
    // Each list is walked from its last method to its first.
    for (auto it = selectors.crbegin(); it != selectors.crend(); ++it)
        records.append(QVariantMap{{QStringLiteral("method_name"), *it},
                                   {QStringLiteral("method_types"), encodingFor(MethodRegistry::parameterCount(*it))}});
    return records;
}

QStringList namesOf(const QVariantList &records)
{
    QStringList names;
    for (const QVariant &record : records)
        names.append(record.toMap().value(QStringLiteral("method_name")).toString());
    return names;
}

QString pointerText(const void *address)
{
    return QStringLiteral("0x%1").arg(quintptr(address), 0, 16);
}

QString describeValue(const QVariant &value)
{
    if (!value.isValid() || value.typeId() == QMetaType::Nullptr)
        return QStringLiteral("<null>");
    if (value.typeId() == QMetaType::Bool)
        return value.toBool() ? QStringLiteral("1") : QStringLiteral("0");
    if (const QObject *object = objectOf(value))
        return QStringLiteral("<%1: %2>").arg(scriptClassName(*object->metaObject()), pointerText(object));
    if (value.canConvert<QString>())
        return value.toString();
    return QStringLiteral("<%1>").arg(QString::fromLatin1(value.typeName()));
}

} // namespace

QString typeCode(QMetaType type)
{
    if (const QString number = ScriptCoertions::objCType(type); !number.isEmpty())
        return number;
    switch (type.id()) {
    case QMetaType::QString:
    case QMetaType::QStringList:
    case QMetaType::QVariantList:
    case QMetaType::QVariantMap:
    case QMetaType::QDateTime:
    case QMetaType::QByteArray:
        return QStringLiteral("@");
    default:
        return (type.flags() & QMetaType::PointerToQObject) ? QStringLiteral("@") : QStringLiteral("{") + QString::fromLatin1(type.name()) + u'}';
    }
}

QString classNameOf(const MethodRegistry &methods, const QVariant &object)
{
    if (const QObject *native = objectOf(object))
        return scriptClassName(*native);
    if (!object.isValid() || object.typeId() == QMetaType::Nullptr)
        return QStringLiteral("NSNull");
    if (!ScriptCoertions::objCType(object).isEmpty())
        return QStringLiteral("NSNumber");
    switch (object.typeId()) {
    case QMetaType::QString:
        return QStringLiteral("NSString");
    case QMetaType::QVariantList:
    case QMetaType::QStringList:
        return QStringLiteral("NSArray");
    case QMetaType::QVariantMap:
        return QStringLiteral("NSDictionary");
    case QMetaType::QDateTime:
        return QStringLiteral("NSDate");
    case QMetaType::QByteArray:
        return QStringLiteral("NSData");
    case QMetaType::QSizeF:
    case QMetaType::QPointF:
    case QMetaType::QRectF:
        return QStringLiteral("NSValue");
    default:
        break;
    }
    if (object.metaType() == QMetaType::fromType<MixedKeyDictionary>())
        return QStringLiteral("NSDictionary");
    const QString registered = methods.valueClassName(object.metaType());
    return registered.isEmpty() ? QString::fromLatin1(object.typeName()) : registered;
}

QStringList superclassesForObject(const MethodRegistry &methods, const QVariant &object)
{
    const QString name = classNameOf(methods, object);
    if (const QObject *native = objectOf(object)) {
        QStringList chain;
        for (const QMetaObject *meta = native->metaObject(); meta; meta = meta->superClass())
            chain.append(scriptClassName(*meta));
        if (chain.first() != name)
            chain.prepend(name);
        return chain;
    }
    if (name == QLatin1String("NSNumber"))
        return {name, QStringLiteral("NSValue"), QStringLiteral("NSObject")};
    return {name, QStringLiteral("NSObject")};
}

QVariantList classMethodsForObject(const MethodRegistry &methods, const QVariant &object)
{
    return methodRecords(methods, object, MethodKind::Class);
}

QVariantList instanceMethodsForObject(const MethodRegistry &methods, const QVariant &object)
{
    return methodRecords(methods, object, MethodKind::Instance);
}

QStringList classMethodNamesForObject(const MethodRegistry &methods, const QVariant &object)
{
    return namesOf(classMethodsForObject(methods, object));
}

QStringList instanceMethodNamesForObject(const MethodRegistry &methods, const QVariant &object)
{
    return namesOf(instanceMethodsForObject(methods, object));
}

QVariantList ivarsForObject(const QVariant &object)
{
    QVariantList records;
    const QObject *native = objectOf(object);
    if (!native)
        return records;
    const QMetaObject *meta = native->metaObject();
    for (int i = meta->propertyOffset(); i < meta->propertyCount(); ++i) {
        const QMetaProperty property = meta->property(i);
        const QString type = typeCode(property.metaType());
        // Values of types without a one-letter code are the null object.
        const QVariant value = type.size() == 1 ? property.read(native) : QVariant::fromValue(nullptr);
        records.append(QVariantMap{{QStringLiteral("ivar_name"), QString::fromLatin1(property.name())},
                                   {QStringLiteral("ivar_type"), type},
                                   {QStringLiteral("ivar_offset"), i},
                                   {QStringLiteral("ivar_object"), value}});
    }
    return records;
}

QString describeObject(const MethodRegistry &methods, const QVariant &object)
{
    const QString name = classNameOf(methods, object);
    const QObject *native = objectOf(object);
    QString text = QStringLiteral("\n\nobject <%1:%2>\n").arg(name, pointerText(native ? native : object.constData()));
    text += QStringLiteral("class: %1\n").arg(name);
    const QStringList chain = superclassesForObject(methods, object);
    for (qsizetype i = 1; i < chain.size(); ++i)
        text += QStringLiteral("super %1: %2\n").arg(i).arg(chain[i]);
    text += QStringLiteral("\nsuperviews:\n");
    if (const auto *widget = qobject_cast<const QWidget *>(native)) {
        int number = 1;
        for (const QWidget *view = widget->parentWidget(); view; view = view->parentWidget())
            text += QStringLiteral("superview %1: <%2: %3>\n")
                        .arg(number++)
                        .arg(scriptClassName(*view->metaObject()), pointerText(view));
    } else {
        text += QStringLiteral("n/a\n");
    }
    text += QStringLiteral("\nclass methods:\n%1\n\n").arg(classMethodNamesForObject(methods, object).join(QStringLiteral(", ")));
    text += QStringLiteral("instance methods:\n%1\n\n").arg(instanceMethodNamesForObject(methods, object).join(QStringLiteral(", ")));
    text += QStringLiteral("ivars:\n");
    for (const QVariant &record : ivarsForObject(object)) {
        const QVariantMap ivar = record.toMap();
        text += QStringLiteral("\t%1: (%2) %3\n")
                    .arg(ivar.value(QStringLiteral("ivar_name")).toString(), ivar.value(QStringLiteral("ivar_type")).toString(),
                         describeValue(ivar.value(QStringLiteral("ivar_object"))));
    }
    return text + u'\n';
}

} // namespace Introspection
