#include "OutletValues.h"

#include "DefaultsBindings.h"

#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QRadioButton>
#include <QSettings>
#include <QTableView>

namespace OutletValues {

namespace {

QList<QRadioButton *> cellsOf(const QWidget *matrix)
{
    return matrix->findChildren<QRadioButton *>(QString(), Qt::FindDirectChildrenOnly);
}

bool isMatrix(const QWidget *control)
{
    return !qobject_cast<const QAbstractButton *>(control) && !cellsOf(control).isEmpty();
}

// Controls whose state is the user's rule or listing choice; one bound to a
// user default keeps its state there instead.
bool isRemembered(const QWidget *control)
{
    if (control->objectName().isEmpty() || control->objectName().startsWith(QLatin1String("qt_"))
        || DefaultsBindings::isBound(control))
        return false;
    if (const auto *field = qobject_cast<const QLineEdit *>(control))
        return !field->isReadOnly();
    return qobject_cast<const QAbstractButton *>(control) ? static_cast<const QAbstractButton *>(control)->isCheckable()
                                                          : qobject_cast<const QComboBox *>(control) != nullptr;
}

} // namespace

QVariant contentsOf(const QWidget *control)
{
    if (!control)
        return QVariant();
    if (const auto *field = qobject_cast<const QLineEdit *>(control))
        return field->text();
    if (const auto *button = qobject_cast<const QAbstractButton *>(control))
        return button->isCheckable() ? QVariant(button->isChecked()) : QVariant(button->text());
    if (const auto *popup = qobject_cast<const QComboBox *>(control))
        return popup->currentText();
    if (const auto *label = qobject_cast<const QLabel *>(control))
        return label->text();
    if (const auto *bar = qobject_cast<const QProgressBar *>(control))
        return double(bar->value());
    if (isMatrix(control)) {
        const QList<QRadioButton *> cells = cellsOf(control);
        for (qsizetype i = 0; i < cells.size(); ++i)
            if (cells[i]->isChecked())
                return int(i);
        return -1;
    }
    return QVariant();
}

int selectedIndexOf(const QWidget *control)
{
    if (const auto *popup = qobject_cast<const QComboBox *>(control))
        return popup->currentIndex();
    return control && isMatrix(control) ? contentsOf(control).toInt() : -1;
}

bool setContents(QWidget *control, const QVariant &value)
{
    if (!control)
        return false;
    const bool isText = value.typeId() == QMetaType::QString;
    if (auto *field = qobject_cast<QLineEdit *>(control)) {
        field->setText(value.toString());
        return true;
    }
    if (auto *button = qobject_cast<QAbstractButton *>(control)) {
        if (!button->isCheckable())
            return false;
        button->setChecked(value.toBool());
        return true;
    }
    if (auto *popup = qobject_cast<QComboBox *>(control)) {
        const int index = isText ? popup->findText(value.toString()) : value.toInt();
        if (index < 0 || index >= popup->count())
            return false;
        popup->setCurrentIndex(index);
        return true;
    }
    if (auto *label = qobject_cast<QLabel *>(control)) {
        label->setText(value.toString());
        return true;
    }
    if (auto *bar = qobject_cast<QProgressBar *>(control)) {
        bar->setValue(value.toInt());
        return true;
    }
    if (isMatrix(control)) {
        const QList<QRadioButton *> cells = cellsOf(control);
        const int index = value.toInt();
        if (isText || index < 0 || index >= cells.size())
            return false;
        cells[index]->setChecked(true);
        return true;
    }
    return false;
}

void saveState(const QWidget *window, QSettings &settings)
{
    settings.setValue(QStringLiteral("window/geometry"), window->saveGeometry());
    // Column widths and order as the user left them.
    for (const QTableView *table : window->findChildren<QTableView *>())
        if (!table->objectName().isEmpty())
            settings.setValue(QStringLiteral("columns/") + table->objectName(), table->horizontalHeader()->saveState());
    settings.beginGroup(QStringLiteral("controls"));
    settings.remove(QString());
    for (const QWidget *control : window->findChildren<QWidget *>())
        if (isRemembered(control))
            settings.setValue(control->objectName(), qobject_cast<const QComboBox *>(control)
                                                         ? QVariant(static_cast<const QComboBox *>(control)->currentIndex())
                                                         : contentsOf(control));
    settings.endGroup();
}

void restoreState(QWidget *window, const QSettings &settings)
{
    window->restoreGeometry(settings.value(QStringLiteral("window/geometry")).toByteArray());
    for (QTableView *table : window->findChildren<QTableView *>()) {
        const QVariant columns = settings.value(QStringLiteral("columns/") + table->objectName());
        if (columns.isValid())
            table->horizontalHeader()->restoreState(columns.toByteArray());
    }
    for (QWidget *control : window->findChildren<QWidget *>()) {
        const QString key = QStringLiteral("controls/") + control->objectName();
        if (!isRemembered(control) || !settings.contains(key))
            continue;
        const QVariant saved = settings.value(key);
        // Settings files keep text: a saved index or state comes back as one.
        if (qobject_cast<QComboBox *>(control))
            setContents(control, saved.toInt());
        else if (qobject_cast<QAbstractButton *>(control))
            setContents(control, saved.toBool());
        else
            setContents(control, saved.toString());
    }
}

} // namespace OutletValues
