#include "NameComposer.h"

#include "CaseChange.h"
#include "StringAdditions.h"

using namespace ROZ_NSStringAdditions;

namespace {

QString lastPathComponent(const QString &path)
{
    QString trimmed = path;
    while (trimmed.size() > 1 && trimmed.endsWith(u'/'))
        trimmed.chop(1);
    return trimmed == QLatin1String("/") ? trimmed : trimmed.section(u'/', -1);
}

} // namespace

CompositionRequest CompositionRequest::fromArray(const QVariantList &e)
{
    CompositionRequest request;
    request.name = e.value(0).toString();
    request.rowCount = qint32(e.value(1).toLongLong());
    request.numberDuplicates = e.value(2).toBool();
    request.location = e.value(3).toString();
    request.prefixDate = e.value(4).toDateTime();
    request.suffixDate = e.value(5).toDateTime();
    return request;
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

QString NameComposer::changeCase(const QString &text, const QString &theCase) const
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

QString NameComposer::tokensFilled(const QString &text, const QDateTime &date) const
{
    // Dates are the same only at the same offset: two clocks can show one
    // instant differently, and the tokens show the clock.
    for (const FilledText &last : m_filled)
        if (last.text == text && last.date == date && last.date.offsetFromUtc() == date.offsetFromUtc()
            && last.date.timeSpec() == date.timeSpec())
            return last.filled;
    // Two texts are in use at once, the prefix and the suffix: the older
    // entry gives way.
    FilledText &slot = m_filled[m_nextFilled];
    m_nextFilled = 1 - m_nextFilled;
    slot = {text, date, replaceInsertConstants(text, date)};
    return slot.filled;
}

QString NameComposer::fillTokens(const QString &text, const QDateTime &date, const QString &counter,
                                 const QString &folder) const
{
    // Every token opens with a guillemet; most texts have none.
    if (!text.contains(u'«'))
        return text;
    QString filled = snr(tokensFilled(text, date), QStringLiteral("«#»"), counter);
    // The case-insensitive test for «ƒ»: the hook's only other case is Ƒ.
    if (filled.contains(QStringLiteral("«ƒ»")) || filled.contains(QStringLiteral("«Ƒ»")))
        filled = snr(filled, QStringLiteral("«ƒ»"), folder);
    return filled;
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
    if (settings._filename_search_1 != QLatin1String("")) {
        if (settings._search_type_1 == QLatin1String("GREP")) {
            if (grep) {
                GrepResult replaced = grep(base, settings._filename_search_1, settings._filename_replace_1,
                                           settings._snr_consider_case_1);
                base = std::move(replaced.text);
                failure = std::move(replaced.failure);
            }
        } else
            base = snr(base, settings._filename_search_1, settings._filename_replace_1);
    }
    // Compared as unsigned: a negative start trim always empties the base.
    if (settings._trim_start != 0)
        base = quint32(base.size()) > quint32(settings._trim_start) ? base.mid(settings._trim_start) : QString();
    // A negative end trim keeps the last characters instead.
    if (settings._trim_end > 0) {
        base = base.size() > settings._trim_end ? base.left(base.size() - settings._trim_end) : QString();
    } else if (settings._trim_end < 0) {
        const qint64 keep = -qint64(settings._trim_end);
        if (base.size() > keep)
            base = base.right(keep);
    }
    if (settings._change_case)
        base = changeCase(base, settings._case_transformation);
    if (settings._orig_strip_diacriticals)
        base = stripDiacritical(base);
    return {base, failure};
}

NameComposer::TreatedBase NameComposer::cachedBaseName(const QString &name)
{
    if (!baseNameCache)
        return treatedBaseName(name);
    const RenameSettings &s = settings;
    const RenameSettings &r = baseNameCache->rules;
    const bool same = baseNameCache->filled && s._filename_search_1 == r._filename_search_1
                      && s._filename_replace_1 == r._filename_replace_1 && s._search_type_1 == r._search_type_1
                      && s._snr_consider_case_1 == r._snr_consider_case_1 && s._trim_start == r._trim_start
                      && s._trim_end == r._trim_end && s._change_case == r._change_case
                      && s._case_transformation == r._case_transformation
                      && s._orig_strip_diacriticals == r._orig_strip_diacriticals;
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
        m_lastFolderName = lastPathComponent(location);
    }
    return m_lastFolderName;
}

QString NameComposer::generateNewName(const CompositionRequest &request)
{
    const QString folder = folderNameOf(request.location);

    QString newName = fillTokens(settings._prefix, request.prefixDate,
                                 counterText(settings._prefix_start_num, request.rowCount,
                                             settings._prefix_add_leading_zeros_min, prefixZerosControlConnected),
                                 folder);
    // Advances on every call, whether or not the prefix shows a counter.
    settings._prefix_start_num += settings._prefix_ai_counter;

    lastFailure.clear();
    if (settings._inc_original_name) {
        TreatedBase treated = cachedBaseName(request.name);
        newName += treated.base;
        lastFailure = std::move(treated.failure);
    }

    newName += fillTokens(settings._suffix, request.suffixDate,
                          counterText(settings._suffix_start_num, request.rowCount,
                                      settings._suffix_add_leading_zeros_min, suffixZerosControlConnected),
                          folder);
    settings._suffix_start_num += settings._suffix_ai_counter;

    const QString extension = extensionFor(request.name);
    if (!request.numberDuplicates)
        return newName + extension;
    return numbered(request.location, newName, extension);
}

QString NameComposer::extensionFor(const QString &currentName) const
{
    // The extension comes from the current name even when the name itself
    // is left out.
    QString extension;
    if (settings._use_new_extension)
        extension = settings._extension;
    else if (const qsizetype dot = currentName.lastIndexOf(u'.'); dot >= 0)
        extension = currentName.mid(dot);
    if (settings._ext_change_case)
        extension = changeCase(extension, settings._ext_case_transformation);
    return extension;
}

QString NameComposer::numbered(const QString &location, const QString &newName, const QString &extension)
{
    // Duplicates are counted among names given out earlier in this pass,
    // never against the files on disk. Built by concatenation: names may
    // hold "%" sequences of their own.
    QString path = location + newName + extension;
    if (!duplicate_check_list.contains(path)) {
        duplicate_check_list.append(path);
        return newName + extension;
    }
    int n = 1;
    while (duplicate_check_list.contains(location + newName + u' ' + QString::number(n) + extension))
        ++n;
    const QString result = newName + u' ' + QString::number(n) + extension;
    duplicate_check_list.append(location + result);
    return result;
}
