#include "MiscMethods.h"

#include "DeferredCalls.h"
#include "SystemLog.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

using namespace GlobalKeys;

namespace {

QClipboard *clipboard()
{
    return QGuiApplication::clipboard();
}

// Posts Control-V, the paste shortcut here, to whatever window has the
// keyboard focus. The four events go to the server as one batch while it
// serves no other client; an unprivileged X client cannot switch local
// input devices off, so this batch is how it is kept together.
bool postPasteKeystroke()
{
    if (QGuiApplication::platformName() != QLatin1String("xcb"))
        return false;
    Display *display = XOpenDisplay(nullptr);
    if (!display)
        return false;
    int eventBase = 0, errorBase = 0, major = 0, minor = 0;
    const bool available = XTestQueryExtension(display, &eventBase, &errorBase, &major, &minor);
    if (available) {
        const KeyCode control = XKeysymToKeycode(display, XK_Control_L);
        const KeyCode v = XKeysymToKeycode(display, XK_v);
        XTestGrabControl(display, True);
        XGrabServer(display);
        XTestFakeKeyEvent(display, control, True, CurrentTime);
        XTestFakeKeyEvent(display, v, True, CurrentTime);
        XTestFakeKeyEvent(display, v, False, CurrentTime);
        XTestFakeKeyEvent(display, control, False, CurrentTime);
        XUngrabServer(display);
        XSync(display, False);
    }
    XCloseDisplay(display);
    return available;
}

} // namespace

std::optional<QString> MiscMethods::returnClipboardString()
{
    const QMimeData *data = clipboard()->mimeData();
    if (!data || !data->hasText())
        return std::nullopt;
    return data->text();
}

QVariantMap MiscMethods::returnClipboard()
{
    QVariantList entries;
    QStringList types;
    if (const QMimeData *data = clipboard()->mimeData()) {
        types = data->formats();
        for (const QString &type : types)
            entries.append(QVariantMap{{the_dataKey, data->data(type)}, {data_typeKey, type}});
    }
    return {{returnDataKey, entries}, {pbTypesKey, types}};
}

bool MiscMethods::setClipboard(const QString &text)
{
    auto *data = new QMimeData;
    data->setText(text);
    clipboard()->setMimeData(data);
    return true;
}

void MiscMethods::resetClipboard(const QVariantMap &saved)
{
    auto *restored = new QMimeData;
    for (const QVariant &entryValue : saved.value(returnDataKey).toList()) {
        const QVariantMap entry = entryValue.toMap();
        const QVariant bytes = entry.value(the_dataKey);
        const QString type = entry.value(data_typeKey).toString();
        if (!bytes.isValid() || type.isEmpty())
            continue;
        if (bytes.typeId() == QMetaType::QByteArray) {
            restored->setData(type, bytes.toByteArray());
        } else if (bytes.typeId() == QMetaType::QString) {
            restored->setData(type, bytes.toString().toUtf8());
        } else {
            // The type is written twice on purpose: it is how this failure
            // has always been logged.
            SystemLog::write(QStringLiteral("NSInvalidArgumentException: the data for %1 is %2, not data")
                                 .arg(type, QString::fromLatin1(bytes.typeName())));
            SystemLog::write(QStringLiteral("%1: %1").arg(type));
        }
    }
    clipboard()->setMimeData(restored);
}

void MiscMethods::pasteAndRestore(const QString &text)
{
    const QVariantMap saved = returnClipboard();
    setClipboard(text);
    if (!postPasteKeystroke())
        SystemLog::write(QStringLiteral("pasteAndRestore: no X display to paste into"));
    // Later, so the target has read the pasted text before the old contents return.
    DeferredCalls::after(50, [saved] { resetClipboard(saved); });
}
