#include "BatchJournal.h"

#include "PathNames.h"

#include "PathCodec.h"

#include <QCryptographicHash>
#include <cstdio>

namespace {

constexpr char Magic[] = "nomen-journal 1";

QByteArray checksum(QByteArrayView text)
{
    return QCryptographicHash::hash(text, QCryptographicHash::Blake2b_256).toHex();
}

QByteArray kindName(BatchJournal::Kind kind)
{
    switch (kind) {
    case BatchJournal::Kind::Apply:
        return "apply";
    case BatchJournal::Kind::Undo:
        return "undo";
    case BatchJournal::Kind::RollBack:
        return "roll-back";
    }
    return {};
}

std::optional<BatchJournal::Kind> kindNamed(const QByteArray &name)
{
    for (BatchJournal::Kind kind : {BatchJournal::Kind::Apply, BatchJournal::Kind::Undo, BatchJournal::Kind::RollBack})
        if (kindName(kind) == name)
            return kind;
    return std::nullopt;
}

QByteArray field(const QString &text)
{
    return PathCodec::encode(text).toBase64();
}

void appendNumber(QByteArray &out, qint64 number)
{
    char digits[24];
    const int length = std::snprintf(digits, sizeof digits, "%lld", static_cast<long long>(number));
    out.append(digits, length);
}

std::optional<QString> text(const QByteArray &field)
{
    auto decoded = QByteArray::fromBase64Encoding(field, QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded)
        return std::nullopt;
    return PathCodec::decode(*decoded);
}

std::optional<qint64> number(const QByteArray &field, qint64 minimum, qint64 maximum)
{
    bool ok = false;
    const qint64 value = field.toLongLong(&ok);
    return ok && value >= minimum && value <= maximum ? std::optional(value) : std::nullopt;
}

std::optional<FileIdentity> identity(const QByteArray &device, const QByteArray &inode, const QByteArray &born)
{
    bool deviceOk = false, inodeOk = false, bornOk = false;
    const FileIdentity found{device.toULongLong(&deviceOk), inode.toULongLong(&inodeOk), born.toLongLong(&bornOk)};
    return deviceOk && inodeOk && bornOk ? std::optional(found) : std::nullopt;
}

QByteArray identityFields(const FileIdentity &identity)
{
    return QByteArray::number(identity.device) + ' ' + QByteArray::number(identity.inode) + ' '
           + QByteArray::number(identity.born);
}

void appendIdentity(QByteArray &out, const FileIdentity &identity)
{
    appendNumber(out, qint64(identity.device));
    out.append(' ');
    appendNumber(out, qint64(identity.inode));
    out.append(' ');
    appendNumber(out, identity.born);
}

bool isSingleName(const QString &name)
{
    return !name.isEmpty() && name != QLatin1String(".") && name != QLatin1String("..") && !name.contains(u'/')
           && !name.contains(QChar(0));
}

// Reads the lines before the checksum.
class Reader {
public:
    explicit Reader(BatchJournal &journal) : m_journal(journal) {}

    QString line(const QList<QByteArray> &fields)
    {
        const QByteArray &tag = fields[0];
        if (tag == "kind" && fields.size() == 2) {
            const auto kind = kindNamed(fields[1]);
            if (!kind)
                return QStringLiteral("an unknown kind of batch");
            m_journal.kind = *kind;
        } else if (tag == "undoes" && fields.size() == 2) {
            const auto entry = text(fields[1]);
            if (!entry || entry->isEmpty() || !isSingleName(*entry))
                return QStringLiteral("a damaged history entry name");
            m_journal.undoes = *entry;
        } else if (tag == "folder" && fields.size() == 2) {
            const auto folder = text(fields[1]);
            if (!folder || !folder->startsWith(u'/'))
                return QStringLiteral("a folder that is not an absolute path");
            m_journal.folders.append(*folder);
        } else if (tag == "item" && fields.size() >= 8) {
            return item(fields);
        } else if (tag == "step" && fields.size() == 3) {
            return step(fields);
        } else {
            return QStringLiteral("a line it does not know");
        }
        return {};
    }

    // Every item must move through all its names, in order, once.
    QString finish() const
    {
        for (size_t i = 0; i < m_journal.items.size(); ++i)
            if (m_reached[i] != m_journal.items[i].last())
                return QStringLiteral("an item whose moves are missing");
        return {};
    }

private:
    QString item(const QList<QByteArray> &fields)
    {
        const auto row = number(fields[1], -1, std::numeric_limits<int>::max());
        const auto folder = number(fields[2], 0, m_journal.folders.size() - 1);
        const auto found = identity(fields[3], fields[4], fields[5]);
        if (!row || !folder || !found)
            return QStringLiteral("a damaged item");
        BatchJournal::Item item{int(*row), int(*folder), {}, *found, std::nullopt};
        for (qsizetype i = 6; i < fields.size(); ++i) {
            const auto name = text(fields[i]);
            if (!name || !isSingleName(*name))
                return QStringLiteral("a name that is not a single name");
            item.names.append(*name);
        }
        m_journal.items.push_back(std::move(item));
        m_reached.push_back(0);
        return {};
    }

