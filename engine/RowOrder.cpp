#include "RowOrder.h"

#include "SortFunctions.h"

#include <QHash>
#include <algorithm>
#include <numeric>

namespace RowOrder {

// In place, following each cycle of the permutation.
void arrange(std::vector<ItemRecord> &rows, std::vector<size_t> order)
{
    for (size_t start = 0; start < order.size(); ++start) {
        if (order[start] == start)
            continue;
        ItemRecord held = std::move(rows[start]);
        size_t at = start;
        while (order[at] != start) {
            const size_t next = order[at];
            rows[at] = std::move(rows[next]);
            order[at] = at;
            at = next;
        }
        rows[at] = std::move(held);
        order[at] = at;
    }
}

std::vector<size_t> orderByName(const std::vector<ItemRecord> &rows, bool descending)
{
    // Folder keys are made once per folder; rows of a folder share its rank.
    QHash<QString, int> folderRank;
    std::vector<std::pair<QByteArray, QString>> folders;
    for (size_t i = 0; i < rows.size(); ++i) {
        const ItemRecord &row = rows[i];
        if ((i == 0 || row.location.constData() != rows[i - 1].location.constData()) && !folderRank.contains(row.location)) {
            folderRank.insert(row.location, 0);
            folders.emplace_back(SortFunctions::stringAsNumberKey(row.location), row.location);
        }
    }
    std::sort(folders.begin(), folders.end());
    for (size_t i = 0; i < folders.size(); ++i)
        folderRank[folders[i].second] = int(i);

    // Rows of a folder follow each other: its rank is looked up once.
    std::vector<int> ranks(rows.size());
    for (size_t i = 0; i < rows.size(); ++i)
        ranks[i] = i > 0 && rows[i].location.constData() == rows[i - 1].location.constData() ? ranks[i - 1]
                                                                                           : folderRank.value(rows[i].location);
    const SortFunctions::NaturalKeys keys(rows.size(), [&rows](size_t i) -> const QString & { return rows[i].name; });
    std::vector<size_t> order(rows.size());
    std::iota(order.begin(), order.end(), size_t(0));
    std::stable_sort(order.begin(), order.end(), [&](size_t a, size_t b) {
        const int byFolder = ranks[a] - ranks[b];
        const int byName = byFolder ? 0 : keys.key(a).compare(keys.key(b));
        return descending ? (byFolder ? byFolder > 0 : byName > 0) : (byFolder ? byFolder < 0 : byName < 0);
    });
    return order;
}

void byName(std::vector<ItemRecord> &rows, bool descending)
{
    arrange(rows, orderByName(rows, descending));
}

std::vector<size_t> orderByValue(const std::vector<ItemRecord> &rows, Value value, bool descending)
{
    const auto of = [value](const ItemRecord &row) -> qint64 {
        switch (value) {
        case Value::Created:
            return row.created;
        case Value::Modified:
            return row.modified;
        case Value::Size:
            return qint64(row.size.value_or(0));
        case Value::Include:
            return row.include;
        case Value::Duration:
            return row.metadata ? row.metadata->durationMs : -1;
        case Value::Pixels:
            return row.metadata && row.metadata->width > 0 ? qint64(row.metadata->width) * row.metadata->height : -1;
        }
        return 0;
    };
    std::vector<size_t> order(rows.size());
    std::iota(order.begin(), order.end(), size_t(0));
    std::stable_sort(order.begin(), order.end(), [&](size_t a, size_t b) {
        return descending ? of(rows[b]) < of(rows[a]) : of(rows[a]) < of(rows[b]);
    });
    return order;
}

std::vector<size_t> orderByText(const std::vector<ItemRecord> &rows, const std::function<QString(const ItemRecord &)> &textOf,
                                bool descending)
{
    std::vector<QString> texts(rows.size());
    for (size_t i = 0; i < rows.size(); ++i)
        texts[i] = textOf(rows[i]);
    const SortFunctions::NaturalKeys keys(rows.size(), [&texts](size_t i) -> const QString & { return texts[i]; });
    std::vector<size_t> order(rows.size());
    std::iota(order.begin(), order.end(), size_t(0));
    std::stable_sort(order.begin(), order.end(), [&](size_t a, size_t b) {
        if (texts[a].isEmpty() != texts[b].isEmpty())
            return texts[b].isEmpty();
        const int compared = keys.key(a).compare(keys.key(b));
        return descending ? compared > 0 : compared < 0;
    });
    return order;
}

void byValue(std::vector<ItemRecord> &rows, Value value, bool descending)
{
    arrange(rows, orderByValue(rows, value, descending));
}

} // namespace RowOrder
