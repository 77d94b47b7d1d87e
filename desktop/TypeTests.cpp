#include "MiscMethods.h"

#include "DictionaryAdditions.h"
#include "ScriptCoertions.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QPointer>

namespace {

bool isNumber(const QVariant &value)
{
    return !ScriptCoertions::objCType(value).isEmpty();
}

// Qt's key codes for the keys the platform knew by character code.
int characterCodeOf(int key)
{
    switch (key) {
    case Qt::Key_Backspace:
        return 127;
    case Qt::Key_Delete:
        return 63272;
    case Qt::Key_Up:
        return 0xF700;
    case Qt::Key_Down:
        return 0xF701;
    case Qt::Key_Left:
        return 0xF702;
    case Qt::Key_Right:
        return 0xF703;
    default:
        return key;
    }
}

// The key event being handled, as the application's current event: a
// filter notes each key event as it passes.
class CurrentKeyEvent : public QObject {
public:
    static int key()
    {
        install();
        return instance ? instance->m_key : 0;
    }
    static void install()
    {
        if (!instance && QCoreApplication::instance()) {
            instance = new CurrentKeyEvent;
            instance->setParent(QCoreApplication::instance());
            QCoreApplication::instance()->installEventFilter(instance);
        }
    }

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease)
            m_key = static_cast<QKeyEvent *>(event)->key();
        return false;
    }

private:
    static inline QPointer<CurrentKeyEvent> instance;
    int m_key = 0;
};

} // namespace

void installKeyEventTracking()
{
    CurrentKeyEvent::install();
}

bool MiscMethods::deleteKeyPressed(const QVariant &keyCode)
{
    const int code = keyCode.typeId() == QMetaType::QString ? DictionaryAdditions::intValue(keyCode.toString())
                                                             : characterCodeOf(keyCode.toInt());
    return code == 127 || code == 8 || code == 63272;
}

bool MiscMethods::arrowKeyPressed(const QVariant &)
{
    // Left and right answer NO, as they always have.
    const int code = characterCodeOf(CurrentKeyEvent::key());
    return code == 0xF700 || code == 0xF701;
}

quint32 MiscMethods::uintForElement(const QVariant &element)
{
    if (!isNumber(element))
        return 0;
    return DictionaryAdditions::uintForKey({{QStringLiteral("v"), element}}, QStringLiteral("v"));
}

QVariant MiscMethods::stringForElement(const QVariant &element)
{
    return isThisAString(element) ? element : QVariant();
}

QVariant MiscMethods::dateForElement(const QVariant &element)
{
    return isThisADate(element) ? element : QVariant();
}

bool MiscMethods::isThisAString(const QVariant &element)
{
    return element.typeId() == QMetaType::QString;
}

bool MiscMethods::isThisAnArray(const QVariant &element)
{
    return element.typeId() == QMetaType::QVariantList || element.typeId() == QMetaType::QStringList;
}

bool MiscMethods::isThisADictionary(const QVariant &element)
{
    return element.typeId() == QMetaType::QVariantMap || element.metaType() == QMetaType::fromType<MixedKeyDictionary>();
}

bool MiscMethods::isThisANumber(const QVariant &element)
{
    return isNumber(element);
}

bool MiscMethods::isThisADate(const QVariant &element)
{
    return element.typeId() == QMetaType::QDateTime;
}

bool MiscMethods::isThisABoolean(const QVariant &element)
{
    // Every number 0 or 1 counts: the script's true and false arrive so.
    if (!isNumber(element))
        return false;
    // Read as an integer, so 1.5 counts as 1.
    const long long value = element.typeId() == QMetaType::Double || element.typeId() == QMetaType::Float
                                ? static_cast<long long>(element.toDouble())
                                : element.toLongLong();
    return value == 0 || value == 1;
}
