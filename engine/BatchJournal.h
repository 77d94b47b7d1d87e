#pragma once

#include "FileIdentity.h"
#include "Result.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

// The record of one batch of renames, written whole and flushed before the
// first move. Every move of a batch stays within one folder, so an item is
// its folder and the names it takes there in turn: the name it had, any
// temporary names, and its new name. Where an item is now is read from the
// disk (which of its names holds its identity), never from marks, so a
// batch cut short at any instant can be finished or rolled back.
struct BatchJournal {
    enum class Kind { Apply, Undo, RollBack };

    struct Item {
        int row = -1;   // the request row it serves
        int folder = 0; // index into folders
        QStringList names;
        FileIdentity identity;
        // The identity of the copy, once an item that crossed file
        // systems has been copied.
        std::optional<FileIdentity> copiedAs;

        bool matches(const FileIdentity &found) const
        {
            return found.isSameFile(identity) || (copiedAs && found.isSameFile(*copiedAs));
        }
        int last() const { return int(names.size()) - 1; }
    };
    // The item moves from names[to - 1] to names[to].
    struct Step {
        int item;
        int to;
    };

    Kind kind = Kind::Apply;
    QString undoes; // for an undo: the history entry it puts back
    QStringList folders; // absolute, as they were before the batch
    std::vector<Item> items;
    std::vector<Step> steps;

    QString folderOf(const Item &item) const { return folders[item.folder]; }
    QString pathOf(const Item &item, int position) const;

    // The text of the journal, ending in a checksum of all before it.
    QByteArray serialize() const;
    QByteArray body() const; // all before the checksum
    // A journal only if it is whole and consistent and its checksum holds;
    // otherwise the reason. Records appended after
    // the checksum count when their own checksum holds; a torn last line
    // (the write cut short) is left out.
    static Result<BatchJournal> parse(const QByteArray &text);
    // The record appended once an item has been copied across file systems.
    static QByteArray copyRecord(int item, const FileIdentity &copy);
};
