#include "RZApplication.h"

#include "ScriptRequests.h"
#include "ResourceFolder.h"
#include "DefaultsBindings.h"
#include "FileTableView.h"

#include "BatchPass.h"
#include "FormatString.h"
#include "GrepReplace.h"
#include "ItemRecordValues.h"
#include "MiscMethods.h"
#include "NamedException.h"
#include "RuleForm.h"
#include "RuleMenus.h"
#include "TokenMenu.h"
#include "ScriptSubroutines.h"
#include "UiStrings.h"
#include "WindowStyle.h"

#include <QAbstractButton>
#include <QAction>
#include <QIcon>
#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>
#include <QComboBox>
#include <QDropEvent>
#include <QFileInfo>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QStyle>
#include <QLineEdit>
#include <QMimeData>
#include <QTableView>
#include <QThreadPool>
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
    return ROZ_MiscMethods::dateFromString(text).value_or(QDateTime());
}

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

RZApplication::RZApplication(int &argc, char **argv) : QApplication(argc, argv), m_table(new FileTableModel(this))
{
    setApplicationName(QStringLiteral("Nomen"));
    setOrganizationName(QStringLiteral("Nomen"));
    // Scripts know the table's data source by this class name.
    m_table->setProperty("nomenClassName", QStringLiteral("ASKDataSource"));
}

RZApplication::~RZApplication()
{
    // Previews and conflict checks still running aside report back to this
    // object.
    QThreadPool::globalInstance()->waitForDone();
    // The window's last events, as it goes, are not this object's to filter:
    // the panel they would ask about is gone first.
    if (m_form)
        window()->removeEventFilter(this);
}

RZApplication *RZApplication::instance()
{
    return qobject_cast<RZApplication *>(QCoreApplication::instance());
}

QString RZApplication::resourceDirectory()
{
    return ResourceFolder::path();
}

