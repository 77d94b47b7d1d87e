#include "RenameRule.h"

#include "MetadataTokens.h"
#include "StringAdditions.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

const QStringList dateNames = {"none", "now", "created", "modified"};

QJsonObject partJson(const RenameRule::Part &part)
{
    return {{"text", part.text},     {"start", part.start},   {"step", part.step},
            {"leadingZeros", part.leadingZeros}, {"digits", part.digits}, {"date", RenameRule::dateName(part.date)}};
}

// Reads one JSON object's keys into fields, remembering the first problem:
// a key it was not asked for, or a value of the wrong kind.
class ObjectReader {
public:
    ObjectReader(const QJsonValue &value, QString path, QString &problem)
        : m_object(value.toObject()), m_path(std::move(path)), m_problem(problem)
    {
        if (!value.isUndefined() && !value.isObject())
            fail(m_path, QStringLiteral("must be an object"));
    }
    ~ObjectReader()
    {
        for (auto entry = m_object.begin(); entry != m_object.end(); ++entry)
            if (!m_asked.contains(entry.key()))
                fail(name(entry.key()), QStringLiteral("is not a key of a rule"));
    }

    QJsonValue value(const QString &key)
    {
        m_asked.append(key);
        return m_object.value(key);
    }
    QString name(const QString &key) const { return m_path.isEmpty() ? key : m_path + u'.' + key; }

    // The value under the key when `accept` takes it; a value it refuses
    // is the reader's problem.
    template <typename T, typename Accept>
    void readWith(const QString &key, T &field, Accept accept, const char *kind)
    {
        const QJsonValue found = value(key);
        if (found.isUndefined())
            return;
        if (std::optional<T> taken = accept(found))
            field = std::move(*taken);
        else
            fail(name(key), QLatin1String("must be ") + QLatin1String(kind));
    }
    void read(const QString &key, QString &field)
    {
        readWith(key, field, [](const QJsonValue &v) { return v.isString() ? std::optional(v.toString()) : std::nullopt; },
                 "a text");
    }
    void read(const QString &key, bool &field)
    {
        readWith(key, field, [](const QJsonValue &v) { return v.isBool() ? std::optional(v.toBool()) : std::nullopt; },
                 "true or false");
    }
    void read(const QString &key, qint32 &field)
    {
        readWith(key, field, [](const QJsonValue &v) {
            const double number = v.toDouble(0.5);
            return v.isDouble() && number == double(qint32(number)) ? std::optional(qint32(number)) : std::nullopt;
        }, "a whole number");
    }
    void read(const QString &key, QStringList &field)
    {
        readWith(key, field, [](const QJsonValue &v) {
            QStringList texts;
            for (const QJsonValue &entry : v.toArray()) {
                if (!entry.isString())
                    return std::optional<QStringList>();
                texts.append(entry.toString());
            }
            return v.isArray() ? std::optional(texts) : std::nullopt;
        }, "a list of texts");
    }
    void readChoice(const QString &key, QString &field, const QStringList &allowed)
    {
        read(key, field);
        if (!field.isEmpty() && !allowed.contains(field))
            fail(name(key), QStringLiteral("must be one of: ") + allowed.join(QStringLiteral(", ")));
    }
    void read(const QString &key, std::optional<RenameRule::Case> &field)
    {
        QString text = field ? RenameRule::caseName(*field) : QString();
        readChoice(key, text, RenameRule::caseNames());
        field = RenameRule::caseNamed(text);
    }
    void read(const QString &key, RenameRule::Date &field)
    {
        QString text = RenameRule::dateName(field);
        readChoice(key, text, dateNames);
        field = RenameRule::dateNamed(text).value_or(field);
    }

    void fail(const QString &where, const QString &what)
    {
        if (m_problem.isEmpty())
            m_problem = QStringLiteral("\"%1\" %2").arg(where, what);
    }

private:
    QJsonObject m_object;
    QString m_path;
    QString &m_problem;
    QStringList m_asked;
};

void readPart(ObjectReader &rule, const QString &key, RenameRule::Part &part, QString &problem)
{
    ObjectReader reader(rule.value(key), rule.name(key), problem);
    reader.read(QStringLiteral("text"), part.text);
    reader.read(QStringLiteral("start"), part.start);
    reader.read(QStringLiteral("step"), part.step);
    reader.read(QStringLiteral("leadingZeros"), part.leadingZeros);
    reader.read(QStringLiteral("digits"), part.digits);
    reader.read(QStringLiteral("date"), part.date);
}

} // namespace

QString RenameRule::dateName(Date date)
{
    return dateNames.value(int(date));
}

std::optional<RenameRule::Date> RenameRule::dateNamed(const QString &name)
{
    const qsizetype index = dateNames.indexOf(name);
    return index < 0 ? std::nullopt : std::optional(Date(index));
}

