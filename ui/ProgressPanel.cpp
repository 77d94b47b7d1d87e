#include "ProgressPanel.h"

#include "InterfaceFile.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <chrono>
#include <thread>

ProgressPanel::ProgressPanel(const InterfaceFile &form, std::atomic<bool> &stopProgressBool)
    : m_form(form), m_stop(stopProgressBool)
{
}

bool ProgressPanel::shows(double current, double maximum)
{
    // The last value is skipped like any other that is not a multiple.
    const qint64 step = qint64(current);
    return !((maximum > 200 && step % 25 != 0) || (maximum > 50 && maximum <= 200 && step % 10 != 0));
}

void ProgressPanel::update(double current, double maximum, const QString &upper, const QString &lower)
{
    if (!shows(current, maximum))
        return;
    if (auto *label = m_form.control<QLabel>(QStringLiteral("progress_label_super")))
        label->setText(upper);
    if (auto *label = m_form.control<QLabel>(QStringLiteral("progress_label")))
        label->setText(lower);
    if (auto *indicator = m_form.control<QProgressBar>(QStringLiteral("theIndicator"))) {
        indicator->setValue(int(current));
        // Drawn now: the loop calling this does not return to the event loop.
        indicator->window()->repaint();
    }
    keepResponsive();
}

void ProgressPanel::stopIndeterminate(double maximum)
{
    if (auto *indicator = m_form.control<QProgressBar>(QStringLiteral("theIndicator"))) {
        indicator->setMinimum(0);
        indicator->setMaximum(int(maximum));
    }
}

void ProgressPanel::stop()
{
    m_stop.store(false);
}

void ProgressPanel::keepResponsive()
{
    static QElapsedTimer clock = [] {
        QElapsedTimer started;
        started.start();
        return started;
    }();
    if (clock.elapsed() - m_lastYield < 30)
        return;
    m_lastYield = clock.elapsed();
    if (m_passDepth == 0) {
        // A loop of a script's own: it repaints, but takes no input.
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents, 5);
        return;
    }
    // Frozen only once events are let through: a short pass never flickers.
    if (!m_frozen)
        freezeInput();
    QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
}

void ProgressPanel::runAside(const std::function<void()> &work)
{
    std::atomic<bool> done{false};
    std::thread worker([&] {
        work();
        done.store(true);
    });
    while (!done.load()) {
        keepResponsive();
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    worker.join();
}

ProgressPanel::LongPass::LongPass(ProgressPanel &panel) : m_panel(panel)
{
    // Busy until the pass says how many steps it has.
    if (m_panel.m_passDepth++ == 0)
        if (auto *indicator = m_panel.m_form.control<QProgressBar>(QStringLiteral("theIndicator")))
            indicator->setRange(0, 0);
}

ProgressPanel::LongPass::~LongPass()
{
    if (--m_panel.m_passDepth == 0 && m_panel.m_frozen)
        m_panel.thawInput();
}

// The panel takes the status line's place while a pass runs, and gives it
// back with its lines emptied for the next one.
void ProgressPanel::showPanel(bool shown)
{
    if (QWidget *panel = m_form.outlet(QStringLiteral("progress_panel")))
        panel->setVisible(shown);
    if (QWidget *status = m_form.outlet(QStringLiteral("status_line")))
        status->setVisible(!shown);
    if (QWidget *stop = m_form.outlet(QStringLiteral("stop_progress")))
        stop->setEnabled(shown);
    if (shown)
        return;
    for (const char *line : {"progress_label_super", "progress_label"})
        if (auto *label = m_form.control<QLabel>(QString::fromLatin1(line)))
            label->clear();
}

void ProgressPanel::freezeInput()
{
    m_frozen = true;
    showPanel(true);
    m_focusBeforeFreeze = QApplication::focusWidget();
    const QWidget *stopButton = m_form.outlet(QStringLiteral("stop_progress"));
    for (QWidget *control : m_form.window()->findChildren<QWidget *>()) {
        const bool takesInput = qobject_cast<QAbstractButton *>(control) || qobject_cast<QLineEdit *>(control)
                                || qobject_cast<QComboBox *>(control) || qobject_cast<QAbstractItemView *>(control);
        if (takesInput && control != stopButton && control->isEnabled()) {
            control->setEnabled(false);
            m_frozenControls.append(control);
        }
    }
    for (QAction *action : m_form.window()->findChildren<QAction *>())
        if (action->isEnabled()) {
            action->setEnabled(false);
            m_frozenActions.append(action);
        }
}

void ProgressPanel::thawInput()
{
    for (const QPointer<QWidget> &control : std::as_const(m_frozenControls))
        if (control)
            control->setEnabled(true);
    for (const QPointer<QAction> &action : std::as_const(m_frozenActions))
        if (action)
            action->setEnabled(true);
    m_frozenControls.clear();
    m_frozenActions.clear();
    if (m_focusBeforeFreeze)
        m_focusBeforeFreeze->setFocus();
    m_frozen = false;
    showPanel(false);
}
