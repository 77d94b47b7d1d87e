#pragma once

#include "MetadataValues.h"

#include <QObject>
#include <atomic>
#include <future>
#include <memory>

class FileTableModel;

// What the rule's tokens and the shown columns ask of the table's files
// that its rows do not hold yet (a listing reads what was asked when it
// ran), read aside so typing never waits. The rows take the values when
// they come, matched by path, whatever order they are in by then; `filled`
// says so. Meanwhile the rows are marked as being read, so no value is told
// missing before it is looked for.
class MetadataFill : public QObject {
    Q_OBJECT
public:
    explicit MetadataFill(FileTableModel &table, QObject *parent = nullptr);
    ~MetadataFill() override;

    // What every file row should hold; what rows lack is read aside.
    void want(const Metadata::Request &wanted);
    // Waits for what is being read and gives it to the rows: a rename
    // composes with every value.
    void finish();
    bool reading() const { return m_job != nullptr; }

signals:
    void filled();

private:
    struct Job;
    // Gives the job's values to the rows; whether any row took them.
    bool take(const std::shared_ptr<Job> &job);

    FileTableModel &m_table;
    Metadata::Request m_wanted;
    std::shared_ptr<Job> m_job; // the read under way, if one is
};
