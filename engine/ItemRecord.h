#pragma once

#include "FileIdentity.h"
#include "MetadataValues.h"

#include <QString>
#include <limits>
#include <memory>
#include <optional>

// A file's size, or none for a folder, in eight bytes: no file holds 2^64 - 1
// bytes, so that value stands for none (a table of a million rows is 8 MB
// smaller than with std::optional).
class ItemSize {
public:
    ItemSize() = default;
    ItemSize(std::nullopt_t) {}
    ItemSize(quint64 bytes) : m_bytes(bytes) {}
    ItemSize(std::optional<quint64> bytes) : m_bytes(bytes.value_or(None)) {}

    explicit operator bool() const { return m_bytes != None; }
    quint64 operator*() const { return m_bytes; }
    quint64 value_or(quint64 otherwise) const { return m_bytes != None ? m_bytes : otherwise; }

private:
    static constexpr quint64 None = std::numeric_limits<quint64>::max();
    quint64 m_bytes = None;
};

// One row of the file table: an item as the listing read it, and the new
// name a batch pass gave it. The item's path is its location followed by
// its name.
struct ItemRecord {
    static constexpr qint64 NoDate = std::numeric_limits<qint64>::min();
    static constexpr qint32 NoOffset = std::numeric_limits<qint32>::min();

    QString name;
    QString location;            // the containing folder, ending with "/"; rows of a folder share it
    qint64 created = NoDate;     // milliseconds since 1970
    qint64 modified = NoDate;
    ItemSize size; // none for a folder
    qint32 createdOffset = NoOffset; // a date taken: the UTC offset it is shown at
    quint32 typeCode = 0;
    quint32 creatorCode = 0;
    bool include = true;
    FileIdentity identity;       // as listed; zero where not known
    // What the file says of itself (camera, lens, tags, length), as far as
    // it was asked; none until a listing or a later read asks.
    std::shared_ptr<const Metadata::Values> metadata;
    QString newName;             // "" until a batch pass gives one

    QString path() const { return location + name; }
    std::optional<qint32> takenOffset() const
    {
        return createdOffset == NoOffset ? std::nullopt : std::optional(createdOffset);
    }
};
