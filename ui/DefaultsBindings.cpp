#include "DefaultsBindings.h"

#include "OutletValues.h"
#include "UserDefaults.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLineEdit>

namespace DefaultsBindings {

namespace {

QString keyOf(const QWidget *control)
{
    return control->property(KeyProperty).toString();
}

void writeBack(QWidget *control)
{
    UserDefaults::writeDefault(OutletValues::contentsOf(control), keyOf(control));
}

// Only what the user does is written back: a value set by the program
// came from the default in the first place.
void watch(QWidget *control)
{
    if (auto *field = qobject_cast<QLineEdit *>(control))
        QObject::connect(field, &QLineEdit::textEdited, field, [field] { writeBack(field); });
    else if (auto *button = qobject_cast<QAbstractButton *>(control))
        QObject::connect(button, &QAbstractButton::clicked, button, [button] { writeBack(button); });
    else if (auto *popup = qobject_cast<QComboBox *>(control))
        QObject::connect(popup, &QComboBox::activated, popup, [popup] { writeBack(popup); });
}

} // namespace

bool isBound(const QWidget *control)
{
    return !keyOf(control).isEmpty();
}

void bind(QWidget *window)
{
    for (QWidget *control : window->findChildren<QWidget *>()) {
        if (!isBound(control))
            continue;
        const QVariant value = UserDefaults::readDefault(keyOf(control));
        if (value.isValid())
            OutletValues::setContents(control, value);
        watch(control);
    }
}

void updateValue(QWidget *window, const QVariant &value, const QString &key)
{
    UserDefaults::writeDefault(value, key);
    if (!window)
        return;
    for (QWidget *control : window->findChildren<QWidget *>())
        if (keyOf(control) == key)
            OutletValues::setContents(control, value);
}

} // namespace DefaultsBindings
