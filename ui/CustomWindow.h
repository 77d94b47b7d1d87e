#pragma once

#include <QAbstractButton>
#include <QPointF>
#include <QPointer>
#include <QRectF>
#include <QWidget>

class QTimer;

// A window without a title bar: it floats above normal windows, drags by
// its body, resizes from its bottom-right corner within its limits, snaps
// to the main screen's edges, zooms, fades in and out, and clicks its
// default and cancel controls on Return, Enter and Escape.
//
// Frames, points and limits are in screen coordinates with the origin at the
// bottom left of the main screen, as scripts give them.
class CustomWindow : public QWidget {
    Q_OBJECT
    Q_CLASSINFO("nomenClassName", "ROZ_CustomWindow")
public:
    explicit CustomWindow(QWidget *parent = nullptr);
    ~CustomWindow() override;

    // After loading from an interface file: the limits come from the file's
    // minimum and maximum sizes, less the title bar this window lacks (22)
    // on the minimum height only. The file's sizes stop constraining the
    // window, so only these limits apply.
    void awakeFromNib();

    QRectF frame() const;
    void setFrame(const QRectF &frame);
    void setFrameOrigin(const QPointF &origin);

    bool canResize() const { return m_canResize; }
    void setCanResize(bool value) { m_canResize = value; }
    bool canMove() const { return m_canMove; }
    void setCanMove(bool value) { m_canMove = value; }
    float minHeight() const { return m_minHeight; }
    void setMinHeight(float value) { m_minHeight = value; }
    float maxHeight() const { return m_maxHeight; }
    void setMaxHeight(float value) { m_maxHeight = value; }
    float minWidth() const { return m_minWidth; }
    void setMinWidth(float value) { m_minWidth = value; }
    float maxWidth() const { return m_maxWidth; }
    void setMaxWidth(float value) { m_maxWidth = value; }
    bool snapsToEdges() const { return m_snapsToEdges; }
    void setSnapsToEdges(bool value) { m_snapsToEdges = value; }
    float snapTolerance() const { return m_snapTolerance; }
    void setSnapTolerance(float value) { m_snapTolerance = value; }
    float padding() const { return m_padding; }
    void setPadding(float value) { m_padding = value; }
    bool useFade() const { return m_useFade; }
    void setUseFade(bool value) { m_useFade = value; }
    // Any control that can be clicked: a button or check box is clicked, a
    // text field's action (Return in it) is sent, a popup's choice made again.
    QWidget *defaultObject() const { return m_defaultObject; }
    void setDefaultObject(QWidget *control) { m_defaultObject = control; }
    QWidget *cancelObject() const { return m_cancelObject; }
    void setCancelObject(QWidget *control) { m_cancelObject = control; }
    // The object whose "closeAndRelease" runs once the window is put away.
    void setWindowController(QObject *controller) { m_controller = controller; }

    // The next move is the program's own: it is not snapped.
    static void setUserAdjustedFromControl(bool value);

    void windowMoved();
    enum class Coordinate { X, Y };
    void springCoordinate(Coordinate coordinate, float value, QPointF &point);
    QRectF windowWillUseStandardFrame(const QRectF &defaultFrame);
    // Zooms to the screen's visible frame, or back to the frame before.
    void zoom();

    void openWithFade();
    // Puts the window away: faded when useFade is set, else at once. The
    // window is hidden, never destroyed; its controller releases it.
    void close();
    bool isFading() const { return m_timer != nullptr; }

protected:
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void moveEvent(QMoveEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    void mouseDragged(QMouseEvent *event);
    void takeInitials(QMouseEvent *event);
    void resizeFromCorner();
    void moveWithMouse();
    void startTimer(void (CustomWindow::*step)());
    void stopTimer();
    void fadeIn();
    void fade();
    void orderOutAndRelease();
    QPointF locationInWindow(const QMouseEvent *event) const;

    QRectF m_initialFrame;
    QPointF m_initialLocation;
    QPointF m_initialLocationOnScreen;
    QPointF m_currentLocation;
    QRectF m_screenFrame;
    QRectF m_windowFrame;
    float m_minY2 = 0, m_maxY2 = 0;
    bool m_canResize = true, m_canMove = true;
    // Unlimited until a script or the interface file sets a limit.
    float m_minHeight = 0, m_maxHeight = QWIDGETSIZE_MAX, m_minWidth = 0, m_maxWidth = QWIDGETSIZE_MAX;
    QRectF m_lastFrame;
    QTimer *m_timer = nullptr;
    bool m_useFade = true;
    QPointer<QWidget> m_defaultObject;
    QPointer<QWidget> m_cancelObject;
    QPointer<QObject> m_controller;
    bool m_snapsToEdges = false;
    float m_snapTolerance = 15.0f;
    bool m_snapping = false;
    float m_padding = 0.0f;
};
