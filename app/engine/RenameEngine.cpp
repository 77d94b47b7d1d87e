#include "RenameEngine.h"

#include "CalendarFormat.h"
#include "DatesTaken.h"
#include "PathCodec.h"
#include "GrepPrefetch.h"

#include <QCoreApplication>

RenameEngine::RenameEngine()
{
    localTimeZone = CalendarFormat::format(QDateTime::currentDateTime(), QStringLiteral("%z"));

    composer.tokens = LocalizedDateTokens::fromUiTable();
    composer.sentenceEndings = QCoreApplication::translate("ui", "sentenceEndings").split(u'|');
    composer.grep = GrepPrefetch::replacementFor(settings(), {});
}

void RenameEngine::prefetchGrep(const QStringList &names)
{
    composer.grep = GrepPrefetch::replacementFor(settings(), names);
}

QVariant RenameEngine::exifDate(const QString &path)
{
    const std::optional<DateTaken> taken = DatesTaken::read(PathCodec::encode(path));
    return taken ? QVariant(taken->toDateTime()) : QVariant(false);
}

FolderListing RenameEngine::listing()
{
    FolderListing listing(dates, stopProgressBool);
    if (use_exif_date)
        listing.dateTaken = &DatesTaken::read;
    return listing;
}
