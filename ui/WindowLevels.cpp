#include "WindowLevels.h"

#include <QWidget>

#include <utility>

namespace WindowLevels {

std::optional<int> keyNamed(const QString &name)
{
    static const std::pair<const char *, int> levels[] = {
        {"NSNormalWindowLevel", normalKey},      {"NSFloatingWindowLevel", floatingKey},
        {"NSSubmenuWindowLevel", 6},            {"NSTornOffMenuWindowLevel", 6},
        {"NSMainMenuWindowLevel", 8},           {"NSStatusWindowLevel", 9},
        {"NSPopUpMenuWindowLevel", 11},         {"NSScreenSaverWindowLevel", 13},
        {"kCGDesktopWindowLevel", desktopKey},
    };
    for (const auto &[levelName, key] : levels)
        if (name == QLatin1String(levelName))
            return key;
    return std::nullopt;
}

void changeFlags(QWidget *window, Qt::WindowFlags on, Qt::WindowFlags off)
{
    const Qt::WindowFlags flags = (window->windowFlags() | on) & ~off;
    if (flags == window->windowFlags())
        return;
    const bool shown = window->isVisible();
    window->setWindowFlags(flags);
    if (shown)
        window->show();
}

void setLevel(QWidget *window, int key)
{
    if (!window)
        return;
    window->setProperty("windowLevel", key);
    if (key < normalKey)
        changeFlags(window, Qt::WindowStaysOnBottomHint, Qt::WindowStaysOnTopHint);
    else if (key == normalKey)
        changeFlags(window, {}, Qt::WindowStaysOnBottomHint | Qt::WindowStaysOnTopHint);
    else
        changeFlags(window, Qt::WindowStaysOnTopHint, Qt::WindowStaysOnBottomHint);
}

int levelOf(const QWidget *window)
{
    const QVariant key = window ? window->property("windowLevel") : QVariant();
    return key.isValid() ? key.toInt() : normalKey;
}

} // namespace WindowLevels
