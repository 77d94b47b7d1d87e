#pragma once

#include <QString>
#include <algorithm>
#include <functional>
#include <utility>
#include <vector>

// Names in folders, one per row, found by their hash and then compared: a
// sorted list of (hash, row) holds a tenth of what a hash table of the
// strings would, and rows that want one name sit side by side.
class NameIndex {
public:
    using NameOf = std::function<const QString &(int row)>;
    using FolderOf = std::function<int(int row)>;

    NameIndex(NameOf nameOf, FolderOf folderOf) : m_nameOf(std::move(nameOf)), m_folderOf(std::move(folderOf)) {}

    void add(int row) { m_entries.push_back({hashOf(m_nameOf(row)), row}); }
    void reserve(size_t count) { m_entries.reserve(count); }
    void sort()
    {
        std::sort(m_entries.begin(), m_entries.end(), [this](const Entry &a, const Entry &b) {
            if (a.hash != b.hash)
                return a.hash < b.hash;
            if (const int folderA = m_folderOf(a.row), folderB = m_folderOf(b.row); folderA != folderB)
                return folderA < folderB;
            const int byName = QtPrivate::compareStrings(m_nameOf(a.row), m_nameOf(b.row), Qt::CaseSensitive);
            return byName != 0 ? byName < 0 : a.row < b.row;
        });
        m_gone.assign(m_entries.size(), 0);
    }

    // The rows whose name is `name` in `folder`, in row order.
    std::pair<size_t, size_t> find(int folder, const QString &name) const
    {
        const quint32 hash = hashOf(name);
        const auto before = [&](const Entry &entry) {
            if (entry.hash != hash)
                return entry.hash < hash;
            if (const int held = m_folderOf(entry.row); held != folder)
                return held < folder;
            return QtPrivate::compareStrings(m_nameOf(entry.row), name, Qt::CaseSensitive) < 0;
        };
        const auto first = std::partition_point(m_entries.begin(), m_entries.end(), before);
        auto last = first;
        while (last != m_entries.end() && sameName(*last, hash, folder, name))
            ++last;
        return {size_t(first - m_entries.begin()), size_t(last - m_entries.begin())};
    }
    bool contains(int folder, const QString &name) const
    {
        const auto [first, last] = find(folder, name);
        for (size_t i = first; i < last; ++i)
            if (!m_gone[i])
                return true;
        return false;
    }
    void remove(int folder, const QString &name)
    {
        const auto [first, last] = find(folder, name);
        std::fill(m_gone.begin() + qsizetype(first), m_gone.begin() + qsizetype(last), 1);
    }
    // Each run of rows that share one name: its first and its end.
    template <class Each> void forEachRun(Each each) const
    {
        for (size_t first = 0, last; first < m_entries.size(); first = last) {
            const Entry &entry = m_entries[first];
            const int folder = m_folderOf(entry.row);
            const QString &name = m_nameOf(entry.row);
            for (last = first + 1; last < m_entries.size() && sameName(m_entries[last], entry.hash, folder, name); ++last) {
            }
            each(first, last);
        }
    }
    int rowAt(size_t index) const { return m_entries[index].row; }

private:
    struct Entry {
        quint32 hash;
        int row;
    };
    static quint32 hashOf(const QString &name) { return quint32(qHash(name)); }
    bool sameName(const Entry &entry, quint32 hash, int folder, const QString &name) const
    {
        return entry.hash == hash && m_folderOf(entry.row) == folder && m_nameOf(entry.row) == name;
    }

    NameOf m_nameOf;
    FolderOf m_folderOf;
    std::vector<Entry> m_entries;
    std::vector<char> m_gone; // by entry: taken out of the index
};

