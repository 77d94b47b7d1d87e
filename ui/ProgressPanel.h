#pragma once

#include <QList>
#include <QPointer>
#include <QString>
#include <atomic>
#include <functional>

class InterfaceFile;
class QAction;
class QWidget;

// The progress panel: two lines of text, a bar and Stop, in the status
// line's place while a long pass runs. A long loop draws it at once and lets events through now and then; Stop sets the flag the
// listing polls. While a long pass runs the window takes no input but Stop,
// so nothing changes the rule under the pass or starts another inside it.
class ProgressPanel {
public:
    ProgressPanel(const InterfaceFile &form, std::atomic<bool> &stopProgressBool);

    void update(double current, double maximum, const QString &upper, const QString &lower);
    // Long passes show every 25th step (over 200 steps) or every 10th
    // (over 50): only those are drawn.
    static bool shows(double current, double maximum);
    void stopIndeterminate(double maximum);
    void stop();

    // Lets the window repaint (and, in a long pass, Stop be pressed), at
    // most every few milliseconds; at once after yieldNow().
    void keepResponsive();
    void yieldNow() { m_lastYield = -1000; }
    // Does the work on another thread while the window stays live here, and
    // returns once it is done. The work must not touch the window.
    void runAside(const std::function<void()> &work);

    class LongPass {
    public:
        explicit LongPass(ProgressPanel &panel);
        ~LongPass();
        LongPass(const LongPass &) = delete;
        LongPass &operator=(const LongPass &) = delete;

    private:
        ProgressPanel &m_panel;
    };
    bool inputFrozen() const { return m_frozen; }

private:
    void showPanel(bool shown);
    void freezeInput();
    void thawInput();

    const InterfaceFile &m_form;
    std::atomic<bool> &m_stop;
    qint64 m_lastYield = 0;
    int m_passDepth = 0;
    bool m_frozen = false;
    QList<QPointer<QWidget>> m_frozenControls;
    QList<QPointer<QAction>> m_frozenActions;
    QPointer<QWidget> m_focusBeforeFreeze;
};
