#include "RZApplication.h"

#include "BatchRenaming.h"
#include "DictionaryAdditions.h"
#include "GrepReplace.h"
#include "NamedException.h"
#include "ScriptSubroutines.h"
#include "SafeMover.h"
#include "TablePreview.h"
#include "MiscMethods.h"
#include "StringAdditions.h"
#include "UiStrings.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QElapsedTimer>
#include <QHeaderView>
#include <QLabel>
#include <QProgressBar>
#include <QTableView>
#include <QThreadPool>
#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QDropEvent>
#include <QFile>
#include <QFileInfo>
#include <QMimeData>
#include <QLineEdit>
#include <QRadioButton>
#include <QUiLoader>
#include <QUrl>

#ifndef NOMEN_RESOURCE_DIR
#define NOMEN_RESOURCE_DIR ""
#endif

namespace {

// The fields whose edits refresh the preview. The two increment fields are
// left out on purpose: the preview shows only the first name.
const QStringList previewFields = {"prefix",          "prefix_start_num", "prefix_add_leading_zeros_min",
                                   "search_1",        "replace_1",        "trim_start",
                                   "trim_end",        "suffix",           "suffix_start_num",
                                   "suffix_add_leading_zeros_min", "extension"};

QDateTime fixedDate(const QString &text)
{
    return ROZ_MiscMethods::dateFromString(text).value_or(QDateTime());
}

} // namespace

RZApplication::RZApplication(int &argc, char **argv) : QApplication(argc, argv), m_table(new FileTableModel(this))
{
    setApplicationName(QStringLiteral("Nomen"));
    setOrganizationName(QStringLiteral("Nomen"));
}

RZApplication::~RZApplication()
{
    // Previews and conflict checks still running aside report back to this
    // object.
    QThreadPool::globalInstance()->waitForDone();
}

RZApplication *RZApplication::instance()
{
    return qobject_cast<RZApplication *>(QCoreApplication::instance());
}

QString RZApplication::resourceDirectory()
{
    const QString configured = QString::fromLocal8Bit(qgetenv("NOMEN_RESOURCES"));
    return configured.isEmpty() ? QStringLiteral(NOMEN_RESOURCE_DIR) : configured;
}

namespace {

std::unique_ptr<CompiledScript> loadHelper(const MethodRegistry &methods, const QString &name)
{
    QVariantMap error;
    std::unique_ptr<CompiledScript> script(CompiledScript::fromFile(
        methods, RZApplication::resourceDirectory() + QStringLiteral("/Scripts/") + name + QStringLiteral(".scpt"), &error));
    if (!script)
        throw NamedException(NSGenericException, QStringLiteral("Error loading \"%1.scpt\".").arg(name));
    return script;
}

} // namespace

void RZApplication::init(const MethodRegistry &methods)
{
    UiStrings::install(*this);
    loadInterface();
    m_engine = std::make_unique<RenameEngine>();
    is104Plus = ROZ_MiscMethods::return104Plus();
    m_perl = loadHelper(methods, QStringLiteral("perl"));
    m_exifInfo = loadHelper(methods, QStringLiteral("exif_info"));
    ROZ_ScriptSubroutines::ROZ_runScriptSubroutine(*m_exifInfo, QStringLiteral("init"));
    const QFileInfo exiftime(resourceDirectory() + QStringLiteral("/exiftime"));
    m_engine->exiftime = exiftime.exists() ? exiftime.absoluteFilePath() : QString();
}

QString RZApplication::snrGrep(const QString &text, const QString &pattern, const QString &replacement, bool consideringCase)
{
    return GrepReplace::snrGrep(text, pattern, replacement, consideringCase, [this](const QString &program) {
        return ROZ_ScriptSubroutines::ROZ_runScriptSubroutine(*m_perl, QStringLiteral("execute_perl"), program);
    });
}

QVariant RZApplication::getEXIFDate(const QVariant &path)
{
    return ROZ_ScriptSubroutines::ROZ_runScriptSubroutine(*m_exifInfo, QStringLiteral("get_exif_image_created_date"), path);
}

