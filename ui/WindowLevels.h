#pragma once

#include <QString>
#include <optional>

class QWidget;

// Window levels by the names and keys scripts use. Below normal windows
// lies the desktop level; floating and every higher level stay above them.
// The key set last is what a window reads back.
namespace WindowLevels {

inline constexpr int desktopKey = 2;
inline constexpr int normalKey = 4;
inline constexpr int floatingKey = 5;

// The key for an exact, case-sensitive level name; none for another name.
std::optional<int> keyNamed(const QString &name);

void setLevel(QWidget *window, int key);
int levelOf(const QWidget *window);

// Changes window flags without losing the window from the screen: Qt hides
// a window whose flags change.
void changeFlags(QWidget *window, Qt::WindowFlags on, Qt::WindowFlags off);

} // namespace WindowLevels
