#include "InterfaceFile.h"

#include "BackgroundView.h"
#include "CustomWindow.h"
#include "FileBytes.h"

#include <QBuffer>
#include <QFontMetrics>
#include <QLineEdit>
#include <QStyle>
#include <QUiLoader>

namespace {

// Widgets promoted to a class of ours in the file are made as that class;
// the caller's factory may claim any widget first; every other class is the
// toolkit's. Our own classes are woken once the whole file has loaded, when
// their sizes and tags are set.
class Loader final : public QUiLoader {
public:
    explicit Loader(const InterfaceFile::WidgetFactory &factory) : m_factory(factory) {}

    QWidget *createWidget(const QString &className, QWidget *parent, const QString &name) override
    {
        QWidget *widget = m_factory ? m_factory(className, parent, name) : nullptr;
        if (!widget && className == QLatin1String("ROZ_CustomWindow")) {
            auto *window = new CustomWindow(parent);
            m_windows.append(window);
            widget = window;
        } else if (!widget && className == QLatin1String("ROZ_BackgroundView")) {
            auto *view = new BackgroundView(parent);
            m_views.append(view);
            widget = view;
        }
        if (!widget)
            return QUiLoader::createWidget(className, parent, name);
        widget->setObjectName(name);
        return widget;
    }

    void awakeFromNib()
    {
        for (CustomWindow *window : std::as_const(m_windows))
            window->awakeFromNib();
        for (BackgroundView *view : std::as_const(m_views))
            view->awakeFromNib();
    }

private:
    const InterfaceFile::WidgetFactory &m_factory;
    QList<CustomWindow *> m_windows;
    QList<BackgroundView *> m_views;
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

InterfaceFile::InterfaceFile(const QString &path, const WidgetFactory &factory)
{
    Loader loader(factory);
    auto contents = FileBytes::read(path);
    if (contents.bytes) {
        QBuffer file(&*contents.bytes);
        file.open(QIODevice::ReadOnly);
        m_window.reset(loader.load(&file));
        loader.awakeFromNib();
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