void RZApplication::loadInterface()
{
    QUiLoader loader;
    QFile file(resourceDirectory() + QStringLiteral("/MainWindow.ui"));
    if (file.open(QIODevice::ReadOnly))
        m_window.reset(loader.load(&file));
    if (!m_window)
        m_window = std::make_unique<QWidget>();
    // User edits only: text set by the program is not an edit.
    for (QLineEdit *field : m_window->findChildren<QLineEdit *>())
        connect(field, &QLineEdit::textEdited, this, [this, field] { textDidChange(field); });
    if (auto *table = qobject_cast<QTableView *>(outlet(QStringLiteral("fileTable")))) {
        table->setModel(m_table);
        table->setSelectionBehavior(QAbstractItemView::SelectRows);
        table->setDragDropMode(QAbstractItemView::DragDrop);
        table->setDefaultDropAction(Qt::MoveAction);
        table->setDragEnabled(true);
        table->setAcceptDrops(true);
        table->setDropIndicatorShown(true);
        table->horizontalHeader()->setStretchLastSection(true);
        // Fixed widths: measuring the contents of a large table takes long.
        table->setWordWrap(false);
        table->verticalHeader()->setDefaultSectionSize(table->fontMetrics().height() + 6);
        const std::pair<int, int> widths[] = {{FileTableModel::Include, 28},   {FileTableModel::Original, 220},
                                              {FileTableModel::Location, 200}, {FileTableModel::Creation, 140},
                                              {FileTableModel::Modification, 140}, {FileTableModel::Size, 80}};
        for (const auto &[column, width] : widths)
            table->setColumnWidth(column, width);
    }
    if (auto *stop = qobject_cast<QAbstractButton *>(outlet(QStringLiteral("stop_progress"))))
        connect(stop, &QAbstractButton::clicked, this, [this] { stopProgressAction(); });
    connectInterfaceEvents();
}

void RZApplication::connectInterfaceEvents()
{
    // Every named button, check box, radio button and popup reports its
    // action; Stop is handled here, as it must work while a loop runs.
    for (QAbstractButton *button : m_window->findChildren<QAbstractButton *>()) {
        const QString name = button->objectName();
        if (!name.isEmpty() && !name.startsWith(QLatin1String("qt_")) && name != QLatin1String("stop_progress"))
            connect(button, &QAbstractButton::clicked, this, [this, name] { emit scriptEvent(QStringLiteral("clicked"), name); });
    }
    // Return in a text field is its action too.
    for (QLineEdit *field : m_window->findChildren<QLineEdit *>()) {
        const QString name = field->objectName();
        connect(field, &QLineEdit::returnPressed, this, [this, name] { emit scriptEvent(QStringLiteral("clicked"), name); });
    }
    for (QComboBox *popup : m_window->findChildren<QComboBox *>()) {
        const QString name = popup->objectName();
        connect(popup, &QComboBox::activated, this, [this, name] { emit scriptEvent(QStringLiteral("clicked"), name); });
    }
    for (QAction *action : m_window->findChildren<QAction *>()) {
        const QString name = action->objectName();
        if (!name.isEmpty())
            connect(action, &QAction::triggered, this, [this, name] { emit scriptEvent(QStringLiteral("choseMenuItem"), name); });
    }
    connect(this, &RZApplication::tablePreviewApplied, this, [this] {
        emit scriptEvent(QStringLiteral("previewed"), QVariant());
        checkConflicts();
    });
    connect(this, &QCoreApplication::aboutToQuit, this, [this] { emit scriptEvent(QStringLiteral("willQuit"), QVariant()); });
    m_table->filesDropped = [this](const QStringList &paths, int) { emit scriptEvent(QStringLiteral("dropped"), paths); };
    // The counters follow the table's order: a new order needs new names.
    connect(m_table, &FileTableModel::rowsReordered, this, [this] {
        // Rows dragged to a new place are in no column's order any more.
        if (!m_sorting)
            if (auto *table = qobject_cast<QTableView *>(outlet(QStringLiteral("fileTable"))))
                table->horizontalHeader()->setSortIndicatorShown(false);
        refreshPreview();
    });
    connect(m_table, &QAbstractItemModel::modelReset, this, [this] { ++m_conflictGeneration; });
    // A row ticked or unticked changes the counters of the rows after it.
    connect(m_table, &QAbstractItemModel::dataChanged, this, [this](const QModelIndex &from, const QModelIndex &to) {
        if (from.column() <= FileTableModel::Include && to.column() >= FileTableModel::Include)
            refreshPreview();
    });
    if (auto *table = qobject_cast<QTableView *>(outlet(QStringLiteral("fileTable")))) {
        // Names in natural order until the user picks another order.
        table->horizontalHeader()->setSectionsClickable(true);
        table->horizontalHeader()->setSortIndicator(FileTableModel::Original, Qt::AscendingOrder);
        table->horizontalHeader()->setSortIndicatorShown(true);
        connect(table->horizontalHeader(), &QHeaderView::sectionClicked, this, [this](int column) { sortByColumn(column); });
    }
    m_window->setAcceptDrops(true);
    m_window->installEventFilter(this);
}

