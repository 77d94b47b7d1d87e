#pragma once

#include <QVariant>

class QSettings;
class QWidget;

// What the main script reads from and writes to a control, whatever its
// kind: a text field's text, a check box's or radio button's state, a
// popup's selected title, a matrix's selected cell (its radio buttons in
// order), a label's text, a progress bar's value.
namespace OutletValues {

QVariant contentsOf(const QWidget *control);
// A popup's selected index, a matrix's selected cell; -1 for none or for
// another kind of control.
int selectedIndexOf(const QWidget *control);
// A popup takes a title or an index; a matrix the index of its cell.
// False when the control cannot hold the value.
bool setContents(QWidget *control, const QVariant &value);

// The rule and listing controls and the window's geometry, kept between
// runs. Fields the program fills itself (the preview) are left out.
void saveState(const QWidget *window, QSettings &settings);
void restoreState(QWidget *window, const QSettings &settings);

} // namespace OutletValues
