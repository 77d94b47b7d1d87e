#include "DuplicateList.h"

#include <QHashFunctions>
#include <algorithm>

DuplicateList::Split DuplicateList::split(const QString &location, const QString &name)
{
    if (location.endsWith(u'/') && !name.contains(u'/'))
        return {location, name};
    const QString path = location + name;
    const qsizetype slash = path.lastIndexOf(u'/');
    return {path.left(slash + 1), path.mid(slash + 1)};
}

// Most rows share a folder: the last one asked about is answered without a
// search (the same characters are the same folder).
qint64 DuplicateList::locationIndex(const QString &location) const
{
    if (location.constData() != m_lastLocation.constData() || location.size() != m_lastLocation.size()) {
        m_lastLocation = location;
        m_lastIndex = m_locationIndex.value(location, -1);
        m_lastHash = qHash(location);
    }
    return m_lastIndex;
}

size_t DuplicateList::hashOf(const QString &location, const QString &name) const
{
    locationIndex(location);
    return qHashMulti(0, m_lastHash, name);
}

size_t DuplicateList::slotOf(qint64 location, const QString &name, quint32 hash) const
{
    const size_t mask = m_slots.size() - 1;
    for (size_t slot = hash & mask;; slot = (slot + 1) & mask) {
        const quint32 held = m_slots[slot];
        if (held == 0)
            return slot;
        const Entry &entry = m_list[held - 1];
        if (entry.hash == hash && qint64(entry.location) == location && entry.name == name)
            return slot;
    }
}

bool DuplicateList::contains(const QString &location, const QString &name) const
{
    if (m_slots.empty())
        return false;
    const Split path = split(location, name);
    const quint32 hash = quint32(hashOf(path.location, path.name));
    const qint64 folder = locationIndex(path.location);
    return folder >= 0 && m_slots[slotOf(folder, path.name, hash)] != 0;
}

bool DuplicateList::appendNew(const QString &location, const QString &name)
{
    if (m_slots.size() < 2 * (m_list.size() + 1))
        rehash(m_list.size() + 1);
    const Split path = split(location, name);
    const quint32 hash = quint32(hashOf(path.location, path.name));
    qint64 folder = locationIndex(path.location);
    if (folder < 0) {
        folder = m_lastIndex = m_locations.size();
        m_locations.append(path.location);
        m_locationIndex.insert(path.location, folder);
    }
    const size_t slot = slotOf(folder, path.name, hash);
    if (m_slots[slot] != 0)
        return false;
    m_list.push_back({path.name, quint32(folder), hash});
    m_slots[slot] = quint32(m_list.size());
    return true;
}

void DuplicateList::append(const QString &location, const QString &name)
{
    if (appendNew(location, name))
        return;
    // Already there: the list still records that it was given out again.
    const Split path = split(location, name);
    m_list.push_back({path.name, quint32(locationIndex(path.location)), quint32(hashOf(path.location, path.name))});
}

void DuplicateList::clear()
{
    m_locations.clear();
    m_locationIndex.clear();
    m_list.clear();
    m_slots.clear();
    m_lastLocation.clear();
    m_lastIndex = -1;
}

QStringList DuplicateList::toList() const
{
    QStringList paths;
    paths.reserve(qsizetype(m_list.size()));
    for (const Entry &entry : m_list)
        paths.append(m_locations[entry.location] + entry.name);
    return paths;
}

void DuplicateList::reserve(qsizetype size)
{
    m_list.reserve(size_t(size));
    rehash(size_t(size));
}

// Room for `count` entries at half load; a name given out twice is indexed
// at its first place in the list.
void DuplicateList::rehash(size_t count)
{
    size_t size = 16;
    while (size < 2 * count)
        size *= 2;
    if (size <= m_slots.size())
        return;
    m_slots.assign(size, 0);
    for (size_t i = 0; i < m_list.size(); ++i) {
        const Entry &entry = m_list[i];
        const size_t slot = slotOf(entry.location, entry.name, entry.hash);
        if (m_slots[slot] == 0)
            m_slots[slot] = quint32(i + 1);
    }
}
