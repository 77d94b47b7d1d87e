#pragma once

#include <QString>
#include <QWidget>
#include <memory>

// The main window as the interface file describes it. Its controls are its
// outlets, found by object name; one the file lacks is not connected
// (nullptr). Without the file the window is empty.
class InterfaceFile {
public:
    explicit InterfaceFile(const QString &path);

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