const QStringList &RenameRule::caseNames()
{
    static const QStringList names = {"UPPERCASE", "lowercase", "Title Case", "Sentence case"};
    return names;
}

QString RenameRule::caseName(Case theCase)
{
    return caseNames().value(int(theCase));
}

std::optional<RenameRule::Case> RenameRule::caseNamed(const QString &name)
{
    const qsizetype index = caseNames().indexOf(name);
    return index < 0 ? std::nullopt : std::optional(Case(index));
}

QString RenameRule::extensionWithStop(const QString &extension)
{
    return StringAdditions::isBlankString(extension) || extension.startsWith(u'.') ? extension : u'.' + extension;
}

RenameRule RenameRule::blank()
{
    RenameRule rule;
    for (Part *part : {&rule.prefix, &rule.suffix}) {
        part->start = part->step = 0;
        part->leadingZeros = false;
    }
    rule.includeOriginal = false;
    rule.considerCase = false;
    return rule;
}

QByteArray RenameRule::toJson() const
{
    QJsonObject extension{{"case", extensionCase ? caseName(*extensionCase) : QString()}};
    if (newExtension)
        extension.insert(QStringLiteral("new"), *newExtension);
    const QJsonObject rule{
        {"prefix", partJson(prefix)},
        {"name", QJsonObject{{"include", includeOriginal}, {"search", search}, {"replace", replace},
                             {"grep", searchKind == Search::Grep}, {"considerCase", considerCase},
                             {"trimStart", trimStart}, {"trimEnd", trimEnd},
                             {"case", nameCase ? caseName(*nameCase) : QString()}, {"stripAccents", stripAccents}}},
        {"suffix", partJson(suffix)},
        {"extension", extension},
        {"listing", QJsonObject{{"types", QJsonArray::fromStringList(types)},
                                {"extensions", QJsonArray::fromStringList(extensions)},
                                {"descend", descend}, {"folders", folders}, {"longNames", longNames},
                                {"datesTaken", datesTaken}}},
    };
    return QJsonDocument(rule).toJson(QJsonDocument::Indented);
}

Result<RenameRule> RenameRule::fromJson(const QByteArray &json)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    QString found;
    if (error.error != QJsonParseError::NoError)
        found = QStringLiteral("not JSON: %1 at byte %2").arg(error.errorString()).arg(error.offset);
    else if (!document.isObject())
        found = QStringLiteral("not a JSON object");
    RenameRule rule;
    if (found.isEmpty()) {
        ObjectReader reader(document.object(), QString(), found);
        readPart(reader, QStringLiteral("prefix"), rule.prefix, found);
        readPart(reader, QStringLiteral("suffix"), rule.suffix, found);
        {
            ObjectReader name(reader.value(QStringLiteral("name")), QStringLiteral("name"), found);
            name.read(QStringLiteral("include"), rule.includeOriginal);
            name.read(QStringLiteral("search"), rule.search);
            name.read(QStringLiteral("replace"), rule.replace);
            bool grep = false;
            name.read(QStringLiteral("grep"), grep);
            rule.searchKind = grep ? Search::Grep : Search::Literal;
            name.read(QStringLiteral("considerCase"), rule.considerCase);
            name.read(QStringLiteral("trimStart"), rule.trimStart);
            name.read(QStringLiteral("trimEnd"), rule.trimEnd);
            name.read(QStringLiteral("case"), rule.nameCase);
            name.read(QStringLiteral("stripAccents"), rule.stripAccents);
        }
        {
            ObjectReader extension(reader.value(QStringLiteral("extension")), QStringLiteral("extension"), found);
            if (!extension.value(QStringLiteral("new")).isUndefined()) {
                QString text;
                extension.read(QStringLiteral("new"), text);
                rule.newExtension = extensionWithStop(text);
            }
            extension.read(QStringLiteral("case"), rule.extensionCase);
        }
        {
            ObjectReader listing(reader.value(QStringLiteral("listing")), QStringLiteral("listing"), found);
            listing.read(QStringLiteral("types"), rule.types);
            listing.read(QStringLiteral("extensions"), rule.extensions);
            listing.read(QStringLiteral("descend"), rule.descend);
            listing.read(QStringLiteral("folders"), rule.folders);
            listing.read(QStringLiteral("longNames"), rule.longNames);
            listing.read(QStringLiteral("datesTaken"), rule.datesTaken);
        }
    }
    if (!found.isEmpty())
        return Failure{found};
    return rule;
}

Metadata::Request RenameRule::metadataRequest() const
{
    Metadata::Request request = MetadataTokens::requestOf({prefix.text, suffix.text});
    request.dateTaken = datesTaken;
    return request;
}