namespace {

// The icon drawn at the sizes window managers and task bars ask for; none
// when its file is missing.
QIcon applicationIcon()
{
    QSvgRenderer drawing(RZApplication::resourceDirectory() + QStringLiteral("/nomen.svg"));
    QIcon icon;
    if (!drawing.isValid())
        return icon;
    for (const int size : {16, 24, 32, 48, 64, 128, 256}) {
        QPixmap pixmap(size, size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        drawing.render(&painter);
        painter.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}

} // namespace

void RZApplication::init(const MethodRegistry &methods)
{
    UiStrings::install(*this);
    setStyle(new WindowStyle);
    setWindowIcon(applicationIcon());
    m_engine = std::make_unique<RenameEngine>();
    // The file table is the window's own table view.
    m_form = std::make_unique<InterfaceFile>(
        resourceDirectory() + QStringLiteral("/MainWindow.ui"),
        [](const QString &className, QWidget *parent, const QString &name) -> QWidget * {
            if (className == QLatin1String("QTableView") && name == QLatin1String("fileTable"))
                return new FileTableView(parent);
            return nullptr;
        });
    m_progress = std::make_unique<ProgressPanel>(*m_form, m_engine->stop);
    m_preview = new PreviewScheduler(*m_engine, *m_table, this);
    m_table->runAside = [this](const std::function<void()> &work) { m_progress->runAside(work); };
    loadInterface();
    DefaultsBindings::bind(window());
    systemIsRelease104OrLater = ROZ_MiscMethods::return104Plus();
    m_perl = loadHelper(methods, QStringLiteral("perl"));
    m_exifInfo = loadHelper(methods, QStringLiteral("exif_info"));
    ROZ_ScriptSubroutines::ROZ_runScriptSubroutine(*m_exifInfo, QStringLiteral("init"));
}

QString RZApplication::snrGrep(const QString &text, const QString &pattern, const QString &replacement, bool consideringCase)
{
    // The helper's answer replaces the text only when it is a string: a
    // failed call answers the error pair.
    return GrepReplace::snrGrep(text, pattern, replacement, consideringCase, [this](const QString &program) {
        const QVariant answer = ROZ_ScriptSubroutines::ROZ_runScriptSubroutine(*m_perl, QStringLiteral("execute_perl"), program);
        return answer.typeId() == QMetaType::QString ? std::optional(answer.toString()) : std::nullopt;
    });
}

QVariant RZApplication::getEXIFDate(const QVariant &path)
{
    return ROZ_ScriptSubroutines::ROZ_runScriptSubroutine(*m_exifInfo, QStringLiteral("get_exif_image_created_date"), path);
}

void RZApplication::loadInterface()
{
    // User edits only: text set by the program is not an edit.
    for (QLineEdit *field : window()->findChildren<QLineEdit *>()) {
        connect(field, &QLineEdit::textEdited, this, [this, field] { textDidChange(field); });
        field->installEventFilter(this); // for Undo Rename's shortcut
    }
    for (const char *affix : {"prefix", "suffix"}) {
        const QString name = QString::fromLatin1(affix);
        auto *field = m_form->control<QLineEdit>(name);
        auto *button = m_form->control<QToolButton>(name + QStringLiteral("_tokens"));
        if (field && button)
            TokenMenu::attach(*button, *field);
    }
    if (auto *table = m_form->control<QTableView>(QStringLiteral("fileTable"))) {
        table->setModel(m_table);
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
        const int dateWidth = table->fontMetrics().horizontalAdvance(QStringLiteral("2000-00-00 00:00:00")) + 2 * character;
        const std::pair<int, int> widths[] = {{FileTableModel::Include, 4 * character},
                                              {FileTableModel::Original, 32 * character},
                                              {FileTableModel::Location, 22 * character},
                                              {FileTableModel::Creation, dateWidth},
                                              {FileTableModel::Modification, dateWidth},
                                              {FileTableModel::Size, 10 * character}};
        for (const auto &[column, width] : widths)
            table->setColumnWidth(column, width);
    }
    if (auto *stop = m_form->control<QAbstractButton>(QStringLiteral("stop_progress")))
        connect(stop, &QAbstractButton::clicked, this, [this] { m_progress->stop(); });
    connectInterfaceEvents();
}

void RZApplication::connectInterfaceEvents()
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
    connect(m_preview, &PreviewScheduler::conflictsMarked, this, &RZApplication::conflictsMarked);
    connect(m_preview, &PreviewScheduler::patternChecked, this, &RZApplication::showPatternError);
    connect(this, &QCoreApplication::aboutToQuit, this, [this] { emit scriptEvent(QStringLiteral("willQuit"), QVariant()); });
    m_table->filesDropped = [this](const QStringList &paths, int) { emit scriptEvent(QStringLiteral("dropped"), paths); };
    // The counters follow the table's order: a new order needs new names.
    connect(m_table, &FileTableModel::rowsReordered, this, [this] {
        // Rows dragged to a new place are in no column's order any more.
        if (!m_sorting)
            if (auto *table = m_form->control<QTableView>(QStringLiteral("fileTable")))
                table->horizontalHeader()->setSortIndicatorShown(false);
        refreshPreview();
    });
    // A row ticked or unticked changes the counters of the rows after it.
    connect(m_table, &QAbstractItemModel::dataChanged, this, [this](const QModelIndex &from, const QModelIndex &to) {
        if (from.column() <= FileTableModel::Include && to.column() >= FileTableModel::Include)
            refreshPreview();
    });
    if (auto *table = m_form->control<QTableView>(QStringLiteral("fileTable"))) {
        // Names in natural order until the user picks another order.
        table->horizontalHeader()->setSectionsClickable(true);
        table->horizontalHeader()->setSortIndicator(FileTableModel::Original, Qt::AscendingOrder);
        table->horizontalHeader()->setSortIndicatorShown(true);
        connect(table->horizontalHeader(), &QHeaderView::sectionClicked, this, [this](int column) { sortByColumn(column); });
    }
    window()->setAcceptDrops(true);
    window()->installEventFilter(this);
}

void RZApplication::sortByColumn(int column)
{
    auto *table = m_form->control<QTableView>(QStringLiteral("fileTable"));
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
    auto *table = m_form->control<QTableView>(QStringLiteral("fileTable"));
    if (!table || !table->horizontalHeader()->isSortIndicatorShown())
        return;
    m_sorting = true;
    m_table->sort(table->horizontalHeader()->sortIndicatorSection(), table->horizontalHeader()->sortIndicatorOrder());
    m_sorting = false;
}

void RZApplication::showPatternError(const QString &error)
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

void RZApplication::showNewListing()
{
    auto *table = m_form->control<QTableView>(QStringLiteral("fileTable"));
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
    const std::vector<ItemRecord> &rows = m_table->rows();
    const bool oneLocation = std::all_of(rows.begin(), rows.end(), [&rows](const ItemRecord &row) {
        return row.location == rows.front().location;
    });
    table->setColumnHidden(FileTableModel::Location, oneLocation && !rows.empty());
    table->scrollToTop();
    table->clearSelection();
}

bool RZApplication::eventFilter(QObject *watched, QEvent *event)
{
    // Undo Rename answers its shortcut wherever focus is, unless the field
    // with focus has an edit of its own to undo.
    if (event->type() == QEvent::ShortcutOverride && static_cast<QKeyEvent *>(event)->matches(QKeySequence::Undo))
        if (auto *field = qobject_cast<QLineEdit *>(watched); field && !field->isUndoAvailable()) {
            event->ignore();
            return true;
        }
    if (watched != window())
        return QApplication::eventFilter(watched, event);
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
    return QApplication::eventFilter(watched, event);
}

QVariant RZApplication::parseItems(const QVariantList &request)
{
    const ProgressPanel::LongPass pass(*m_progress);
    m_progress->yieldNow(); // a Stop pressed just before the listing counts at once
    FolderListing listing = m_engine->listing();
    listing.keepResponsive = [this] { m_progress->keepResponsive(); };
    return ItemRecordValues::toScript(listing.list(ScriptRequests::listingRequest(request)), m_engine->dates);
}

QVariantMap RZApplication::listIntoTable(const QVariantList &request)
{
    const ProgressPanel::LongPass pass(*m_progress);
    m_progress->yieldNow();
    FolderListing listing = m_engine->listing();
    listing.keepResponsive = [this] { m_progress->keepResponsive(); };
    Listing listed = listing.list(ScriptRequests::listingRequest(request));
    const bool stopped = listed.stopped || !listed.stoppedInside.empty();
    m_table->setRows(std::move(listed.items));
    m_table->setShowsDatesTaken(m_engine->readsDatesTaken);
    showNewListing();
    return {{QStringLiteral("rows"), m_table->rowCount()}, {QStringLiteral("stopped"), stopped}};
}

QVariantList RZApplication::makeReplacementNames(const QVariantList &entries)
{
    const ProgressPanel::LongPass longPass(*m_progress);
    const ScriptRequests::BatchRequest request = ScriptRequests::batchRequest(entries);
    std::vector<ItemRecord> rows = m_table->rows();
    if (request.rowCount < 0 || size_t(request.rowCount) > rows.size())
        throw NamedException(NSInvalidArgumentException, QStringLiteral("makeReplacementNames: the request counts %1 rows, "
                                                                        "but the table holds %2")
                                                             .arg(request.rowCount)
                                                             .arg(rows.size()));
    rows.resize(size_t(request.rowCount));
    m_engine->composer.prefixZerosControlConnected = RuleForm::prefixZerosConnected(*m_form);
    m_engine->composer.suffixZerosControlConnected = RuleForm::suffixZerosConnected(*m_form);
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
    const QStringList newNames = m_engine->composeTable(rows, pass).names;
    for (size_t i = 0; i < rows.size(); ++i)
        rows[i].newName = newNames[qsizetype(i)];
    return ItemRecordValues::toScript(rows, m_engine->dates);
}

void RZApplication::getConstantData()
{
    m_capturedRule = RuleForm::rule(*m_form);
    m_engine->useRule(m_capturedRule);
}

QString RZApplication::generateNewName(const CompositionRequest &request)
{
    // The counter is padded whenever the leading-zeros control exists.
    m_engine->composer.prefixZerosControlConnected = RuleForm::prefixZerosConnected(*m_form);
    m_engine->composer.suffixZerosControlConnected = RuleForm::suffixZerosConnected(*m_form);
    return m_engine->composer.generateNewName(request);
}

void RZApplication::textDidChange(QObject *field)
{
    if (!m_engine || !m_engine->previewsAsTyped || !field || !previewFields.contains(field->objectName())
        || outlet(field->objectName()) != field)
        return;
    refreshPreview();
}

void RZApplication::refreshPreview()
{
    if (!m_engine)
        return;
    getConstantData();
    const RenameRule &rule = m_capturedRule;

    const std::vector<ItemRecord> &rows = m_table->rows();
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
         BatchPass::dateFor(rule.prefix.date, now, sample, m_engine->dates),
         BatchPass::dateFor(rule.suffix.date, now, sample, m_engine->dates)});
    if (auto *previewField = m_form->control<QLineEdit>(QStringLiteral("preview_name")))
        previewField->setText(preview);
    m_engine->sampleName = sample.name;
    // The names in the table are stale now.
    if (QWidget *rename = outlet(QStringLiteral("rename")))
        rename->setEnabled(false);
    if (QWidget *update = outlet(QStringLiteral("update")))
        if (auto *folder = m_form->control<QLineEdit>(QStringLiteral("source_folder")))
            update->setEnabled(!folder->text().isEmpty());
    m_preview->refresh(m_capturedRule, m_advanceExcluded);
}
