#include "MapFile.h"

#include "FileBytes.h"
#include "PathCodec.h"
#include "TsvTable.h"

namespace MapFile {

namespace {

QString absolute(QString path, const QString &workingFolder)
{
    while (path.size() > 1 && path.endsWith(u'/'))
        path.chop(1);
    return path.startsWith(u'/') ? path : workingFolder + u'/' + path;
}

} // namespace

Read read(const QString &path, const QString &workingFolder)
{
    const FileBytes::Contents contents = FileBytes::read(path);
    if (!contents.bytes)
        return {{}, contents.error};
    return parse(*contents.bytes, workingFolder, path);
}

Read parse(const QByteArray &bytes, const QString &workingFolder, const QString &shownPath)
{
    const QByteArray byteOrderMark("\xEF\xBB\xBF");
    const QString text = PathCodec::decode(bytes.startsWith(byteOrderMark) ? bytes.mid(byteOrderMark.size()) : bytes);
    Read read;
    const QVariantList records = TsvTable::dictionariesFromText(text);
    for (qsizetype i = 0; i < records.size(); ++i) {
        const QVariantMap record = records[i].toMap();
        const QString from = record.value(QStringLiteral("old")).toString();
        if (!record.contains(QStringLiteral("old")) || !record.contains(QStringLiteral("new")) || from.isEmpty()) {
            read.error = QStringLiteral("%1: entry %2 has no old name or no new name (the first line names the columns: "
                                        "old, a tab, new)")
                             .arg(shownPath)
                             .arg(i + 1);
            return read;
        }
        const QString oldPath = absolute(from, workingFolder);
        const QString to = record.value(QStringLiteral("new")).toString();
        const QString newPath = to.contains(u'/') ? absolute(to, workingFolder)
                                                  : oldPath.left(oldPath.lastIndexOf(u'/') + 1) + to;
        read.moves.push_back({oldPath, newPath});
    }
    if (records.isEmpty())
        read.error = QStringLiteral("%1: no names to map (the first line names the columns: old, a tab, new)").arg(shownPath);
    return read;
}

} // namespace MapFile
