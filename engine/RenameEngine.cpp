#include "RenameEngine.h"

#include "CalendarFormat.h"
#include "MetadataReader.h"
#include "GrepPrefetch.h"

#include <QCoreApplication>

RenameEngine::RenameEngine()
{
    localTimeZone = CalendarFormat::format(QDateTime::currentDateTime(), QStringLiteral("%z"));

    composer.tokens = LocalizedDateTokens::fromUiTable();
    composer.sentenceEndings = QCoreApplication::translate("ui", "sentenceEndings").split(u'|');
    composer.grep = GrepPrefetch::replacementFor(rule(), {});
}

Composed RenameEngine::composeTable(NameComposer &composer, const std::vector<ItemRecord> &rows, const PassRequest &request,
                                    const ClampedDates &dates)
{
    if (composer.rule.searchesByGrep()) {
        QStringList names;
        names.reserve(qsizetype(rows.size()));
        for (const ItemRecord &row : rows)
            names.append(row.name);
        composer.grep = GrepPrefetch::replacementFor(composer.rule, names);
    }
    return BatchPass::newNames(composer, rows, request, dates);
}

void RenameEngine::prefetchGrep(const QStringList &names)
{
    composer.grep = GrepPrefetch::replacementFor(rule(), names);
}

Metadata::Request RenameEngine::metadataRequest() const
{
    Metadata::Request request = rule().metadataRequest();
    request.dateTaken = readsDatesTaken;
    request |= columnsRequest;
    return request;
}

FolderListing RenameEngine::listing()
{
    FolderListing listing(dates, stop);
    listing.metadata = metadataRequest();
    listing.readMetadata = &MetadataReader::read;
    return listing;
}
