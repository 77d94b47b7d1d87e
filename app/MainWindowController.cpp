#include "MainWindowController.h"

#include "BatchPass.h"
#include "FileTableView.h"
#include "FormatString.h"
#include "MiscMethods.h"
#include "NamedException.h"
#include "RuleForm.h"
#include "RuleMenus.h"
#include "ThumbnailLoader.h"
#include "TokenMenu.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDropEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QSettings>
#include <QMimeData>
#include <QStyle>
#include <QTableView>
#include <QToolButton>
#include <QUrl>

namespace {

// The fields whose edits refresh the preview. The two increment fields are
// left out on purpose: the preview shows only the first name.
const QStringList previewFields = {"prefix",          "prefix_start_num", "prefix_add_leading_zeros_min",
                                   "search_1",        "replace_1",        "trim_start",
                                   "trim_end",        "suffix",           "suffix_start_num",
                                   "suffix_add_leading_zeros_min", "extension"};

QDateTime fixedDate(const QString &text)
{
    return MiscMethods::dateFromString(text).value_or(QDateTime());
}

} // namespace

MainWindowController::MainWindowController(RenameEngine &engine, FileTableModel &table, const QString &interfaceFile,
                                           QObject *parent)
    : QObject(parent), m_engine(engine), m_table(table)
{
    // The file table is the window's own table view.
    m_form = std::make_unique<InterfaceFile>(
        interfaceFile, [](const QString &className, QWidget *parent, const QString &name) -> QWidget * {
            if (className == QLatin1String("QTableView") && name == QLatin1String("fileTable"))
                return new FileTableView(parent);
            return nullptr;
        });
    m_tableView = m_form->control<QTableView>(QStringLiteral("fileTable"));
    m_progress = std::make_unique<ProgressPanel>(*m_form, m_engine.stop);
    m_preview = new PreviewScheduler(m_engine, m_table, this);
    m_fill = new MetadataFill(m_table, this);
    m_thumbnails = new ThumbnailLoader(64, this);
    m_table.runAside = [this](const std::function<void()> &work) { m_progress->runAside(work); };
    // User edits only: text set by the program is not an edit.
    for (QLineEdit *field : window()->findChildren<QLineEdit *>()) {
        connect(field, &QLineEdit::textEdited, this, [this, field] {
            m_renameUndoesFirst = false; // the field's own edit comes first again
            textDidChange(field);
        });
        field->installEventFilter(this); // for Undo Rename's shortcut
    }
    for (const char *affix : {"prefix", "suffix"}) {
        const QString name = QString::fromLatin1(affix);
        auto *field = m_form->control<QLineEdit>(name);
        auto *button = m_form->control<QToolButton>(name + QStringLiteral("_tokens"));
        if (field && button)
            TokenMenu::attach(*button, *field);
    }
    setUpTable();
    if (auto *stop = m_form->control<QAbstractButton>(QStringLiteral("stop_progress")))
        connect(stop, &QAbstractButton::clicked, this, [this] { m_progress->stop(); });
    connectInterfaceEvents();
}

MainWindowController::~MainWindowController()
{
    // The window's last events, as it goes, are not this object's to filter:
    // the panel they would ask about is gone first.
    window()->removeEventFilter(this);
}

