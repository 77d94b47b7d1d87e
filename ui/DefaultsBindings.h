#pragma once

#include <QString>
#include <QVariant>

class QWidget;

// Controls bound to a user default: a control in the interface file whose
// dynamic property "defaultsKey" names a key shows that default's value
// when the window loads, writes what the user puts in back to it, and
// follows updateValue:forKey: at once.
namespace DefaultsBindings {

inline constexpr char KeyProperty[] = "defaultsKey";

bool isBound(const QWidget *control);
void bind(QWidget *window);
// Stores the value and shows it in every control bound to the key.
void updateValue(QWidget *window, const QVariant &value, const QString &key);

} // namespace DefaultsBindings
