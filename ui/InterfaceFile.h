#pragma once

#include <QString>
#include <QWidget>
#include <functional>
#include <memory>

// The main window as the interface file describes it. Its controls are its
// outlets, found by object name; one the file lacks is not connected
// (nullptr). Without the file the window is empty. Widgets the file
// promotes to CustomWindow or BackgroundView are made as those.
class InterfaceFile {
public:
    // Makes a widget of the caller's own for (class, parent, object name),
    // or answers nullptr to leave it to the loader.
    using WidgetFactory = std::function<QWidget *(const QString &, QWidget *, const QString &)>;

    explicit InterfaceFile(const QString &path, const WidgetFactory &factory = {});

    QWidget *window() const { return m_window.get(); }
    QWidget *outlet(const QString &name) const;
    template <typename Control>
    Control *control(const QString &name) const
    {
        return qobject_cast<Control *>(outlet(name));
    }

private:
    std::unique_ptr<QWidget> m_window;
};
