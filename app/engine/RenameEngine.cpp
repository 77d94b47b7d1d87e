#include "RenameEngine.h"

#include "CalendarFormat.h"
#include "ExifDates.h"
#include "GrepPrefetch.h"

#include <QCoreApplication>

namespace {

QDateTime midnight(int year, int month, int day)
{
    return QDateTime(QDate(year, month, day), QTime(0, 0), Qt::LocalTime);
}

} // namespace

RenameEngine::RenameEngine()
{
    date1904 = midnight(1904, 1, 1);
    date1970 = midnight(1970, 1, 1);
    date1970GMT = QDateTime(QDate(1970, 1, 1), QTime(0, 0), Qt::UTC);
    date2040 = QDateTime(QDate(2040, 2, 6), QTime(5, 28, 15), Qt::UTC);
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
    return ExifDates::imageCreatedDate(path);
}

FolderListing RenameEngine::listing()
{
    FolderListing listing({date1904, date1970, date1970GMT, date2040}, stopProgressBool);
    if (use_exif_date)
        listing.exifDate = &RenameEngine::exifDate;
    return listing;
}
