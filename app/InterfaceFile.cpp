#include "InterfaceFile.h"
#include "FileBytes.h"

#include "FileTableView.h"

#include <QBuffer>
#include <QFontMetrics>
#include <QLineEdit>
#include <QStyle>
#include <QUiLoader>

namespace {

// The file table is the window's own table view; every other class is the
// toolkit's.
class Loader final : public QUiLoader {
public:
    QWidget *createWidget(const QString &className, QWidget *parent, const QString &name) override
    {
        if (className == QLatin1String("QTableView") && name == QLatin1String("fileTable")) {
            auto *table = new FileTableView(parent);
            table->setObjectName(name);
            return table;
        }
        return QUiLoader::createWidget(className, parent, name);
    }
};

// Fields for short entries (numbers, extensions) are as wide as the
// characters they hold in the window's font, whatever its size.
void fitFieldWidths(QWidget *window)
{
    for (QLineEdit *field : window->findChildren<QLineEdit *>()) {
        const int characters = field->property("widthInCharacters").toInt();
        if (characters <= 0)
            continue;
        const QFontMetrics metrics(field->font());
        const QMargins margins = field->textMargins() + field->contentsMargins();
        field->setMaximumWidth(metrics.horizontalAdvance(QString(characters, u'0')) + margins.left() + margins.right()
                               + 2 * field->style()->pixelMetric(QStyle::PM_DefaultFrameWidth) + 8);
    }
}

} // namespace

InterfaceFile::InterfaceFile(const QString &path)
{
    Loader loader;
    auto contents = FileBytes::read(path);
    if (contents.bytes) {
        QBuffer file(&*contents.bytes);
        file.open(QIODevice::ReadOnly);
        m_window.reset(loader.load(&file));
    }
    if (!m_window)
        m_window = std::make_unique<QWidget>();
    fitFieldWidths(m_window.get());
}

QWidget *InterfaceFile::outlet(const QString &name) const
{
    if (m_window->objectName() == name)
        return m_window.get();
    return m_window->findChild<QWidget *>(name);
}