void RZApplication::sortByColumn(int column)
{
    auto *table = qobject_cast<QTableView *>(outlet(QStringLiteral("fileTable")));
    if (!table)
        return;
    // The header has turned its indicator round already when it was shown
    // on this column; after a drag it may be hidden, or on another column.
    QHeaderView *header = table->horizontalHeader();
    if (!header->isSortIndicatorShown() || header->sortIndicatorSection() != column)
        header->setSortIndicator(column, Qt::AscendingOrder);
    header->setSortIndicatorShown(true);
    sortTableRows();
}

void RZApplication::sortTableRows()
{
    auto *table = qobject_cast<QTableView *>(outlet(QStringLiteral("fileTable")));
    if (!table || !table->horizontalHeader()->isSortIndicatorShown())
        return;
    m_sorting = true;
    m_table->sort(table->horizontalHeader()->sortIndicatorSection(), table->horizontalHeader()->sortIndicatorOrder());
    m_sorting = false;
}

bool RZApplication::eventFilter(QObject *watched, QEvent *event)
{
    // In a long pass the window is not closed and takes no drops; closing
    // it asks the pass to stop.
    if (m_frozen && watched == m_window.get()) {
        if (event->type() == QEvent::Close) {
            stopProgressAction();
            event->ignore();
            return true;
        }
        if (event->type() == QEvent::DragEnter || event->type() == QEvent::DragMove || event->type() == QEvent::Drop) {
            event->ignore();
            return true;
        }
    }
    // Folders and files dropped anywhere on the window.
    if (watched == m_window.get() && (event->type() == QEvent::DragEnter || event->type() == QEvent::Drop)) {
        auto *drop = static_cast<QDropEvent *>(event);
        if (!drop->mimeData()->hasUrls())
            return false;
        QStringList paths;
        for (const QUrl &url : drop->mimeData()->urls())
            if (url.isLocalFile())
                paths.append(url.toLocalFile());
        if (paths.isEmpty())
            return false;
        drop->acceptProposedAction();
        if (event->type() == QEvent::Drop)
            emit scriptEvent(QStringLiteral("dropped"), paths);
        return true;
    }
    return QApplication::eventFilter(watched, event);
}

void RZApplication::keepResponsive()
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
        processEvents(QEventLoop::ExcludeUserInputEvents, 5);
        return;
    }
    // Frozen only once events are let through: a short pass never flickers.
    if (!m_frozen)
        freezeInput();
    processEvents(QEventLoop::AllEvents, 5);
}

RZApplication::LongPass::LongPass(RZApplication &application) : m_application(application)
{
    ++m_application.m_passDepth;
}

RZApplication::LongPass::~LongPass()
{
    if (--m_application.m_passDepth == 0 && m_application.m_frozen)
        m_application.thawInput();
}

void RZApplication::freezeInput()
{
    m_frozen = true;
    m_focusBeforeFreeze = focusWidget();
    const QWidget *stop = outlet(QStringLiteral("stop_progress"));
    for (QWidget *control : m_window->findChildren<QWidget *>()) {
        const bool takesInput = qobject_cast<QAbstractButton *>(control) || qobject_cast<QLineEdit *>(control)
                                || qobject_cast<QComboBox *>(control) || qobject_cast<QAbstractItemView *>(control);
        if (takesInput && control != stop && control->isEnabled()) {
            control->setEnabled(false);
            m_frozenControls.append(control);
        }
    }
    for (QAction *action : m_window->findChildren<QAction *>())
        if (action->isEnabled()) {
            action->setEnabled(false);
            m_frozenActions.append(action);
        }
}

void RZApplication::thawInput()
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
}

QVariant RZApplication::parseItems(const QVariantList &request)
{
    const LongPass pass(*this);
    m_lastYield = -1000; // a Stop pressed just before the listing counts at once
    FolderListing listing = m_engine->listing();
    listing.keepResponsive = [this] { keepResponsive(); };
    const auto records = listing.parseItems(ListingRequest::fromArray(request));
    return records ? QVariant(*records) : QVariant(false);
}

