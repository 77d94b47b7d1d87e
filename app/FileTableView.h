#pragma once

#include <QTableView>

// The file table as the window shows it. A drag over a row always means a
// place between rows (over the upper half of a row: above it; the lower
// half: below it; below the last row: the end), so rows dropped anywhere
// land somewhere, and a line shows where while the drag moves.
class FileTableView final : public QTableView {
    Q_OBJECT
public:
    explicit FileTableView(QWidget *parent = nullptr);

    // The row before which rows dropped at this point of the viewport land.
    int dropRowAt(const QPoint &point) const;
    // Where the drop line is drawn now, or -1 while no drag is over the table.
    int shownDropRow() const { return m_dropRow; }

protected:
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void showDropRow(int row);

    int m_dropRow = -1;
};
