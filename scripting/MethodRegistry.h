#pragma once

#include <QHash>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <functional>
#include <optional>

// One call as the bridge hands it to native code: the receiver (nil for a
// class method), the arguments in order, and what the method leaves in its
// out-parameters, for the bridge to write back into the caller's boxes.
class MethodRegistry;

struct Invocation {
    const MethodRegistry *methods = nullptr; // the table the call came through
    QVariant receiver;
    QVariantList arguments;
    QList<bool> boxed;            // whether argument i came as a box to fill
    QMap<int, QVariant> outputs;  // out-parameter index -> value to store
    // A method that changes its receiver (a mutable dictionary) leaves the
    // new value here, for the bridge to write into the script's object.
    std::optional<QVariant> receiverOutput;

    bool hasBox(int index) const { return index < boxed.size() && boxed[index]; }
};

using NativeMethod = std::function<QVariant(Invocation &)>;

enum class MethodKind { Instance, Class };

// The class most desktop and toolkit services are registered under.
inline const QString MiscMethodsClass = QStringLiteral("ROZ_MiscMethods");

// The one table through which scripts reach native code: (class, exact
// selector) to native function. The number of colons in a selector is the
// number of parameters it takes.
class MethodRegistry {
public:
    void addInstanceMethod(const QString &className, const QString &selector, NativeMethod method);
    void addClassMethod(const QString &className, const QString &selector, NativeMethod method);

    const NativeMethod *find(MethodKind kind, const QString &className, const QString &selector) const;
    QStringList selectors(MethodKind kind, const QString &className) const;

    // Values of a native type answer the category methods of a class.
    void addValueClass(QMetaType type, const QString &className);
    QString valueClassName(QMetaType type) const;
    // The class whose instance methods a native value answers: NSString,
    // NSNumber, NSDate, NSArray, NSDictionary, NSData, a value class, or an
    // object's declared "nomenClassName" (else its Qt class name).
    QString classNameOf(const QVariant &value) const;

    static qsizetype parameterCount(const QString &selector) { return selector.count(u':'); }
    // "-[NSString snr:replaceWith:]", the way the system names a method.
    static QString methodName(MethodKind kind, const QString &className, const QString &selector);

private:
    void add(MethodKind kind, const QString &className, const QString &selector, NativeMethod method);

    QHash<QString, NativeMethod> m_methods;
    QMap<QString, QStringList> m_selectors;
    QHash<int, QString> m_valueClasses;
};