QVariantList RZApplication::makeReplacementNames(const QVariantList &request)
{
    const LongPass pass(*this);
    BatchProgress progress;
    progress.stopIndeterminate = [this](double maximum) { stopIndeterminateProgress(maximum); };
    progress.update = [this](double current, double maximum, const QString &upper, const QString &lower) {
        updateProgress(current, maximum, upper, lower);
    };
    const QVariantList rows = m_table->rows();
    QStringList names;
    for (const QVariant &row : rows)
        names.append(row.toMap().value(QStringLiteral("original")).toString());
    m_engine->prefetchGrep(names);
    m_engine->composer.prefixZerosControlConnected = outlet(QStringLiteral("prefix_add_leading_zeros")) != nullptr;
    m_engine->composer.suffixZerosControlConnected = outlet(QStringLiteral("suffix_add_leading_zeros")) != nullptr;
    return BatchRenaming::makeReplacementNames(m_engine->composer, BatchRequest::fromArray(request), rows, progress);
}

void RZApplication::updateProgress(double current, double maximum, const QString &upper, const QString &lower)
{
    // Fewer screen updates for long passes; the last value is skipped like
    // any other that is not a multiple.
    const qint64 step = qint64(current);
    if ((maximum > 200 && step % 25 != 0) || (maximum > 50 && maximum <= 200 && step % 10 != 0))
        return;
    if (auto *label = qobject_cast<QLabel *>(outlet(QStringLiteral("progress_label_super"))))
        label->setText(upper);
    if (auto *label = qobject_cast<QLabel *>(outlet(QStringLiteral("progress_label"))))
        label->setText(lower);
    if (auto *indicator = qobject_cast<QProgressBar *>(outlet(QStringLiteral("theIndicator")))) {
        indicator->setValue(int(current));
        // Drawn now: the loop calling this does not return to the event loop.
        indicator->window()->repaint();
    }
    keepResponsive();
}

void RZApplication::stopIndeterminateProgress(double maximum)
{
    if (auto *indicator = qobject_cast<QProgressBar *>(outlet(QStringLiteral("theIndicator")))) {
        indicator->setMinimum(0);
        indicator->setMaximum(int(maximum));
    }
}

void RZApplication::stopProgressAction()
{
    m_engine->stopProgressBool.store(false);
}

void RZApplication::refreshTablePreview()
{
    const QVariantList rows = m_table->rows();
    if (rows.isEmpty() || m_capturedSettings.size() < RenameSettings::count)
        return;
    // A copy as it stands after the settings were captured: the preview of
    // the first name has already advanced the engine's own counters once.
    NameComposer copy = m_engine->composer;
    copy.settings = m_engine->settings();
    copy.settings.setConstantData(m_capturedSettings);
    const qint32 prefixChoice = copy.settings._prefix_date_to_use;
    const qint32 suffixChoice = copy.settings._suffix_date_to_use;
    const bool grep = copy.settings._search_type_1 == QLatin1String("GREP") && !copy.settings._filename_search_1.isEmpty();
    const quint64 generation = ++m_previewGeneration;
    QElapsedTimer clock;
    clock.start();
    if (!grep && rows.size() <= immediatePreviewRows) {
        copy.baseNameCache = m_previewBases; // this thread's own, kept between keystrokes
        m_table->setNewNames(TablePreview::newNames(copy, rows, prefixChoice, suffixChoice, QDateTime::currentDateTime()));
        lastTablePreviewInBackground = false;
        emit tablePreviewApplied();
        lastTablePreviewMs = clock.elapsed(); // with what the new names set off
        return;
    }
    // Larger tables, and GREP rules, are worked out aside: typing never waits.
    lastTablePreviewInBackground = true;
    QThreadPool::globalInstance()->start([this, copy, rows, prefixChoice, suffixChoice, generation, grep, clock]() mutable {
        if (grep)
            copy.grep = TablePreview::prefetchedGrep(copy.settings, rows);
        const QStringList names = TablePreview::newNames(copy, rows, prefixChoice, suffixChoice, QDateTime::currentDateTime());
        QMetaObject::invokeMethod(this, [this, names, generation, clock] {
            if (generation != m_previewGeneration)
                return; // the rules changed again meanwhile
            m_table->setNewNames(names);
            lastTablePreviewMs = clock.elapsed();
            emit tablePreviewApplied();
        }, Qt::QueuedConnection);
    });
}

