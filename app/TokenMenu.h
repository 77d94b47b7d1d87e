#pragma once

class QLineEdit;
class QToolButton;

namespace TokenMenu {

// Gives the button a menu of the tokens a prefix or suffix can hold: the
// counter, the folder name, the date tokens as the "ui" table spells them,
// and a date in a format the user types. A chosen token goes into the
// field at its cursor, as if typed there.
void attach(QToolButton &button, QLineEdit &field);

} // namespace TokenMenu
