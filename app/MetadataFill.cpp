#include "MetadataFill.h"

#include "FileTableModel.h"
#include "MetadataReader.h"
#include "MetadataReads.h"
#include "PathCodec.h"

#include <QHash>

struct MetadataFill::Job {
    std::vector<QString> paths;
    std::vector<QByteArray> encoded;
    Metadata::Request request;
    std::atomic<bool> cancelled{false};
    std::optional<std::vector<Metadata::Values>> found;
    std::future<void> done;
};

MetadataFill::MetadataFill(FileTableModel &table, QObject *parent) : QObject(parent), m_table(table) {}

MetadataFill::~MetadataFill()
{
    if (m_job) {
        m_job->cancelled.store(true);
        m_job->done.wait();
    }
}

void MetadataFill::want(const Metadata::Request &wanted)
{
    // Dates taken are read with the listing: they order and date rows.
    m_wanted = wanted;
    m_wanted.dateTaken = false;
    if (m_wanted.isEmpty())
        return;
    auto job = std::make_shared<Job>();
    job->request = m_wanted;
    for (const ItemRecord &row : m_table.rows()) {
        if (!row.size || (row.metadata && m_wanted.without(row.metadata->answered).isEmpty()))
            continue;
        // Read again, a row's values answer what they answered before too.
        if (row.metadata)
            job->request |= Metadata::Request{false, row.metadata->answered.fields, row.metadata->answered.tags};
        job->paths.push_back(row.path());
    }
    if (job->paths.empty())
        return;
    if (m_job)
        m_job->cancelled.store(true); // this one reads what it would have, and more
    for (const QString &path : job->paths)
        job->encoded.push_back(PathCodec::encode(path));
    m_table.markMetadataUnread();
    m_job = job;
    job->done = std::async(std::launch::async, [this, job] {
        job->found = MetadataReads::readEach(job->encoded, job->request, &MetadataReader::read,
                                             [&job] { return !job->cancelled.load(); });
        QMetaObject::invokeMethod(this, [this, job] {
            if (take(job))
                emit filled();
        }, Qt::QueuedConnection);
    });
}

bool MetadataFill::take(const std::shared_ptr<Job> &job)
{
    if (job != m_job)
        return false; // taken already, or one asked later is under way
    m_job.reset();
    if (!job->found)
        return false;
    QHash<QString, std::shared_ptr<const Metadata::Values>> byPath;
    byPath.reserve(qsizetype(job->paths.size()));
    for (size_t i = 0; i < job->paths.size(); ++i)
        byPath.insert(job->paths[i], std::make_shared<const Metadata::Values>(std::move((*job->found)[i])));
    return m_table.takeMetadata(byPath);
}

void MetadataFill::finish()
{
    if (!m_job)
        return;
    const std::shared_ptr<Job> job = m_job;
    job->done.wait();
    // Told once the caller is done: it composes with the rule as it holds
    // it, and a preview now would move its counters.
    if (take(job))
        QMetaObject::invokeMethod(this, &MetadataFill::filled, Qt::QueuedConnection);
}