QWidget *RZApplication::outlet(const QString &name) const
{
    if (!m_window)
        return nullptr;
    if (m_window->objectName() == name)
        return m_window.get();
    return m_window->findChild<QWidget *>(name);
}

QString RZApplication::text(const QString &outletName) const
{
    if (const auto *field = qobject_cast<QLineEdit *>(outlet(outletName)))
        return field->text();
    return QString(QLatin1String(""));
}

qint32 RZApplication::integer(const QString &outletName) const
{
    return ROZ_NSDictionaryAdditions::intValue(text(outletName));
}

bool RZApplication::checked(const QString &outletName) const
{
    const auto *box = qobject_cast<QAbstractButton *>(outlet(outletName));
    return box && box->isChecked();
}

QString RZApplication::popupTitle(const QString &outletName) const
{
    const auto *popup = qobject_cast<QComboBox *>(outlet(outletName));
    return popup ? popup->currentText() : QString(QLatin1String(""));
}

int RZApplication::popupIndex(const QString &outletName) const
{
    const auto *popup = qobject_cast<QComboBox *>(outlet(outletName));
    return popup ? popup->currentIndex() : -1;
}

// A matrix is a group of radio buttons in order; its selection is the index
// of the checked one (its row or its column), -1 for none.
int RZApplication::matrixSelection(const QString &outletName) const
{
    const QWidget *matrix = outlet(outletName);
    if (!matrix)
        return -1;
    const QList<QRadioButton *> cells = matrix->findChildren<QRadioButton *>(QString(), Qt::FindDirectChildrenOnly);
    for (qsizetype i = 0; i < cells.size(); ++i)
        if (cells[i]->isChecked())
            return int(i);
    return -1;
}

void RZApplication::getConstantData()
{
    m_capturedSettings = capturedSettings();
    setConstantData(m_capturedSettings);
}

QVariantList RZApplication::capturedSettings() const
{
    QString extension = QLatin1String("");
    bool useNewExtension = false;
    bool changeExtensionCase = false;
    switch (matrixSelection(QStringLiteral("extension_matrix"))) {
    case 1:
        extension = text(QStringLiteral("extension"));
        useNewExtension = true;
        break;
    case 2:
        extension = popupTitle(QStringLiteral("extension_popup"));
        useNewExtension = true;
        break;
    case 3:
        changeExtensionCase = true;
        break;
    default:
        break;
    }
    if (!ROZ_NSStringAdditions::isBlankString(extension) && !extension.startsWith(u'.'))
        extension = u'.' + extension;

    return {
        text(QStringLiteral("prefix")),
        integer(QStringLiteral("prefix_start_num")),
        integer(QStringLiteral("prefix_ai_counter")),
        checked(QStringLiteral("prefix_add_leading_zeros")),
        integer(QStringLiteral("prefix_add_leading_zeros_min")),
        checked(QStringLiteral("inc_original_name")),
        text(QStringLiteral("search_1")),
        text(QStringLiteral("replace_1")),
        matrixSelection(QStringLiteral("snr_type_1")) == 1 ? QStringLiteral("GREP") : QStringLiteral("literal"),
        checked(QStringLiteral("snr_consider_case_1")),
        integer(QStringLiteral("trim_start")),
        integer(QStringLiteral("trim_end")),
        checked(QStringLiteral("change_case")),
        popupTitle(QStringLiteral("the_case")),
        checked(QStringLiteral("orig_strip_diacriticals")),
        text(QStringLiteral("suffix")),
        integer(QStringLiteral("suffix_start_num")),
        integer(QStringLiteral("suffix_ai_counter")),
        checked(QStringLiteral("suffix_add_leading_zeros")),
        integer(QStringLiteral("suffix_add_leading_zeros_min")),
        extension,
        useNewExtension,
        changeExtensionCase,
        popupTitle(QStringLiteral("ext_case")),
    };
}

void RZApplication::setConstantData(const QVariantList &entries)
{
    m_engine->settings().setConstantData(entries);
}