void MainWindowController::setUpTable()
{
    if (!m_tableView)
        return;
    QTableView *table = m_tableView;
    table->setModel(&m_table);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setDragDropMode(QAbstractItemView::DragDrop);
    table->setDefaultDropAction(Qt::MoveAction);
    table->setDragEnabled(true);
    table->setAcceptDrops(true);
    table->setDropIndicatorShown(true);
    table->horizontalHeader()->setStretchLastSection(true);
    table->horizontalHeader()->setSectionResizeMode(QHeaderView::Interactive);
    table->horizontalHeader()->setMinimumSectionSize(table->fontMetrics().averageCharWidth() * 3);
    // Widths from the font, not from the contents: measuring a large
    // table takes long. The user's own widths come back with the
    // window's state.
    table->setWordWrap(false);
    table->setTextElideMode(Qt::ElideMiddle); // a name's extension stays in sight
    table->verticalHeader()->setDefaultSectionSize(table->fontMetrics().height() + 6);
    const int character = table->fontMetrics().averageCharWidth();
    const std::pair<int, int> widths[] = {{FileTableModel::Include, 4 * character},
                                          {FileTableModel::Original, 32 * character},
                                          {FileTableModel::Location, 22 * character}};
    for (const auto &[column, width] : widths)
        table->setColumnWidth(column, width);
    // Numbers and dates are never cut: their columns open wide enough for
    // the widest they show, title and order mark included, and are never
    // made narrower.
    const int margins = 2 * (table->style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, table) + 1) + character;
    const std::pair<int, const char *> widest[] = {{FileTableModel::Creation, "2000-00-00 00:00:00"},
                                                   {FileTableModel::Modification, "2000-00-00 00:00:00"},
                                                   {FileTableModel::Size, "1023.9 KB"},
                                                   {FileTableModel::Dimensions, "10000x10000"},
                                                   {FileTableModel::Duration, "10.00.00"}};
    for (const auto &[column, text] : widest) {
        const QString title = m_table.headerData(column, Qt::Horizontal, Qt::DisplayRole).toString();
        const int titled = table->fontMetrics().horizontalAdvance(title) + 3 * character; // and the order mark
        m_numberWidths[column] = std::max(table->fontMetrics().horizontalAdvance(QLatin1String(text)) + margins, titled);
        table->setColumnWidth(column, m_numberWidths[column]);
    }
    connect(table->horizontalHeader(), &QHeaderView::sectionResized, this, [this](int column, int, int width) {
        if (const auto least = m_numberWidths.constFind(column); least != m_numberWidths.constEnd() && width > 0 && width < *least)
            m_tableView->horizontalHeader()->resizeSection(column, *least);
    });
    // What files say is shown on request, chosen from the header's menu,
    // before the new name (which takes the width that is left).
    QHeaderView *header = table->horizontalHeader();
    for (int column = FileTableModel::firstMetadataColumn; column <= FileTableModel::lastMetadataColumn; ++column) {
        if (!m_numberWidths.contains(column)) {
            const int title = table->fontMetrics().horizontalAdvance(m_table.headerData(column, Qt::Horizontal, Qt::DisplayRole).toString());
            table->setColumnWidth(column, std::max(title + 3 * character, 18 * character));
        }
        table->setColumnHidden(column, true);
        header->moveSection(header->visualIndex(column), header->visualIndex(FileTableModel::New));
    }
    // Pictures of the files, beside their tick boxes, on request (and for
    // folders of pictures until the person chooses).
    m_table.setThumbnails(m_thumbnails);
    table->setColumnWidth(FileTableModel::Thumbnail, m_thumbnails->side() + character);
    table->setColumnHidden(FileTableModel::Thumbnail, true);
    header->moveSection(header->visualIndex(FileTableModel::Thumbnail), header->visualIndex(FileTableModel::Include) + 1);
    header->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(header, &QWidget::customContextMenuRequested, this, &MainWindowController::showColumnMenu);
}

void MainWindowController::showThumbnails(bool shown)
{
    if (!m_tableView)
        return;
    m_tableView->setColumnHidden(FileTableModel::Thumbnail, !shown);
    const int textRow = m_tableView->fontMetrics().height() + 6;
    const int height = shown ? std::max(textRow, m_thumbnails->side() + 4) : textRow;
    if (m_tableView->verticalHeader()->defaultSectionSize() != height) // each change goes over every row
        m_tableView->verticalHeader()->setDefaultSectionSize(height);
}

