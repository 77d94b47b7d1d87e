#include "NameComposer.h"

#include "CaseChange.h"
#include "PathNames.h"
#include "StringAdditions.h"
#include "ValueTexts.h"

#include <QStringBuilder>

using namespace StringAdditions;

void NameComposer::useRule(const RenameRule &newRule)
{
    rule = newRule;
    prefixCounter = rule.prefix.start;
    suffixCounter = rule.suffix.start;
}

QString NameComposer::addLeadingZeros(qint32 counter, qint32 rowCount, qint32 minimumDigits)
{
    // A negative counter keeps its sign, and the zeros go in front of it.
    QString text = QString::number(counter);
    qsizetype width = rowCount < 0 ? 2 : 1;
    for (qint64 rest = std::abs(qint64(rowCount)); rest >= 10; rest /= 10)
        ++width;
    if (text.size() < width)
        text.prepend(QString(width - text.size(), u'0'));
    // The minimum is compared as unsigned, so a negative one asks for
    // billions of zeros; no file name can hold more than 255.
    const quint32 minimum = std::min<quint32>(quint32(minimumDigits), 255);
    if (quint32(text.size()) < minimum)
        text.prepend(QString(qsizetype(minimum) - text.size(), u'0'));
    return text;
}

QString NameComposer::changeCase(const QString &text, RenameRule::Case theCase) const
{
    return CaseChange::changeCase(text, theCase, sentenceEndings);
}

QString NameComposer::replaceInsertConstants(const QString &text, const QDateTime &date) const
{
    return DateTokens::replaceInsertConstants(text, date, tokens);
}

QString NameComposer::counterText(qint32 counter, qint32 rowCount, qint32 minimum, bool padded) const
{
    return padded ? addLeadingZeros(counter, rowCount, minimum) : QString::number(counter);
}

// The places of the counter, the folder's name and the values files record
// in a text whose date tokens are filled: every "«#»" is the counter, every
// "«ƒ»" the folder's name, every «field» or «tag KEY» a value. A counter is
// digits and a sign, and values are put in after this, so none of them can
// make or break a token: this is the text cut up once.
void NameComposer::cutIntoParts(FilledText &text)
{
    using Piece = FilledText::Piece;
    const QString &filled = text.filled;
    text.parts.clear();
    text.tokens.clear();
    qsizetype literal = 0;
    const auto endLiteral = [&](qsizetype at) {
        if (at > literal)
            text.parts.push_back({Piece::Literal, literal, at - literal});
    };
    for (qsizetype at = 0; (at = filled.indexOf(u'«', at)) >= 0;) {
        const QStringView rest = QStringView(filled).sliced(at);
        if (rest.startsWith(u"«#»") || rest.startsWith(u"«ƒ»")) {
            endLiteral(at);
            text.parts.push_back({rest[1] == u'#' ? Piece::Counter : Piece::Folder});
            literal = at += 3;
        } else if (const std::optional<MetadataTokens::Token> token = MetadataTokens::at(filled, at)) {
            endLiteral(at);
            text.parts.push_back({Piece::Value, qsizetype(text.tokens.size())});
            text.tokens.push_back(*token);
            literal = at += token->length;
        } else {
            ++at;
        }
    }
    endLiteral(filled.size());
}

const NameComposer::FilledText &NameComposer::tokensFilled(const QString &text, const QDateTime &date) const
{
    // Dates are the same only at the same offset: two clocks can show one
    // instant differently, and the tokens show the clock.
    for (const FilledText &last : m_filled)
        if (last.text == text && last.date == date && last.date.offsetFromUtc() == date.offsetFromUtc()
            && last.date.timeSpec() == date.timeSpec())
            return last;
    // Two texts are in use at once, the prefix and the suffix: the older
    // entry gives way.
    FilledText &slot = m_filled[m_nextFilled];
    m_nextFilled = 1 - m_nextFilled;
    slot.text = text;
    slot.date = date;
    slot.filled = replaceInsertConstants(text, date);
    cutIntoParts(slot);
    return slot;
}

QString NameComposer::fillTokens(const QString &text, const QDateTime &date, const QString &counter,
                                 const QString &folder, const Metadata::Values *values, bool &valued, qsizetype room)
{
    // Every token opens with a guillemet; most texts have none.
    if (!text.contains(u'«'))
        return text;
    const FilledText &filled = tokensFilled(text, date);
    QString made;
    made.reserve(filled.filled.size() + counter.size() + folder.size() + room);
    for (const FilledText::Part &part : filled.parts) {
        switch (part.piece) {
        case FilledText::Piece::Literal:
            made += QStringView(filled.filled).sliced(part.from, part.length);
            break;
        case FilledText::Piece::Counter:
            made += counter;
            break;
        case FilledText::Piece::Folder:
            made += folder;
            break;
        case FilledText::Piece::Value: {
            const MetadataTokens::Token &token = filled.tokens[size_t(part.from)];
            const QString value = values ? ValueTexts::forName(token.valueIn(*values)) : QString();
            // Values still being read are not yet missing.
            const bool unread = values && !token.askedIn(values->answered);
            if (value.isEmpty()) {
                if (!unread && !lastMissing.contains(token.name()))
                    lastMissing.append(token.name());
            } else {
                made += value;
                valued = true;
            }
            break;
        }
        }
    }
    return made;
}

