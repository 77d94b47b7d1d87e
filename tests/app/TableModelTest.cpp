#include "FileTableModel.h"
#include "ItemRecordValues.h"
#include "TestPrinting.h"

#include <QMimeData>
#include <QUrl>
#include <gtest/gtest.h>

namespace {

std::vector<ItemRecord> namedRows(int count)
{
    std::vector<ItemRecord> rows(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i)
        rows[size_t(i)].name = QString::number(i);
    return rows;
}

QString order(const FileTableModel &model)
{
    QStringList names;
    for (const ItemRecord &row : model.rows())
        names.append(row.name);
    return names.join(u',');
}

struct DragCase {
    const char *name;
    QList<int> dragged;
    int dropRow;
    const char *expected;
    friend void PrintTo(const DragCase &c, std::ostream *os) { *os << c.name; }
};

class DragReorder : public testing::TestWithParam<DragCase> {};

TEST_P(DragReorder, DraggedRowsLandAtTheDropPoint)
{
    FileTableModel model;
    model.setRows(namedRows(5));
    std::unique_ptr<QMimeData> data(FileTableModel::mimeDataForRows(GetParam().dragged));
    EXPECT_EQ(model.validateDrop(data.get(), GetParam().dropRow, false, true), FileTableModel::DropOperation::Move);
    EXPECT_TRUE(model.acceptDrop(data.get(), GetParam().dropRow, true));
    EXPECT_EQ(order(model), QString::fromLatin1(GetParam().expected));
}

INSTANTIATE_TEST_SUITE_P(Table, DragReorder,
                         testing::Values(DragCase{"two_rows_to_row_four", {0, 2}, 4, "1,3,0,2,4"},
                                         DragCase{"to_the_end", {1}, 5, "0,2,3,4,1"},
                                         DragCase{"to_the_start", {3, 4}, 0, "3,4,0,1,2"},
                                         DragCase{"pasteboard_order_kept", {4, 0}, 2, "1,4,0,2,3"},
                                         DragCase{"onto_itself", {2}, 2, "0,1,2,3,4"}),
                         [](const auto &info) { return info.param.name; });

TEST(DragReorder, TheRowNumbersTravelAsAPropertyList)
{
    std::unique_ptr<QMimeData> data(FileTableModel::mimeDataForRows({0, 2}));
    const QByteArray xml = data->data(QStringLiteral("DraggedTableRows"));
    EXPECT_TRUE(xml.contains("<plist")) << xml.toStdString();
    EXPECT_TRUE(xml.contains("<integer>2</integer>"));
    EXPECT_EQ(FileTableModel::draggedRows(data.get()), QList<int>({0, 2}));
}

TEST(DragReorder, DropsOntoRowsAreRefusedAndOutsideFilesHandedOn)
{
    FileTableModel model;
    model.setRows(namedRows(3));
    std::unique_ptr<QMimeData> rows(FileTableModel::mimeDataForRows({0}));
    EXPECT_EQ(model.validateDrop(rows.get(), 1, true, true), FileTableModel::DropOperation::None);
    QMimeData files;
    files.setUrls({QUrl::fromLocalFile("/tmp/a.jpg"), QUrl::fromLocalFile("/tmp/b.jpg")});
    EXPECT_EQ(model.validateDrop(&files, 1, true, false), FileTableModel::DropOperation::Copy);
    QStringList handed;
    model.filesDropped = [&](const QStringList &paths, int) { handed = paths; };
    EXPECT_TRUE(model.acceptDrop(&files, 1, false));
    EXPECT_EQ(handed, QStringList({"/tmp/a.jpg", "/tmp/b.jpg"}));
    EXPECT_EQ(order(model), QStringLiteral("0,1,2")) << "an outside drop changes no rows";
}

TEST(TableCells, ReadAndWriteByColumnIdentifier)
{
    FileTableModel model;
    model.setRows(ItemRecordValues::fromScript({QVariantMap{{"original", "a.jpg"}, {"include", true}}, QVariant(false)}));
    EXPECT_EQ(model.rowCount(), 1) << "a stop marker is not a row";
    EXPECT_EQ(model.valueForColumn("original", 0), QVariant(QStringLiteral("a.jpg")));
    EXPECT_FALSE(model.valueForColumn("original", 5).isValid());
    EXPECT_TRUE(model.setValue(QStringLiteral("b.jpg"), "new", 0));
    EXPECT_FALSE(model.setValue(1, "no such column", 0));
    EXPECT_EQ(model.data(model.index(0, FileTableModel::New), Qt::DisplayRole), QVariant(QStringLiteral("b.jpg")));
    EXPECT_TRUE(model.setData(model.index(0, FileTableModel::Include), Qt::Unchecked, Qt::CheckStateRole));
    EXPECT_EQ(model.valueForColumn("include", 0), QVariant(false));
}

} // namespace
