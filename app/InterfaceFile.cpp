#include "InterfaceFile.h"

#include <QFile>
#include <QUiLoader>

InterfaceFile::InterfaceFile(const QString &path)
{
    QUiLoader loader;
    QFile file(path);
    if (file.open(QIODevice::ReadOnly))
        m_window.reset(loader.load(&file));
    if (!m_window)
        m_window = std::make_unique<QWidget>();
}

QWidget *InterfaceFile::outlet(const QString &name) const
{
    if (m_window->objectName() == name)
        return m_window.get();
    return m_window->findChild<QWidget *>(name);
}
