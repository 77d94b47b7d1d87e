// The window's finer points, driven with real pointer and key input on the
// private X server: reordering rows by dragging, tokens from a menu, Undo
// Rename from any field, the rule controls that go together, a pattern
// that does not compile, the layout at two widths, and the progress panel.

#include "FileTableView.h"
#include "OutletValues.h"
#include "RuleForm.h"
#include "WindowDriver.h"

#include <QAction>
#include <QComboBox>
#include <QHeaderView>
#include <QImage>
#include <QProcess>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QProgressBar>
#include <QScrollBar>
#include <QSettings>
#include <QStyle>
#include <QTableView>
#include "TemporaryFolder.h"
#include <QTest>
#include <QTimer>
#include <QToolButton>

#include "SyntheticInput.h"

namespace {

using WindowTests::Window;


TEST_F(Window, ARowDraggedOverRowThreeLandsThereAndTheNextListingIsInNameOrderAgain)
{
    SyntheticInput pointer;
    ASSERT_TRUE(pointer.usable());
    control<QLineEdit>("prefix")->setText(QStringLiteral("n«#» "));
    listNewFolder(numberedNames(QStringLiteral("f%1.txt"), 1, 20));
    ASSERT_EQ(column(FileTableModel::Original).mid(0, 4), QStringList({"f1.txt", "f2.txt", "f3.txt", "f4.txt"}));
    FileTableView *table = fileTable();
    table->scrollToTop();

    // Row 8 (f8.txt) pressed, dragged, and let go a little below the top
    // of row 3, well inside the row: it lands above row 3.
    const int from = 7;
    const auto centre = [table](int row) { return QPoint(120, table->rowViewportPosition(row) + table->rowHeight(row) / 2); };
    const QPoint target(120, table->rowViewportPosition(2) + table->rowHeight(2) / 4);
    int lineDuringDrag = -2;
    QWidget *viewport = table->viewport();
    ASSERT_TRUE(perform({
        [&] { pointer.moveTo(viewport->mapToGlobal(centre(from))); },
        [&] { pointer.button(true); },
        [&] { pointer.moveTo(viewport->mapToGlobal(centre(from) + QPoint(0, -8))); },
        [&] { pointer.moveTo(viewport->mapToGlobal(centre(from) + QPoint(0, -30))); },
        [&] { pointer.moveTo(viewport->mapToGlobal(target + QPoint(0, 6))); },
        [&] { pointer.moveTo(viewport->mapToGlobal(target)); },
        [&] { pointer.moveTo(viewport->mapToGlobal(target)); },
        [&] {
            lineDuringDrag = table->shownDropRow();
            screenshot(QStringLiteral("window-dragging-a-row.png"));
        },
        [&] { pointer.button(false); },
    }));
    ASSERT_TRUE(waitFor([] { return column(FileTableModel::Original).value(2) == QLatin1String("f8.txt"); }));
    EXPECT_EQ(lineDuringDrag, 2) << "the line shows where the row will land";
    EXPECT_EQ(table->shownDropRow(), -1);
    EXPECT_EQ(column(FileTableModel::Original).mid(0, 9),
              QStringList({"f1.txt", "f2.txt", "f8.txt", "f3.txt", "f4.txt", "f5.txt", "f6.txt", "f7.txt", "f9.txt"}));
    // Counters follow the new order at once.
    waitFor([] { return column(FileTableModel::New).value(2) == QLatin1String("n03 f8.txt"); });
    EXPECT_EQ(column(FileTableModel::New).value(2), "n03 f8.txt");
    EXPECT_EQ(column(FileTableModel::New).value(3), "n04 f3.txt");
    EXPECT_FALSE(table->horizontalHeader()->isSortIndicatorShown()) << "the rows are in no column's order";
    EXPECT_TRUE(table->selectionModel()->isRowSelected(2)) << "the moved row stays selected";

    table->scrollToBottom();
    QCoreApplication::processEvents();
    const int last = table->model()->rowCount() - 1;
    // The lower half of the last row: below it, which is the end.
    const QPoint below(120, table->rowViewportPosition(last) + table->rowHeight(last) * 3 / 4);
    ASSERT_TRUE(perform({
        [&] { pointer.moveTo(viewport->mapToGlobal(centre(last - 1))); },
        [&] { pointer.button(true); },
        [&] { pointer.moveTo(viewport->mapToGlobal(centre(last - 1) + QPoint(0, 12))); },
        [&] { pointer.moveTo(viewport->mapToGlobal(below)); },
        [&] { pointer.moveTo(viewport->mapToGlobal(below)); },
        [&] { pointer.button(false); },
    }));
    ASSERT_TRUE(waitFor([] { return column(FileTableModel::Original).last() != QLatin1String("f20.txt"); }));
    EXPECT_EQ(column(FileTableModel::Original).mid(18), QStringList({"f20.txt", "f19.txt"}));

    // The next listing, of this folder or another, is in natural name order,
    // shown at its top.
    table->scrollToBottom();
    QTest::keyClick(application->window(), Qt::Key_F5);
    EXPECT_EQ(column(FileTableModel::Original).mid(0, 4), QStringList({"f1.txt", "f2.txt", "f3.txt", "f4.txt"}));
    EXPECT_TRUE(table->horizontalHeader()->isSortIndicatorShown());
    EXPECT_EQ(table->horizontalHeader()->sortIndicatorSection(), int(FileTableModel::Original));
    EXPECT_EQ(table->verticalScrollBar()->value(), 0);
    control<QLineEdit>("prefix")->clear();
    EXPECT_NO_SURPRISES();
}

TEST_F(Window, UndoRenameAnswersItsShortcutWhereverFocusIsUnlessAFieldHasItsOwnEdit)
{
    listNewFolder({"a.txt", "b.txt"});
    auto *prefix = control<QLineEdit>("prefix");
    const auto renameAndUndoFrom = [&](QWidget *focus) {
        prefix->setText(QStringLiteral("x_"));
        script->handle(QStringLiteral("clicked"), QStringLiteral("rename"));
        EXPECT_EQ(namesIn(folder.path()), QStringList({"x_a.txt", "x_b.txt"}));
        focus->setFocus();
        if (auto *field = qobject_cast<QLineEdit *>(focus))
            field->selectAll(); // as the folder field is left after a listing
        QTest::keyClick(focus, Qt::Key_Z, Qt::ControlModifier);
        return namesIn(folder.path());
    };
    for (const char *name : {"source_folder", "prefix", "search_1", "trim_start", "fileTable", "preview_name"})
        EXPECT_EQ(renameAndUndoFrom(control<QWidget>(name)), QStringList({"a.txt", "b.txt"})) << name;

    // A field with a typed edit undoes that edit first.
    prefix->setText(QStringLiteral("x_"));
    script->handle(QStringLiteral("clicked"), QStringLiteral("rename"));
    auto *suffix = control<QLineEdit>("suffix");
    suffix->setFocus();
    QTest::keyClicks(suffix, QStringLiteral("q"));
    QTest::keyClick(suffix, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(suffix->text(), "");
    EXPECT_EQ(namesIn(folder.path()), QStringList({"x_a.txt", "x_b.txt"}));
    QTest::keyClick(suffix, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(namesIn(folder.path()), QStringList({"a.txt", "b.txt"}));
    prefix->clear();
    suffix->clear();

    // Right after Ctrl+R, Ctrl+Z undoes the rename even in a field with
    // typing of its own to undo; once the person types again, the field's
    // own undo comes first.
    auto *search = control<QLineEdit>("search_1");
    auto *replace = control<QLineEdit>("replace_1");
    search->setFocus();
    QTest::keyClicks(search, QStringLiteral("a"));
    replace->setFocus();
    QTest::keyClicks(replace, QStringLiteral("c"));
    QTest::keyClick(replace, Qt::Key_R, Qt::ControlModifier);
    EXPECT_EQ(namesIn(folder.path()), QStringList({"b.txt", "c.txt"}));
    QTest::keyClick(replace, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(namesIn(folder.path()), QStringList({"a.txt", "b.txt"}));
    EXPECT_EQ(replace->text(), "c") << "the rule is kept as typed";
    QTest::keyClick(replace, Qt::Key_R, Qt::ControlModifier);
    QTest::keyClicks(replace, QStringLiteral("d"));
    QTest::keyClick(replace, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_FALSE(replace->text().endsWith(u'd')) << "the typing was undone";
    EXPECT_EQ(namesIn(folder.path()), QStringList({"b.txt", "c.txt"}));
    search->clear();
    replace->clear();
    EXPECT_NO_SURPRISES();
}

TEST_F(Window, ChoosingACaseTurnsCaseChangeOnAndConsiderCaseOnlyServesGrep)
{
    listNewFolder({"Photo.jpg"});
    auto *changeCase = control<QAbstractButton>("change_case");
    changeCase->setChecked(false);
    auto *popup = control<QComboBox>("the_case");
    popup->setCurrentIndex(0);
    popup->setFocus();
    QTest::keyClick(popup, Qt::Key_Down); // "lowercase", chosen from the keyboard
    EXPECT_TRUE(changeCase->isChecked());
    EXPECT_EQ(control<QLineEdit>("preview_name")->text(), "photo.jpg");

    auto *considerCase = control<QAbstractButton>("snr_consider_case_1");
    auto *literal = control<QAbstractButton>("snr_type_1_0");
    auto *grep = control<QAbstractButton>("snr_type_1_1");
    clickRadio(literal);
    EXPECT_FALSE(considerCase->isEnabled());
    clickRadio(grep);
    EXPECT_TRUE(considerCase->isEnabled());
    clickRadio(literal);
    changeCase->setChecked(false);
    script->handle(QStringLiteral("clicked"), QStringLiteral("change_case"));
    EXPECT_NO_SURPRISES();
}

TEST_F(Window, AGrepPatternThatDoesNotCompileSaysWhyBesideTheField)
{
    listNewFolder({"IMG_1.jpg"});
    auto *grep = control<QAbstractButton>("snr_type_1_1");
    clickRadio(grep);
    auto *search = control<QLineEdit>("search_1");
    auto *message = control<QLabel>("snr_error_1");
    search->setFocus();
    QTest::keyClicks(search, QStringLiteral("IMG_(\\d"));
    ASSERT_TRUE(waitFor([message] { return message->isVisible(); }));
    EXPECT_TRUE(message->text().startsWith(QLatin1String("Missing right paren in regex")) ||
                message->text().startsWith(QLatin1String("Unmatched ( in regex")))
        << message->text().toStdString();
    EXPECT_FALSE(message->text().contains(u'\n'));
    EXPECT_FALSE(message->text().contains(QLatin1String("(eval"))) << "where in our own program is no help";
    EXPECT_NE(search->findChild<QAction *>(QStringLiteral("pattern_error_mark")), nullptr) << "the field is marked";
    screenshot(QStringLiteral("window-bad-pattern.png"));

    QTest::keyClicks(search, QStringLiteral(")"));
    ASSERT_TRUE(waitFor([message] { return !message->isVisible(); }));
    EXPECT_EQ(search->findChild<QAction *>(QStringLiteral("pattern_error_mark")), nullptr);
    search->clear();
    auto *literal = control<QAbstractButton>("snr_type_1_0");
    clickRadio(literal);
    EXPECT_NO_SURPRISES();
}

// GREP reads names as characters: an accented name is matched letter by
// letter in the preview and the table, and a program that fails for one
// name is told where a pattern that does not compile is told.
TEST_F(Window, GrepWorksOnLettersAndARunTimeFailureSaysWhyBesideTheField)
{
    listNewFolder({QStringLiteral("résumé final (2).pdf"), QStringLiteral("ΟΔΟΣ 0.txt")});
    auto *grep = control<QAbstractButton>("snr_type_1_1");
    clickRadio(grep);
    auto *search = control<QLineEdit>("search_1");
    auto *replace = control<QLineEdit>("replace_1");
    auto *message = control<QLabel>("snr_error_1");
    replace->setFocus();
    QTest::keyClicks(replace, QStringLiteral("$2$1"));
    search->setFocus();
    QTest::keyClicks(search, QStringLiteral("(.)(\\w)"));
    const QStringList expected = {QStringLiteral("érusémf nila 2().pdf"), QStringLiteral("ΔΟΣΟ0 .txt")};
    ASSERT_TRUE(waitFor([&] { return column(FileTableModel::New) == expected; })) << column(FileTableModel::New).join(u'|').toStdString();
    EXPECT_EQ(control<QLineEdit>("preview_name")->text(), expected[0]);
    EXPECT_FALSE(message->isVisible());
    screenshot(QStringLiteral("window-grep-accents.png"));

    search->clear();
    QTest::keyClicks(search, QStringLiteral("(\\d+)"));
    replace->clear();
    QTest::keyClicks(replace, QStringLiteral("${\\ (100 % $1)}"));
    ASSERT_TRUE(waitFor([message] { return message->isVisible(); }));
    EXPECT_EQ(message->text(), QStringLiteral("\"ΟΔΟΣ 0.txt\" stays as it is: Illegal modulus zero"));
    EXPECT_EQ(column(FileTableModel::New)[1], QStringLiteral("ΟΔΟΣ 0.txt"));
    screenshot(QStringLiteral("window-grep-fails-for-a-name.png"));
    search->clear();
    replace->clear();
    clickRadio(control<QAbstractButton>("snr_type_1_0"));
    EXPECT_NO_SURPRISES();
}

// Two cameras' pictures merged in the order they were taken: the box reads
// the dates taken, the column says so and shows them, its header orders by
// them, the names carry them, and the box is part of the rule.
TEST_F(Window, DatesTakenPutTwoCamerasPicturesInTheOrderTheyWereTaken)
{
    QImage picture(16, 16, QImage::Format_RGB32);
    picture.fill(Qt::darkGreen);
    const std::pair<const char *, const char *> shots[] = {
        {"IMG_0001.jpg", "2021:05:01 10:00:00"}, {"IMG_0002.jpg", "2021:05:01 10:20:00"}, {"DSC_0001.jpg", "2021:05:01 10:10:00"}};
    for (const auto &[name, taken] : shots) {
        const QString path = folder.filePath(QString::fromLatin1(name));
        ASSERT_TRUE(picture.save(path, "JPEG"));
        ASSERT_EQ(QProcess::execute(QStringLiteral("exiftool"), {"-q", "-overwrite_original",
                                                                 QStringLiteral("-DateTimeOriginal=%1").arg(QLatin1String(taken)), path}),
                  0);
    }
    showWindowAt(1060);
    listFolder(folder.path());
    control<QLineEdit>("prefix")->setText(QStringLiteral("«date %H.%M» «#» "));
    control<QComboBox>("suffix_date_to_use")->setCurrentIndex(2); // a date of its own choosing
    QHeaderView *header = fileTable()->horizontalHeader();
    const auto title = [header] { return header->model()->headerData(FileTableModel::Creation, Qt::Horizontal).toString(); };
    EXPECT_EQ(title(), QStringLiteral("Created"));

    auto *box = control<QAbstractButton>("dates_taken");
    QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(4, box->height() / 2));
    ASSERT_TRUE(waitFor([&] { return title() == QLatin1String("Date taken"); }));
    // The prefix's Date, at "Current date", follows the box; the suffix's
    // chosen date stays; the status line says what moved.
    EXPECT_EQ(control<QComboBox>("prefix_date_to_use")->currentText(), "Creation date");
    EXPECT_EQ(control<QComboBox>("suffix_date_to_use")->currentText(), "Modification date");
    EXPECT_EQ(control<QLabel>("status_line")->text(),
              "3 items. The prefix's Date is now \u201cCreation date\u201d: the date each photograph was taken.");
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {},
                      QPoint(header->sectionViewportPosition(FileTableModel::Creation) + 10, 5));
    const QStringList inOrder = {"IMG_0001.jpg", "DSC_0001.jpg", "IMG_0002.jpg"};
    ASSERT_TRUE(waitFor([&] { return column(FileTableModel::Original) == inOrder; }))
        << column(FileTableModel::Original).join(u' ').toStdString();
    EXPECT_EQ(column(FileTableModel::Creation),
              QStringList({"2021-05-01 10:00:00", "2021-05-01 10:10:00", "2021-05-01 10:20:00"}));
    ASSERT_TRUE(waitFor([] {
        return column(FileTableModel::New) == QStringList({"10.00 1 IMG_0001.jpg", "10.10 2 DSC_0001.jpg", "10.20 3 IMG_0002.jpg"});
    })) << column(FileTableModel::New).join(u'|').toStdString();
    EXPECT_TRUE(RuleForm::rule(application->form()).datesTaken);
    screenshot(QStringLiteral("window-dates-taken.png"));

    QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(4, box->height() / 2));
    ASSERT_TRUE(waitFor([&] { return title() == QLatin1String("Created"); }));
    EXPECT_NE(column(FileTableModel::Creation).first(), QStringLiteral("2021-05-01 10:00:00")) << "the files' own dates again";
    control<QLineEdit>("prefix")->clear();
    control<QComboBox>("prefix_date_to_use")->setCurrentIndex(0);
    control<QComboBox>("suffix_date_to_use")->setCurrentIndex(0);
    header->setSortIndicator(FileTableModel::Original, Qt::AscendingOrder);
    EXPECT_NO_SURPRISES();
}

TEST_F(Window, TheTokenMenuPutsATokenAtTheCursor)
{
    listNewFolder({"a.jpg"});
    auto *prefix = control<QLineEdit>("prefix");
    prefix->setText(QStringLiteral("Trip  "));
    prefix->setCursorPosition(5);
    auto *button = control<QToolButton>("prefix_tokens");
    QMenu *menu = button->menu();
    ASSERT_NE(menu, nullptr);
    QStringList offered;
    // The menu runs a loop of its own: it is read, shown and answered from
    // inside it, with the keyboard.
    QTimer::singleShot(300, [&] {
        for (QAction *action : menu->actions())
            if (!action->isSeparator())
                offered.append(action->text());
        screenshotOfScreen(QStringLiteral("window-token-menu.png"));
        QTest::keyClick(menu, Qt::Key_Down); // the first item: the counter
        QTest::keyClick(menu, Qt::Key_Return);
    });
    QTest::mouseClick(button, Qt::LeftButton);
    ASSERT_TRUE(waitFor([prefix] { return prefix->text() != QLatin1String("Trip  "); }));
    EXPECT_EQ(prefix->text(), "Trip «#» ");
    EXPECT_EQ(control<QLineEdit>("preview_name")->text(), "Trip 1 a.jpg") << "the preview follows as for typing";
    EXPECT_TRUE(offered.contains(QStringLiteral("Folder name\t«ƒ»")));
    EXPECT_TRUE(offered.contains(QStringLiteral("«YYYY-MM-DD»"))) << offered.join(u'|').toStdString();
    EXPECT_TRUE(offered.contains(QStringLiteral("Date in a format of your own…")));
    prefix->clear();
    EXPECT_NO_SURPRISES();
}

TEST_F(Window, ADateInAFormatOfYourOwnIsAskedForAndInserted)
{
    listNewFolder({"a.jpg"});
    auto *suffix = control<QLineEdit>("suffix");
    suffix->setText(QStringLiteral("_"));
    suffix->setCursorPosition(1);
    QAction *ownFormat = nullptr;
    for (QAction *action : control<QToolButton>("suffix_tokens")->menu()->actions())
        if (action->text().startsWith(QLatin1String("Date in a format")))
            ownFormat = action;
    ASSERT_NE(ownFormat, nullptr);
    QString asked;
    QTimer::singleShot(200, [&] {
        auto *dialog = qobject_cast<QInputDialog *>(QApplication::activeModalWidget());
        if (!dialog)
            return;
        asked = dialog->textValue();
        dialog->setTextValue(QStringLiteral("%d.%m.%Y"));
        dialog->accept();
    });
    const QDate before = QDate::currentDate();
    ownFormat->trigger();
    EXPECT_EQ(asked, "%Y-%m-%d") << "a format to start from";
    EXPECT_EQ(suffix->text(), "_«date %d.%m.%Y»");
    const QString preview = control<QLineEdit>("preview_name")->text();
    EXPECT_TRUE(preview == QStringLiteral("a_%1.jpg").arg(before.toString(QStringLiteral("dd.MM.yyyy")))
                || preview == QStringLiteral("a_%1.jpg").arg(QDate::currentDate().toString(QStringLiteral("dd.MM.yyyy"))))
        << preview.toStdString() << " (the day may turn while the test runs)";
    EXPECT_NO_SURPRISES();
}

// Every label sits beside the control it names, at a narrow and a wide
// width; cut names are whole in their tooltips; the location column says
// nothing when every row shares it and is shown when rows differ.
TEST_F(Window, LabelsStayByTheirControlsAtAnyWidth)
{
    makeFiles(folder.path(), {"a long name that the name column cuts short somewhere in its middle.jpg"});
    ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("sub")));
    makeFiles(folder.path() + QStringLiteral("/sub"), {"b.jpg"});
    listFolder(folder.path());
    EXPECT_TRUE(fileTable()->isColumnHidden(FileTableModel::Location));
    for (const int width : {900, 1600}) {
        showWindowAt(width);
        for (QLabel *label : application->window()->findChildren<QLabel *>()) {
            QWidget *buddy = label->buddy();
            if (!buddy || !label->isVisible())
                continue;
            const QRect labelBox(label->mapTo(application->window(), QPoint()), label->size());
            const QRect controlBox(buddy->mapTo(application->window(), QPoint()), buddy->size());
            const QString which = label->text() + QStringLiteral(" at ") + QString::number(width);
            EXPECT_LE(std::abs(labelBox.center().y() - controlBox.center().y()), 3) << which.toStdString();
            EXPECT_GE(controlBox.left(), labelBox.right()) << which.toStdString();
            EXPECT_LE(controlBox.left() - labelBox.right(), label->fontMetrics().averageCharWidth() * 12)
                << which.toStdString();
        }
        screenshot(QStringLiteral("window-%1-wide.png").arg(width));
    }
    control<QAbstractButton>("descend")->setChecked(true);
    script->handle(QStringLiteral("clicked"), QStringLiteral("descend"));
    EXPECT_FALSE(fileTable()->isColumnHidden(FileTableModel::Location));
    control<QAbstractButton>("descend")->setChecked(false);
    showWindowAt(1060);
    EXPECT_NO_SURPRISES();
}