void MainWindowController::showColumnMenu(const QPoint &at)
{
    QMenu menu(m_tableView);
    menu.setObjectName(QStringLiteral("column_menu"));
    QAction *thumbnails = menu.addAction(QStringLiteral("Thumbnails"));
    thumbnails->setObjectName(QStringLiteral("show_column_thumbnail"));
    thumbnails->setCheckable(true);
    thumbnails->setChecked(!m_tableView->isColumnHidden(FileTableModel::Thumbnail));
    connect(thumbnails, &QAction::toggled, this, [this](bool shown) { showColumn(FileTableModel::Thumbnail, shown); });
    menu.addSeparator();
    for (int column = FileTableModel::firstMetadataColumn; column <= FileTableModel::lastMetadataColumn; ++column) {
        QAction *action = menu.addAction(m_table.headerData(column, Qt::Horizontal, Qt::DisplayRole).toString());
        action->setObjectName(QStringLiteral("show_column_") + FileTableModel::columnIdentifiers()[column]);
        action->setCheckable(true);
        action->setChecked(!m_tableView->isColumnHidden(column));
        connect(action, &QAction::toggled, this, [this, column](bool shown) { showColumn(column, shown); });
    }
    menu.exec(m_tableView->horizontalHeader()->mapToGlobal(at));
}

void MainWindowController::showColumn(int column, bool shown)
{
    if (!m_tableView || column < FileTableModel::firstMetadataColumn || column >= FileTableModel::ColumnCount)
        return;
    if (column == FileTableModel::Thumbnail) {
        // The person's choice holds from now on, in this run and the next.
        QSettings().setValue(QStringLiteral("columns/thumbnails"), shown);
        showThumbnails(shown);
        return;
    }
    m_tableView->setColumnHidden(column, !shown);
    m_fill->want(metadataWanted());
}

Metadata::Request MainWindowController::shownColumnsRequest() const
{
    Metadata::Request wanted;
    if (m_tableView)
        for (int column = FileTableModel::firstMetadataColumn; column <= FileTableModel::lastMetadataColumn; ++column)
            if (!m_tableView->isColumnHidden(column))
                wanted |= FileTableModel::metadataOf(column);
    return wanted;
}

Metadata::Request MainWindowController::metadataWanted() const
{
    Metadata::Request wanted = m_engine.rule().metadataRequest();
    wanted.dateTaken = false;
    wanted |= shownColumnsRequest();
    return wanted;
}

