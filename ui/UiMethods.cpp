#include "UiMethods.h"

#include "BackgroundView.h"
#include "CustomWindow.h"
#include "DateFormatter.h"
#include "Menus.h"
#include "ModifierKeys.h"
#include "NativeBinding.h"
#include "NamedException.h"
#include "ResourceFolder.h"
#include "WindowConstruction.h"
#include "WindowLevels.h"

#include <QFileInfo>
#include <QIcon>
#include <QImage>
#include <QJSEngine>
#include <QMenu>
#include <QPixmap>

namespace {

using NativeBinding::addClassMethod;
using NativeBinding::addInstanceMethod;
using WindowConstruction::Decorations;
using WindowConstruction::Kind;

template <auto Getter>
auto get(CustomWindow *window)
{
    return (window->*Getter)();
}

template <auto Setter, typename Value>
void set(CustomWindow *window, Value value)
{
    (window->*Setter)(value);
}

// Windows a script makes with these two belong to the script: they go when
// it lets go of them.
QObject *makeWindow(Kind kind, const QRectF &rect, const Decorations &decorations)
{
    const int style = kind == Kind::Panel ? WindowConstruction::panelStyle(decorations)
                                          : WindowConstruction::windowStyle(decorations);
    return WindowConstruction::make(kind, rect, style);
}

QIcon iconFrom(const QVariant &image)
{
    if (image.metaType() == QMetaType::fromType<QIcon>())
        return image.value<QIcon>();
    if (image.metaType() == QMetaType::fromType<QImage>())
        return QIcon(QPixmap::fromImage(image.value<QImage>()));
    if (image.metaType() == QMetaType::fromType<QPixmap>())
        return QIcon(image.value<QPixmap>());
    if (ArgumentConversion::isNil(image))
        return QIcon();
    throw ArgumentConversion::WrongType{4, QStringLiteral("an image"), ArgumentConversion::kindOf(image)};
}

QVariant rtfPath(const QString &name)
{
    if (name.isEmpty() || name.contains(u'/'))
        return QVariant();
    const QString path = ResourceFolder::path() + u'/' + name + QStringLiteral(".rtf");
    return QFileInfo(path).isFile() ? QVariant(path) : QVariant();
}

void registerCustomWindow(MethodRegistry &registry)
{
    using W = CustomWindow;
    const QString C = QStringLiteral("ROZ_CustomWindow");
    addClassMethod(registry, C, QStringLiteral("initWithContentRect:styleMask:backing:defer:"),
                   +[](const QRectF &rect, int, int, bool) -> QObject * {
                       auto *window = new W;
                       window->setFrame(rect);
                       return window;
                   });
    addInstanceMethod(registry, C, QStringLiteral("awakeFromNib"), +[](W *window) { window->awakeFromNib(); });
    addInstanceMethod(registry, C, QStringLiteral("hidesOnDeactivate"), +[](W *) { return false; });
    addInstanceMethod(registry, C, QStringLiteral("canBecomeKeyWindow"), +[](W *) { return true; });
    addInstanceMethod(registry, C, QStringLiteral("canBecomeMainWindow"), +[](W *) { return true; });
    addInstanceMethod(registry, C, QStringLiteral("canResize"), &get<&W::canResize>);
    addInstanceMethod(registry, C, QStringLiteral("setCanResize:"), &set<&W::setCanResize, bool>);
    addInstanceMethod(registry, C, QStringLiteral("canMove"), &get<&W::canMove>);
    addInstanceMethod(registry, C, QStringLiteral("setCanMove:"), &set<&W::setCanMove, bool>);
    addInstanceMethod(registry, C, QStringLiteral("minHeight"), &get<&W::minHeight>);
    addInstanceMethod(registry, C, QStringLiteral("setMinHeight:"), &set<&W::setMinHeight, float>);
    addInstanceMethod(registry, C, QStringLiteral("maxHeight"), &get<&W::maxHeight>);
    addInstanceMethod(registry, C, QStringLiteral("setMaxHeight:"), &set<&W::setMaxHeight, float>);
    addInstanceMethod(registry, C, QStringLiteral("minWidth"), &get<&W::minWidth>);
    addInstanceMethod(registry, C, QStringLiteral("setMinWidth:"), &set<&W::setMinWidth, float>);
    addInstanceMethod(registry, C, QStringLiteral("maxWidth"), &get<&W::maxWidth>);
    addInstanceMethod(registry, C, QStringLiteral("setMaxWidth:"), &set<&W::setMaxWidth, float>);
    addInstanceMethod(registry, C, QStringLiteral("snapsToEdges"), &get<&W::snapsToEdges>);
    addInstanceMethod(registry, C, QStringLiteral("setSnapsToEdges:"), &set<&W::setSnapsToEdges, bool>);
    addInstanceMethod(registry, C, QStringLiteral("snapTolerance"), &get<&W::snapTolerance>);
    addInstanceMethod(registry, C, QStringLiteral("setSnapTolerance:"), &set<&W::setSnapTolerance, float>);
    addInstanceMethod(registry, C, QStringLiteral("padding"), &get<&W::padding>);
    addInstanceMethod(registry, C, QStringLiteral("setPadding:"), &set<&W::setPadding, float>);
    addInstanceMethod(registry, C, QStringLiteral("setUseFade:"), &set<&W::setUseFade, bool>);
    addInstanceMethod(registry, C, QStringLiteral("setDefaultObject:"), &set<&W::setDefaultObject, QWidget *>);
    addInstanceMethod(registry, C, QStringLiteral("setCancelObject:"), &set<&W::setCancelObject, QWidget *>);
    addInstanceMethod(registry, C, QStringLiteral("setUserAdjustedFromControl:"),
                      +[](W *, bool value) { W::setUserAdjustedFromControl(value); });
    addInstanceMethod(registry, C, QStringLiteral("windowMoved:"), +[](W *window, const QVariant &) { window->windowMoved(); });
    addInstanceMethod(registry, C, QStringLiteral("springCoordinate:to:inPoint:"),
                      +[](W *window, const QString &coordinate, float value, QPointF point) {
                          if (coordinate != QLatin1String("x") && coordinate != QLatin1String("y"))
                              throw NamedException(NSInvalidArgumentException,
                                                   QStringLiteral("springCoordinate: takes \"x\" or \"y\", not \"%1\"").arg(coordinate));
                          window->springCoordinate(coordinate == QLatin1String("x") ? W::Coordinate::X : W::Coordinate::Y,
                                                   value, point);
                          return point;
                      });
    addInstanceMethod(registry, C, QStringLiteral("windowWillUseStandardFrame:defaultFrame:"),
                      +[](W *window, const QVariant &, const QRectF &defaultFrame) {
                          return window->windowWillUseStandardFrame(defaultFrame);
                      });
    addInstanceMethod(registry, C, QStringLiteral("zoom:"), +[](W *window, const QVariant &) { window->zoom(); });
    addInstanceMethod(registry, C, QStringLiteral("openWithFade"), +[](W *window) { window->openWithFade(); });
    addInstanceMethod(registry, C, QStringLiteral("isFading"), &get<&W::isFading>);
    addInstanceMethod(registry, C, QStringLiteral("close"), +[](W *window) { window->close(); });
}

// What every window a script holds answers, in screen coordinates from the
// bottom left.
void registerWindowBasics(MethodRegistry &registry, const QString &C)
{
    addInstanceMethod(registry, C, QStringLiteral("frame"), &WindowConstruction::frameOf);
    addInstanceMethod(registry, C, QStringLiteral("setFrame:display:"), +[](QWidget *window, const QRectF &frame, bool) {
        WindowConstruction::setFrame(window, frame);
    });
    addInstanceMethod(registry, C, QStringLiteral("setFrameOrigin:"), +[](QWidget *window, const QPointF &origin) {
        WindowConstruction::setFrame(window, QRectF(origin, QSizeF(window->size())));
    });
    addInstanceMethod(registry, C, QStringLiteral("styleMask"),
                      +[](QWidget *window) { return window->property("styleMask").toInt(); });
    addInstanceMethod(registry, C, QStringLiteral("level"), +[](QWidget *window) { return WindowLevels::levelOf(window); });
    addInstanceMethod(registry, C, QStringLiteral("alphaValue"), &WindowConstruction::alphaOf);
    addInstanceMethod(registry, C, QStringLiteral("hasShadow"), +[](QWidget *window) { return WindowConstruction::hasShadow(window); });
    addInstanceMethod(registry, C, QStringLiteral("isVisible"), +[](QWidget *window) { return window->isVisible(); });
    addInstanceMethod(registry, C, QStringLiteral("orderFront:"), +[](QWidget *window, const QVariant &) {
        window->show();
        window->raise();
    });
    addInstanceMethod(registry, C, QStringLiteral("makeKeyAndOrderFront:"), +[](QWidget *window, const QVariant &) {
        window->show();
        window->raise();
        window->activateWindow();
    });
    addInstanceMethod(registry, C, QStringLiteral("orderOut:"), +[](QWidget *window, const QVariant &) { window->hide(); });
}

void registerWindowConstruction(MethodRegistry &registry)
{
    const QString M = MiscMethodsClass;
    addClassMethod(registry, M, QStringLiteral("makeWindow:useBorder:useTexture:isCloseable:isMiniaturizable:isResizable:isUnified:"),
                   +[](const QRectF &rect, bool border, bool texture, bool closable, bool mini, bool resizable, bool unified) {
                       return makeWindow(Kind::Window, rect, {border, texture, closable, mini, resizable, unified});
                   });
    addClassMethod(registry, M,
                   QStringLiteral("makePanelWindow:useBorder:useTexture:isCloseable:isMiniaturizable:isResizable:isUnified:"),
                   +[](const QRectF &rect, bool border, bool texture, bool closable, bool mini, bool resizable, bool unified) {
                       return makeWindow(Kind::Panel, rect, {border, texture, closable, mini, resizable, unified});
                   });
    // The caller owns this one: the script letting go does not close it.
    addClassMethod(registry, M, QStringLiteral("makeBorderlessWindow:"), +[](const QRectF &rect) -> QObject * {
        QWidget *window = WindowConstruction::make(Kind::Window, rect, WindowConstruction::Borderless);
        QJSEngine::setObjectOwnership(window, QJSEngine::CppOwnership);
        return window;
    });
    addClassMethod(registry, M, QStringLiteral("setWindowLevel:toLevel:"), +[](QWidget *window, const QString &name) {
        if (const auto key = WindowLevels::keyNamed(name))
            WindowLevels::setLevel(window, *key);
    });
    addClassMethod(registry, M, QStringLiteral("setWindowTransparency:toAlphaValue:"), &WindowConstruction::setTransparency);
    addClassMethod(registry, M, QStringLiteral("setWindowShadow:useMainShadow:"), &WindowConstruction::setShadow);
    addClassMethod(registry, M, QStringLiteral("attachChildWindow:toParentWindow:"), &WindowConstruction::attachChildWindow);
    addClassMethod(registry, M, QStringLiteral("removeView:"), &WindowConstruction::removeView);
    addClassMethod(registry, M, QStringLiteral("insertItem:withTitle:atIndex:shouldEnable:withIcon:"),
                   +[](QMenu *menu, const QString &title, int index, bool enabled, const QVariant &icon) {
                       Menus::insertItem(menu, title, index, enabled, iconFrom(icon));
                   });
    addClassMethod(registry, M, QStringLiteral("insertItem:withTitle:atIndex:shouldEnable:"),
                   +[](QMenu *menu, const QString &title, int index, bool enabled) {
                       Menus::insertItem(menu, title, index, enabled);
                   });
    addClassMethod(registry, M, QStringLiteral("insertSeparator:atIndex:"), &Menus::insertSeparator);
    addClassMethod(registry, M, QStringLiteral("removeMenuItems:shouldRelease:"), &Menus::removeMenuItems);
    addClassMethod(registry, M, QStringLiteral("makeDateFormatter:"),
                   +[](const QString &format) { return DateFormatter{format}; });
    addClassMethod(registry, M, QStringLiteral("returnRTFPath:"), &rtfPath);
}

void registerDateFormatter(MethodRegistry &registry)
{
    const QString C = QStringLiteral("NSDateFormatter");
    registry.addValueClass(QMetaType::fromType<DateFormatter>(), C);
    addInstanceMethod(registry, C, QStringLiteral("dateFormat"), +[](DateFormatter formatter) { return formatter.format; });
    addInstanceMethod(registry, C, QStringLiteral("stringFromDate:"),
                      +[](DateFormatter formatter, const QDateTime &date) { return formatter.stringFromDate(date); });
    addInstanceMethod(registry, C, QStringLiteral("dateFromString:"),
                      +[](DateFormatter formatter, const QString &text) { return formatter.dateFromString(text); });
}

void registerViewsAndKeys(MethodRegistry &registry)
{
    const QString V = QStringLiteral("ROZ_BackgroundView");
    addInstanceMethod(registry, V, QStringLiteral("awakeFromNib"), +[](BackgroundView *view) { view->awakeFromNib(); });
    addInstanceMethod(registry, V, QStringLiteral("tag"), +[](BackgroundView *view) { return view->tag(); });
    addInstanceMethod(registry, V, QStringLiteral("setTag:"), +[](BackgroundView *view, int tag) { view->setTag(tag); });
    addInstanceMethod(registry, V, QStringLiteral("imageName"), +[](BackgroundView *view) { return view->imageName(); });
    // The category's methods, under its own name and the class it extends.
    for (const QString &C : {QStringLiteral("ROZ_NSEventAdditions"), QStringLiteral("NSEvent")}) {
        addClassMethod(registry, C, QStringLiteral("isCommandKeyDown"), &ModifierKeys::isCommandKeyDown);
        addClassMethod(registry, C, QStringLiteral("isShiftKeyDown"), &ModifierKeys::isShiftKeyDown);
        addClassMethod(registry, C, QStringLiteral("isOptionKeyDown"), &ModifierKeys::isOptionKeyDown);
        addClassMethod(registry, C, QStringLiteral("isControlKeyDown"), &ModifierKeys::isControlKeyDown);
    }
}

} // namespace

void registerUiMethods(MethodRegistry &registry)
{
    registerCustomWindow(registry);
    for (const QString &C : {QStringLiteral("NSWindow"), QStringLiteral("NSPanel"), QStringLiteral("ROZ_CustomWindow")})
        registerWindowBasics(registry, C);
    for (const QString &C : {QStringLiteral("NSWindow"), QStringLiteral("NSPanel")})
        addInstanceMethod(registry, C, QStringLiteral("close"), +[](QWidget *window) { window->close(); });
    registerWindowConstruction(registry);
    registerDateFormatter(registry);
    registerViewsAndKeys(registry);
    registerInputAndSpeechMethods(registry);
    registerSizingMethods(registry);
}