// Sizes and dates are shown whole, right-aligned, at the width the window
// opens with, and their columns cannot be made too narrow for them.
TEST_F(Window, NumbersAreNeverCut)
{
    for (const auto &[name, size] : {std::pair{"a.bin", 15'360}, {"b.bin", 1'048'473}, {"c.bin", 83'000}}) {
        QFile file(folder.filePath(QLatin1String(name)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.resize(size));
    }
    showWindowAt(1060);
    listFolder(folder.path());
    FileTableView *table = fileTable();
    const FileTableModel &model = application->fileTableDataSource();
    const int margins = 2 * (table->style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, table) + 1);
    const auto shownWhole = [&](int column) {
        for (int row = 0; row < model.rowCount(); ++row) {
            const QString text = model.data(model.index(row, column), Qt::DisplayRole).toString();
            if (table->columnWidth(column) < table->fontMetrics().horizontalAdvance(text) + margins)
                return text;
        }
        return QString();
    };
    EXPECT_EQ(column(FileTableModel::Size), QStringList({"15.0 KB", "1023.9 KB", "81.1 KB"}));
    for (int column : {FileTableModel::Size, FileTableModel::Creation, FileTableModel::Modification}) {
        EXPECT_EQ(shownWhole(column), QString()) << "cut: " << column;
        table->horizontalHeader()->resizeSection(column, 20);
        EXPECT_EQ(shownWhole(column), QString()) << "made too narrow: " << column;
    }
    EXPECT_EQ(model.data(model.index(0, FileTableModel::Size), Qt::TextAlignmentRole).toInt() & Qt::AlignRight, Qt::AlignRight);
    EXPECT_NO_SURPRISES();
}

