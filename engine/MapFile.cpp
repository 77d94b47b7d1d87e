#include "MapFile.h"

#include "FileBytes.h"
#include "PathCodec.h"
#include "PathNames.h"
#include "TsvTable.h"

namespace MapFile {

Result<std::vector<Batch::Move>> read(const QString &path)
{
    const FileBytes::Contents contents = FileBytes::read(path);
    if (!contents.bytes)
        return Failure{contents.error};
    return parse(*contents.bytes, path);
}

Result<std::vector<Batch::Move>> parse(const QByteArray &bytes, const QString &shownPath)
{
    const QByteArray byteOrderMark("\xEF\xBB\xBF");
    const QString text = PathCodec::decode(bytes.startsWith(byteOrderMark) ? bytes.mid(byteOrderMark.size()) : bytes);
    std::vector<Batch::Move> moves;
    const QVariantList records = TsvTable::dictionariesFromText(text);
    for (qsizetype i = 0; i < records.size(); ++i) {
        const QVariantMap record = records[i].toMap();
        const QString from = record.value(QStringLiteral("old")).toString();
        if (!record.contains(QStringLiteral("old")) || !record.contains(QStringLiteral("new")) || from.isEmpty()) {
            return Failure{QStringLiteral("%1: entry %2 has no old name or no new name (the first line names the "
                                          "columns: old, a tab, new)")
                               .arg(shownPath)
                               .arg(i + 1)};
        }
        const QString oldPath = PathNames::absolute(from);
        const QString to = record.value(QStringLiteral("new")).toString();
        const QString newPath = to.contains(u'/') ? PathNames::absolute(to)
                                                  : oldPath.left(oldPath.lastIndexOf(u'/') + 1) + to;
        moves.push_back({oldPath, newPath});
    }
    if (records.isEmpty())
        return Failure{QStringLiteral("%1: no names to map (the first line names the columns: old, a tab, new)").arg(shownPath)};
    return moves;
}

} // namespace MapFile