QString NameComposer::baseNameOf(const QString &name)
{
    const qsizetype dot = name.lastIndexOf(u'.');
    return dot < 0 ? name : name.left(dot);
}

NameComposer::TreatedBase NameComposer::treatedBaseName(const QString &name)
{
    QString base = baseNameOf(name);
    QString failure;
    if (!rule.search.isEmpty()) {
        if (rule.searchKind == RenameRule::Search::Grep) {
            if (grep) {
                GrepResult replaced = grep(base, rule.search, rule.replace, rule.considerCase);
                base = std::move(replaced.text);
                failure = std::move(replaced.failure);
            }
        } else
            base = snr(base, rule.search, rule.replace);
    }
    // Compared as unsigned: a negative start trim always empties the base.
    if (rule.trimStart != 0)
        base = quint32(base.size()) > quint32(rule.trimStart) ? base.mid(rule.trimStart) : QString();
    // A negative end trim keeps the last characters instead.
    if (rule.trimEnd > 0) {
        base = base.size() > rule.trimEnd ? base.left(base.size() - rule.trimEnd) : QString();
    } else if (rule.trimEnd < 0) {
        const qint64 keep = -qint64(rule.trimEnd);
        if (base.size() > keep)
            base = base.right(keep);
    }
    if (rule.nameCase)
        base = changeCase(base, *rule.nameCase);
    if (rule.stripAccents)
        base = stripDiacritical(base);
    return {base, failure};
}

NameComposer::TreatedBase NameComposer::cachedBaseName(const QString &name)
{
    if (!baseNameCache)
        return treatedBaseName(name);
    const RenameRule &s = rule;
    const RenameRule &r = baseNameCache->rules;
    const bool same = baseNameCache->filled && s.search == r.search && s.replace == r.replace
                      && s.searchKind == r.searchKind && s.considerCase == r.considerCase && s.trimStart == r.trimStart
                      && s.trimEnd == r.trimEnd && s.nameCase == r.nameCase && s.stripAccents == r.stripAccents;
    if (!same) {
        baseNameCache->rules = s;
        baseNameCache->filled = true;
        baseNameCache->bases.clear();
    }
    const auto known = baseNameCache->bases.constFind(name);
    if (known != baseNameCache->bases.constEnd())
        return *known;
    return baseNameCache->bases[name] = treatedBaseName(name);
}

QString NameComposer::folderNameOf(const QString &location)
{
    if (location != m_lastLocation || m_lastLocation.isNull()) {
        m_lastLocation = location;
        m_lastFolderName = PathNames::lastComponent(location);
    }
    return m_lastFolderName;
}

QString NameComposer::generateNewName(const CompositionRequest &request)
{
    const QString folder = folderNameOf(request.location);
    lastMissing.clear();
    bool valued = false;

    // Room for the rest of the name, so it is appended without copying.
    QString newName = fillTokens(rule.prefix.text, request.prefixDate,
                                 counterText(prefixCounter, request.rowCount, rule.prefix.digits, prefixZerosControlConnected),
                                 folder, request.values, valued, request.name.size() + rule.suffix.text.size() + 8);
    // Advances on every call, whether or not the prefix shows a counter.
    prefixCounter += rule.prefix.step;

    lastFailure.clear();
    if (rule.includeOriginal) {
        TreatedBase treated = cachedBaseName(request.name);
        newName += treated.base;
        lastFailure = std::move(treated.failure);
    }

    newName += fillTokens(rule.suffix.text, request.suffixDate,
                          counterText(suffixCounter, request.rowCount, rule.suffix.digits, suffixZerosControlConnected), folder,
                          request.values, valued);
    suffixCounter += rule.suffix.step;

    const QString extension = extensionFor(request.name);
    // A long recorded value (a title, a lens) is cut rather than make a
    // name no file system takes.
    if (valued)
        newName = PathNames::fittedBefore(newName, extension, PathNames::longestName);
    if (!request.numberDuplicates)
        return exactly(newName, extension);
    return numbered(request.location, newName, extension);
}

QString NameComposer::extensionFor(const QString &currentName) const
{
    // The extension comes from the current name even when the name itself
    // is left out.
    QString extension;
    if (rule.newExtension)
        extension = *rule.newExtension;
    else if (const qsizetype dot = currentName.lastIndexOf(u'.'); dot >= 0)
        extension = currentName.mid(dot);
    if (rule.extensionCase)
        extension = changeCase(extension, *rule.extensionCase);
    return extension;
}

// A name and its extension in a string of just their length: a table keeps
// every new name, and appending would leave each with room to grow.
QString NameComposer::exactly(QStringView name, QStringView extension)
{
    return name % extension;
}

QString NameComposer::numbered(const QString &location, const QString &newName, const QString &extension)
{
    // Duplicates are counted among names given out earlier in this pass,
    // never against the files on disk. Built by concatenation: names may
    // hold "%" sequences of their own.
    const QString name = exactly(newName, extension);
    if (duplicate_check_list.appendNew(location, name))
        return name;
    int n = 1;
    while (duplicate_check_list.contains(location, newName % u' ' % QString::number(n) % extension))
        ++n;
    const QString result = newName + u' ' + QString::number(n) + extension;
    duplicate_check_list.append(location, result);
    return result;
}