TEST_F(Window, ColumnWidthsComeBackInTheNextRun)
{
    QHeaderView *header = fileTable()->horizontalHeader();
    header->resizeSection(FileTableModel::Original, 333);
    script->handle(QStringLiteral("willQuit"), QVariant());
    header->resizeSection(FileTableModel::Original, 100);
    OutletValues::restoreState(application->window(), QSettings());
    EXPECT_EQ(header->sectionSize(FileTableModel::Original), 333);
    EXPECT_EQ(header->sectionResizeMode(FileTableModel::Original), QHeaderView::Interactive) << "the user can resize it";
    EXPECT_NO_SURPRISES();
}

// A failure is told with the critical icon, its text on as few lines as a
// readable width allows.
TEST_F(Window, AFailureIsToldInABoxSizedToItsText)
{
    listNewFolder({"same.txt"});
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    int informativeLines = 0;
    inspectNextDialog = [&](QMessageBox *box) {
        icon = box->icon();
        for (QLabel *label : box->findChildren<QLabel *>())
            if (label->text() == box->informativeText())
                informativeLines = label->fontMetrics()
                                       .boundingRect(QRect(0, 0, label->contentsRect().width(), 10000), Qt::TextWordWrap,
                                                     label->text())
                                       .height()
                                   / label->fontMetrics().lineSpacing();
        screenshotOfScreen(QStringLiteral("window-failure-message.png"));
        box->accept();
    };
    script->handle(QStringLiteral("clicked"), QStringLiteral("rename")); // the names would not change
    EXPECT_EQ(icon, QMessageBox::Critical);
    EXPECT_EQ(informativeLines, 1) << "\"The new names are the same as the old ones.\" fits on one line";
    EXPECT_NO_SURPRISES();
}