void MainWindowController::connectInterfaceEvents()
{
    // Every named button, check box, radio button and popup reports its
    // action; Stop is handled here, as it must work while a loop runs.
    for (QAbstractButton *button : window()->findChildren<QAbstractButton *>()) {
        const QString name = button->objectName();
        if (!name.isEmpty() && !name.startsWith(QLatin1String("qt_")) && name != QLatin1String("stop_progress"))
            connect(button, &QAbstractButton::clicked, this, [this, name] { emit scriptEvent(QStringLiteral("clicked"), name); });
    }
    // Return in a text field is its action too.
    for (QLineEdit *field : window()->findChildren<QLineEdit *>()) {
        const QString name = field->objectName();
        connect(field, &QLineEdit::returnPressed, this, [this, name] { emit scriptEvent(QStringLiteral("clicked"), name); });
    }
    for (QComboBox *popup : window()->findChildren<QComboBox *>()) {
        const QString name = popup->objectName();
        connect(popup, &QComboBox::activated, this, [this, name] { emit scriptEvent(QStringLiteral("clicked"), name); });
    }
    for (QAction *action : window()->findChildren<QAction *>()) {
        const QString name = action->objectName();
        if (!name.isEmpty())
            connect(action, &QAction::triggered, this, [this, name] { emit scriptEvent(QStringLiteral("choseMenuItem"), name); });
    }
    RuleMenus::install(window(), [this](const QString &handler, const QString &name) { emit scriptEvent(handler, name); });
    connect(m_preview, &PreviewScheduler::applied, this, [this] {
        emit tablePreviewApplied();
        emit scriptEvent(QStringLiteral("previewed"), QVariant());
        m_preview->checkConflicts();
    });
    connect(m_preview, &PreviewScheduler::conflictsMarked, this, &MainWindowController::conflictsMarked);
    connect(m_preview, &PreviewScheduler::patternChecked, this, &MainWindowController::showPatternError);
    // Values read aside show in the columns and in the names composed again.
    connect(m_fill, &MetadataFill::filled, this, &MainWindowController::refreshPreview);
    connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, this, [this] { emit scriptEvent(QStringLiteral("willQuit"), QVariant()); });
    m_table.filesDropped = [this](const QStringList &paths, int) { emit scriptEvent(QStringLiteral("dropped"), paths); };
    // The counters follow the table's order: a new order needs new names.
    connect(&m_table, &FileTableModel::rowsReordered, this, [this] {
        // Rows dragged to a new place are in no column's order any more.
        if (!m_sorting)
            if (m_tableView)
                m_tableView->horizontalHeader()->setSortIndicatorShown(false);
        refreshPreview();
    });
    // A row ticked or unticked changes the counters of the rows after it.
    connect(&m_table, &QAbstractItemModel::dataChanged, this, [this](const QModelIndex &from, const QModelIndex &to) {
        if (from.column() <= FileTableModel::Include && to.column() >= FileTableModel::Include)
            refreshPreview();
    });
    if (QTableView *table = m_tableView) {
        // Names in natural order until the user picks another order.
        table->horizontalHeader()->setSectionsClickable(true);
        table->horizontalHeader()->setSortIndicator(FileTableModel::Original, Qt::AscendingOrder);
        table->horizontalHeader()->setSortIndicatorShown(true);
        connect(table->horizontalHeader(), &QHeaderView::sectionClicked, this, [this](int column) { sortByColumn(column); });
    }
    window()->setAcceptDrops(true);
    window()->installEventFilter(this);
}