    QString step(const QList<QByteArray> &fields)
    {
        const auto item = number(fields[1], 0, qint64(m_journal.items.size()) - 1);
        if (!item)
            return QStringLiteral("a move of an unknown item");
        const auto to = number(fields[2], 1, m_journal.items[size_t(*item)].last());
        if (!to || *to != m_reached[size_t(*item)] + 1)
            return QStringLiteral("moves out of order");
        m_reached[size_t(*item)] = int(*to);
        m_journal.steps.push_back({int(*item), int(*to)});
        return {};
    }

    BatchJournal &m_journal;
    std::vector<int> m_reached; // per item, the last name its moves reach
};

} // namespace

QString BatchJournal::pathOf(const Item &item, int position) const
{
    const QString &folder = folders[item.folder];
    return PathNames::joined(folder, item.names[position]);
}

// Everything before the checksum, written piece by piece: a batch of a
// hundred thousand items is a journal of some ten megabytes.
QByteArray BatchJournal::body() const
{
    QByteArray out;
    out.reserve(qsizetype(64 + items.size() * 112 + steps.size() * 16));
    out += Magic;
    out += "\nkind ";
    out += kindName(kind);
    out += '\n';
    if (!undoes.isEmpty()) {
        out += "undoes ";
        out += field(undoes);
        out += '\n';
    }
    for (const QString &folder : folders) {
        out += "folder ";
        out += field(folder);
        out += '\n';
    }
    for (const Item &item : items) {
        out += "item ";
        appendNumber(out, item.row);
        out += ' ';
        appendNumber(out, item.folder);
        out += ' ';
        appendIdentity(out, item.identity);
        for (const QString &name : item.names) {
            out += ' ';
            out += PathCodec::encode(name).toBase64();
        }
        out += '\n';
    }
    for (const Step &step : steps) {
        out += "step ";
        appendNumber(out, step.item);
        out += ' ';
        appendNumber(out, step.to);
        out += '\n';
    }
    return out;
}

QByteArray BatchJournal::serialize() const
{
    QByteArray out = body();
    out += "sum " + checksum(out) + '\n';
    return out;
}

QByteArray BatchJournal::copyRecord(int item, const FileIdentity &copy)
{
    const QByteArray record = "copied " + QByteArray::number(item) + ' ' + identityFields(copy);
    return record + ' ' + checksum(record).left(16) + '\n';
}

Result<BatchJournal> BatchJournal::parse(const QByteArray &text)
{
    const auto refuse = [](const QString &why) { return Failure{why}; };
    if (!text.startsWith(QByteArray(Magic) + '\n'))
        return refuse(QStringLiteral("it is not a Nomen journal"));
    const qsizetype sumAt = text.indexOf("\nsum ");
    const qsizetype sumEnd = sumAt < 0 ? -1 : text.indexOf('\n', sumAt + 1);
    if (sumAt < 0 || sumEnd < 0)
        return refuse(QStringLiteral("it is not whole"));
    const QByteArrayView body(text.constData(), sumAt + 1);
    if (text.mid(sumAt + 5, sumEnd - sumAt - 5) != checksum(body))
        return refuse(QStringLiteral("its checksum does not match"));

    BatchJournal journal;
    Reader reader(journal);
    const qsizetype start = qstrlen(Magic) + 1;
    const QList<QByteArray> lines = QByteArray(body.constData() + start, body.size() - start).split('\n');
    for (const QByteArray &line : lines) {
        if (line.isEmpty())
            continue;
        if (const QString problem = reader.line(line.split(' ')); !problem.isEmpty())
            return refuse(QStringLiteral("it holds %1").arg(problem));
    }
    if (const QString problem = reader.finish(); !problem.isEmpty())
        return refuse(QStringLiteral("it holds %1").arg(problem));
    // Only the form written here is believed: no line added, moved or repeated.
    if (journal.body() != body)
        return refuse(QStringLiteral("it is not in the form Nomen writes"));

    // Records appended as the batch ran; a last line without its line feed
    // was cut short before it reached the disk and never counted.
    const QList<QByteArray> appended = text.mid(sumEnd + 1).split('\n');
    for (qsizetype i = 0; i + 1 < appended.size(); ++i) {
        const QList<QByteArray> fields = appended[i].split(' ');
        const QByteArray record = appended[i].left(appended[i].lastIndexOf(' '));
        const bool shaped = fields.size() == 6;
        const auto item = shaped ? number(fields[1], 0, qint64(journal.items.size()) - 1) : std::nullopt;
        const auto copy = shaped ? identity(fields[2], fields[3], fields[4]) : std::nullopt;
        if (fields[0] != "copied" || !item || !copy || fields[5] != checksum(record).left(16))
            return refuse(QStringLiteral("it holds a damaged record of a copy"));
        journal.items[size_t(*item)].copiedAs = *copy;
    }
    return journal;
}