// During a long rename the progress panel stands where the status line
// was, with its two lines; afterwards the status line is back.
TEST_F(Window, TheProgressPanelShowsOnlyWhileWorkRuns)
{
    QWidget *panel = control<QWidget>("progress_panel");
    QWidget *status = control<QWidget>("status_line");
    listNewFolder(numberedNames(QStringLiteral("scan %1.tif"), 0, 3999));
    EXPECT_FALSE(panel->isVisible());
    EXPECT_TRUE(status->isVisible());
    control<QLineEdit>("prefix")->setText(QStringLiteral("Box 3 "));
    QStringList seen;
    QTimer during;
    QObject::connect(&during, &QTimer::timeout, [&] {
        if (!panel->isVisible() || !seen.isEmpty())
            return;
        seen = {control<QLabel>("progress_label_super")->text(), control<QLabel>("progress_label")->text(),
                status->isVisible() ? QStringLiteral("status shown") : QStringLiteral("status hidden")};
        screenshot(QStringLiteral("window-long-rename.png"));
    });
    during.start(5);
    script->handle(QStringLiteral("clicked"), QStringLiteral("rename"));
    during.stop();
    ASSERT_EQ(seen.size(), 3) << "the panel was never seen";
    EXPECT_FALSE(seen[0].isEmpty());
    EXPECT_EQ(seen[2], "status hidden");
    EXPECT_FALSE(panel->isVisible());
    EXPECT_TRUE(status->isVisible());
    EXPECT_EQ(status->property("text").toString(), "4000 files renamed");
    control<QLineEdit>("prefix")->clear();
    EXPECT_NO_SURPRISES();
}

} // namespace