void MainWindowController::sortByColumn(int column)
{
    QTableView *table = m_tableView;
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

void MainWindowController::sortTableRows()
{
    QTableView *table = m_tableView;
    if (!table || !table->horizontalHeader()->isSortIndicatorShown())
        return;
    m_sorting = true;
    m_table.sort(table->horizontalHeader()->sortIndicatorSection(), table->horizontalHeader()->sortIndicatorOrder());
    m_sorting = false;
}

void MainWindowController::showPatternError(const QString &error)
{
    auto *label = m_form->control<QLabel>(QStringLiteral("snr_error_1"));
    auto *field = m_form->control<QLineEdit>(QStringLiteral("search_1"));
    if (label) {
        // One line however long Perl's message: the whole of it in the tooltip.
        label->setSizePolicy(QSizePolicy::Ignored, label->sizePolicy().verticalPolicy());
        QPalette palette = label->palette();
        palette.setColor(QPalette::WindowText, QColor(0xc0, 0x1c, 0x28));
        label->setPalette(palette);
        label->setText(error);
        label->setToolTip(error);
        label->setVisible(!error.isEmpty());
    }
    if (!field)
        return;
    QAction *mark = field->findChild<QAction *>(QStringLiteral("pattern_error_mark"));
    if (error.isEmpty()) {
        delete mark;
        return;
    }
    if (!mark) {
        mark = field->addAction(field->style()->standardIcon(QStyle::SP_MessageBoxCritical), QLineEdit::TrailingPosition);
        mark->setObjectName(QStringLiteral("pattern_error_mark"));
    }
    mark->setToolTip(error);
}

void MainWindowController::showNewListing()
{
    QTableView *table = m_tableView;
    if (!table)
        return;
    // A column's order stays from one listing to the next; rows dragged
    // into an order of their own start again in natural name order.
    QHeaderView *header = table->horizontalHeader();
    if (!header->isSortIndicatorShown()) {
        header->setSortIndicator(FileTableModel::Original, Qt::AscendingOrder);
        header->setSortIndicatorShown(true);
    }
    sortTableRows();
    // The location says nothing when every row shares it.
    const std::vector<ItemRecord> &rows = m_table.rows();
    const bool oneLocation = std::all_of(rows.begin(), rows.end(), [&rows](const ItemRecord &row) {
        return row.location == rows.front().location;
    });
    table->setColumnHidden(FileTableModel::Location, oneLocation && !rows.empty());
    // Widths remembered from a run with a narrower font do not cut numbers.
    for (auto least = m_numberWidths.cbegin(); least != m_numberWidths.cend(); ++least)
        if (header->sectionSize(least.key()) > 0 && header->sectionSize(least.key()) < least.value())
            header->resizeSection(least.key(), least.value());
    table->scrollToTop();
    table->clearSelection();
}

bool MainWindowController::eventFilter(QObject *watched, QEvent *event)
{
    // Undo Rename answers its shortcut wherever focus is: right after a
    // rename (until the person types again), and when the field with focus
    // has no edit of its own to undo.
    if (event->type() == QEvent::ShortcutOverride && static_cast<QKeyEvent *>(event)->matches(QKeySequence::Undo))
        if (auto *field = qobject_cast<QLineEdit *>(watched); field && (m_renameUndoesFirst || !field->isUndoAvailable())) {
            event->ignore();
            return true;
        }
    if (watched != window())
        return QObject::eventFilter(watched, event);
    // In a long pass the window is not closed and takes no drops; closing
    // it asks the pass to stop.
    if (m_progress->inputFrozen()) {
        if (event->type() == QEvent::Close) {
            m_progress->stop();
            event->ignore();
            return true;
        }
        if (event->type() == QEvent::DragEnter || event->type() == QEvent::DragMove || event->type() == QEvent::Drop) {
            event->ignore();
            return true;
        }
    }
    // Folders and files dropped anywhere on the window.
    if (event->type() == QEvent::DragEnter || event->type() == QEvent::Drop) {
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
    return QObject::eventFilter(watched, event);
}

Listing MainWindowController::list(const ListingRequest &request)
{
    const ProgressPanel::LongPass pass(*m_progress);
    m_progress->yieldNow(); // a Stop pressed just before the listing counts at once
    // The listing reads at once what the rule and the shown columns ask.
    m_engine.columnsRequest = shownColumnsRequest();
    FolderListing listing = m_engine.listing();
    listing.keepResponsive = [this] { m_progress->keepResponsive(); };
    return listing.list(request);
}

bool MainWindowController::listIntoTable(const ListingRequest &request)
{
    Listing listed = list(request);
    const bool stopped = listed.stopped || !listed.stoppedInside.empty();
    // Thumbnails for folders of pictures, unless the person chose; shown or
    // hidden while the table is empty, as changing the rows' height goes
    // over every row (40 ms for a million).
    const QVariant chosen = QSettings().value(QStringLiteral("columns/thumbnails"));
    const bool thumbnails = chosen.isValid() ? chosen.toBool() : FileTableModel::holdsMostlyPictures(listed.items);
    if (m_tableView && thumbnails == m_tableView->isColumnHidden(FileTableModel::Thumbnail)) {
        m_table.setRows({});
        showThumbnails(thumbnails);
    }
    m_table.setRows(std::move(listed.items));
    m_table.setShowsDatesTaken(m_engine.readsDatesTaken);
    showNewListing();
    return stopped;
}

std::vector<ItemRecord> MainWindowController::makeReplacementNames(const ScriptRequests::BatchRequest &request)
{
    const ProgressPanel::LongPass longPass(*m_progress);
    if (request.rowCount < 0 || size_t(request.rowCount) > m_table.rows().size())
        throw NamedException(NSInvalidArgumentException, QStringLiteral("makeReplacementNames: the request counts %1 rows, "
                                                                        "but the table holds %2")
                                                             .arg(request.rowCount)
                                                             .arg(m_table.rows().size()));
    // Every value the rule shows is read before names are given.
    m_fill->want(metadataWanted());
    m_fill->finish();
    std::vector<ItemRecord> rows = m_table.rows();
    rows.resize(size_t(request.rowCount));
    useZerosControls();
    m_advanceExcluded = request.advanceExcluded;

    m_progress->stopIndeterminate(request.rowCount);
    PassRequest pass{request.prefixChoice, request.suffixChoice, request.suppliedDate, request.rowCount,
                     request.advanceExcluded, {}};
    pass.progress = [&](qint32 n, qint32 count) {
        // Only the steps the panel shows are worded.
        if (ProgressPanel::shows(n, count))
            m_progress->update(n, count, request.upperText,
                               FormatString::apply(request.lowerFormat, {qlonglong(n), qlonglong(count), request.word}));
    };
    const QStringList newNames = m_engine.composeTable(rows, pass).names;
    for (size_t i = 0; i < rows.size(); ++i)
        rows[i].newName = newNames[qsizetype(i)];
    return rows;
}

// The counter is padded whenever the leading-zeros control exists.
void MainWindowController::useZerosControls()
{
    m_engine.composer.prefixZerosControlConnected = RuleForm::prefixZerosConnected(*m_form);
    m_engine.composer.suffixZerosControlConnected = RuleForm::suffixZerosConnected(*m_form);
}

void MainWindowController::getConstantData()
{
    m_capturedRule = RuleForm::rule(*m_form);
    m_engine.useRule(m_capturedRule);
}

QString MainWindowController::generateNewName(const CompositionRequest &request)
{
    useZerosControls();
    return m_engine.composer.generateNewName(request);
}

void MainWindowController::textDidChange(QObject *field)
{
    if (!m_engine.previewsAsTyped || !field || !previewFields.contains(field->objectName())
        || m_form->outlet(field->objectName()) != field)
        return;
    refreshPreview();
}

void MainWindowController::refreshPreview()
{
    getConstantData();
    const RenameRule &rule = m_capturedRule;

    const std::vector<ItemRecord> &rows = m_table.rows();
    ItemRecord sample;
    qint32 rowCount = 10;
    if (rows.empty()) {
        sample.name = QCoreApplication::translate("ui", "sample_original_name");
        sample.created = fixedDate(QStringLiteral("2000-01-01 12:00:00 +0500")).toMSecsSinceEpoch();
        sample.modified = fixedDate(QStringLiteral("2002-12-31 12:00:00 +0500")).toMSecsSinceEpoch();
    } else {
        sample = rows.front();
        rowCount = qint32(rows.size());
    }
    const QDateTime now = QDateTime::currentDateTime();
    const QString preview = generateNewName(
        {sample.name, rowCount, false, QString(QLatin1String("")),
         BatchPass::dateFor(rule.prefix.date, now, sample, m_engine.dates),
         BatchPass::dateFor(rule.suffix.date, now, sample, m_engine.dates), sample.metadata.get()});
    if (auto *previewField = m_form->control<QLineEdit>(QStringLiteral("preview_name")))
        previewField->setText(preview);
    m_engine.sampleName = sample.name;
    // The names in the table are stale now.
    if (QWidget *rename = m_form->outlet(QStringLiteral("rename")))
        rename->setEnabled(false);
    if (QWidget *update = m_form->outlet(QStringLiteral("update")))
        if (auto *folder = m_form->control<QLineEdit>(QStringLiteral("source_folder")))
            update->setEnabled(!folder->text().isEmpty());
    m_fill->want(metadataWanted());
    m_preview->refresh(m_capturedRule, m_advanceExcluded);
}
