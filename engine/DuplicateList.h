#pragma once

#include <QHash>
#include <QString>
#include <QStringList>
#include <vector>

// New names given out in the current pass, each with its folder, in order,
// with a hash index beside the list so that each check is one lookup, not a
// scan. A folder is kept once, however many names it gives; a name is the
// string the pass returns, shared, so a hundred thousand names cost the list
// about forty bytes each.
class DuplicateList {
public:
    void append(const QString &location, const QString &name);
    bool contains(const QString &location, const QString &name) const;
    // Appends the name unless it is there already; answers whether it was added.
    bool appendNew(const QString &location, const QString &name);
    void clear();
    // The full paths, in the order they were given out.
    QStringList toList() const;
    void reserve(qsizetype size);

private:
    struct Entry {
        QString name;
        quint32 location; // into m_locations
        quint32 hash;
    };
    // A path split after its last "/" (as a listing's rows already are),
    // so two entries are equal exactly when their full paths are.
    struct Split {
        QString location;
        QString name;
    };
    static Split split(const QString &location, const QString &name);
    // The folder's index, or -1 when it has none yet.
    qint64 locationIndex(const QString &location) const;
    size_t hashOf(const QString &location, const QString &name) const;
    // The slot of an equal entry, or the empty slot where it would go.
    size_t slotOf(qint64 location, const QString &name, quint32 hash) const;
    void rehash(size_t count);

    QStringList m_locations;
    QHash<QString, qint64> m_locationIndex;
    std::vector<Entry> m_list;
    std::vector<quint32> m_slots; // open addressing: an entry's index + 1; 0 is empty
    mutable QString m_lastLocation; // held, so its characters stay where they are
    mutable qint64 m_lastIndex = -1;
    mutable size_t m_lastHash = 0;
};