QString RZApplication::generateNewName(const QVariantList &request)
{
    // The counter is padded whenever the leading-zeros control exists.
    m_engine->composer.prefixZerosControlConnected = outlet(QStringLiteral("prefix_add_leading_zeros")) != nullptr;
    m_engine->composer.suffixZerosControlConnected = outlet(QStringLiteral("suffix_add_leading_zeros")) != nullptr;
    return m_engine->composer.generateNewName(CompositionRequest::fromArray(request));
}

void RZApplication::textDidChange(QObject *field)
{
    if (!m_engine || !m_engine->display_realtime_preview || !field || !previewFields.contains(field->objectName())
        || outlet(field->objectName()) != field)
        return;
    refreshPreview();
}

void RZApplication::refreshPreview()
{
    if (!m_engine)
        return;
    getConstantData();
    RenameSettings &settings = m_engine->settings();
    settings._prefix_date_to_use = popupIndex(QStringLiteral("prefix_date_to_use")) + 1;
    settings._suffix_date_to_use = popupIndex(QStringLiteral("suffix_date_to_use")) + 1;

    const QVariantList rows = m_table->rows();
    QString sample;
    qint32 rowCount = 10;
    QDateTime created;
    QDateTime modified;
    if (rows.isEmpty()) {
        sample = QCoreApplication::translate("ui", "sample_original_name");
        created = fixedDate(QStringLiteral("2000-01-01 12:00:00 +0500"));
        modified = fixedDate(QStringLiteral("2002-12-31 12:00:00 +0500"));
    } else {
        const QVariantMap first = rows.first().toMap();
        sample = first.value(QStringLiteral("original")).toString();
        rowCount = qint32(rows.size());
        created = first.value(QStringLiteral("creation")).toDateTime();
        modified = first.value(QStringLiteral("modification")).toDateTime();
    }
    auto dateFor = [&](qint32 choice) {
        switch (choice) {
        case 1:
            return QDateTime::currentDateTime();
        case 2:
            return created;
        case 3:
            return modified;
        default:
            return QDateTime();
        }
    };
    const QString preview = generateNewName({sample, rowCount, false, QString(QLatin1String("")),
                                             dateFor(settings._prefix_date_to_use),
                                             dateFor(settings._suffix_date_to_use)});
    if (auto *previewField = qobject_cast<QLineEdit *>(outlet(QStringLiteral("preview_name"))))
        previewField->setText(preview);
    m_engine->sample_name = sample;
    // The names in the table are stale now.
    if (QWidget *rename = outlet(QStringLiteral("rename")))
        rename->setEnabled(false);
    if (QWidget *update = outlet(QStringLiteral("update")))
        update->setEnabled(text(QStringLiteral("source_folder")) != QLatin1String(""));
    refreshTablePreview();
}

void RZApplication::checkConflicts()
{
    const QVariantList rows = m_table->rows();
    const QStringList newNames = m_table->previewedNames();
    const bool previewed = m_table->hasPreviewedNames();
    const quint64 generation = ++m_conflictGeneration;
    // The check looks at the disk for every row: aside, so typing never waits.
    QThreadPool::globalInstance()->start([this, rows, newNames, previewed, generation] {
        // Without a preview the rows' own new names count, where they have one.
        QStringList names = newNames;
        if (!previewed)
            for (const QVariant &row : rows)
                names.append(row.toMap().value(QStringLiteral("new")).toString());
        std::vector<SafeMover::Move> moves;
        std::vector<int> rowOfMove;
        for (const BatchRenaming::RowMove &rowMove : BatchRenaming::movesFor(rows, names)) {
            if (!previewed && names[rowMove.row].isEmpty())
                continue; // no new name worked out yet
            moves.push_back(rowMove.move);
            rowOfMove.push_back(rowMove.row);
        }
        const std::vector<SafeMover::Outcome> outcomes = SafeMover::plan(moves);
        QStringList reasons(rows.size());
        QStringList warnings(rows.size());
        for (size_t i = 0; i < outcomes.size(); ++i) {
            if (outcomes[i].status == SafeMover::Status::Conflict)
                reasons[rowOfMove[i]] = outcomes[i].reason;
            warnings[rowOfMove[i]] = outcomes[i].warning;
        }
        QMetaObject::invokeMethod(this, [this, reasons, warnings, generation] {
            if (generation != m_conflictGeneration || reasons.size() != m_table->rows().size())
                return; // the names or the rows changed meanwhile
            m_table->setConflicts(reasons);
            m_table->setWarnings(warnings);
            emit conflictsMarked();
        }, Qt::QueuedConnection);
    });
}
