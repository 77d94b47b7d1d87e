#include "FileTableView.h"

#include "FileTableModel.h"

#include <QDragMoveEvent>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QMimeData>
#include <QPainter>

FileTableView::FileTableView(QWidget *parent) : QTableView(parent) {}

int FileTableView::dropRowAt(const QPoint &point) const
{
    const int row = rowAt(point.y());
    if (row < 0)
        return point.y() < 0 ? 0 : model() ? model()->rowCount() : 0;
    const int top = rowViewportPosition(row);
    return point.y() < top + rowHeight(row) / 2 ? row : row + 1;
}

void FileTableView::dragMoveEvent(QDragMoveEvent *event)
{
    const QPoint point = event->position().toPoint();
    const int row = dropRowAt(point);
    if (!model() || !model()->canDropMimeData(event->mimeData(), event->dropAction(), row, -1, QModelIndex())) {
        showDropRow(-1);
        event->ignore();
        return;
    }
    showDropRow(row);
    event->acceptProposedAction();
    // Near the top or bottom edge the table scrolls, so any row can be reached.
    const int margin = autoScrollMargin();
    if (point.y() < margin || point.y() > viewport()->height() - margin)
        startAutoScroll();
}

void FileTableView::dragLeaveEvent(QDragLeaveEvent *event)
{
    showDropRow(-1);
    stopAutoScroll();
    setState(NoState);
    event->accept();
}

void FileTableView::dropEvent(QDropEvent *event)
{
    stopAutoScroll();
    setState(NoState);
    const int row = dropRowAt(event->position().toPoint());
    showDropRow(-1);
    if (!model())
        return;
    const std::optional<QList<int>> dragged = FileTableModel::draggedRows(event->mimeData());
    // The dragged rows land together, after the rows before the drop point
    // that stay where they are.
    const int landing = dragged ? row - int(std::count_if(dragged->begin(), dragged->end(), [row](int r) { return r < row; }))
                                : -1;
    if (!model()->dropMimeData(event->mimeData(), dragged ? Qt::MoveAction : event->dropAction(), row, -1, QModelIndex())) {
        event->ignore();
        return;
    }
    if (!dragged) {
        event->acceptProposedAction();
        return;
    }
    // The model has moved the rows itself; answered as a move, the drag
    // would remove them from where they were once more.
    event->setDropAction(Qt::CopyAction);
    event->accept();
    if (dragged->isEmpty())
        return;
    const QModelIndex first = model()->index(landing, 0);
    const QModelIndex last = model()->index(landing + int(dragged->size()) - 1, model()->columnCount() - 1);
    selectionModel()->select(QItemSelection(first, last), QItemSelectionModel::ClearAndSelect);
    selectionModel()->setCurrentIndex(first, QItemSelectionModel::NoUpdate);
}

void FileTableView::showDropRow(int row)
{
    if (row == m_dropRow)
        return;
    m_dropRow = row;
    viewport()->update();
}

void FileTableView::paintEvent(QPaintEvent *event)
{
    QTableView::paintEvent(event);
    if (m_dropRow < 0 || !model())
        return;
    const int rows = model()->rowCount();
    int y = 0;
    if (rows > 0)
        y = m_dropRow < rows ? rowViewportPosition(m_dropRow) : rowViewportPosition(rows - 1) + rowHeight(rows - 1);
    QPainter painter(viewport());
    painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
    painter.drawLine(0, y, viewport()->width(), y);
}
