#include "RuleForm.h"

#include "DictionaryAdditions.h"
#include "InterfaceFile.h"
#include "OutletValues.h"
#include "StringAdditions.h"

namespace RuleForm {

namespace {

// A control that is not connected reads as an empty text, NO or none.
QString text(const InterfaceFile &form, const char *outlet)
{
    const QVariant value = OutletValues::contentsOf(form.outlet(QString::fromLatin1(outlet)));
    return value.typeId() == QMetaType::QString ? value.toString() : QString(QLatin1String(""));
}

qint32 integer(const InterfaceFile &form, const char *outlet)
{
    return DictionaryAdditions::intValue(text(form, outlet));
}

bool checked(const InterfaceFile &form, const char *outlet)
{
    const QVariant value = OutletValues::contentsOf(form.outlet(QString::fromLatin1(outlet)));
    return value.typeId() == QMetaType::Bool && value.toBool();
}

int selected(const InterfaceFile &form, const char *outlet)
{
    return OutletValues::selectedIndexOf(form.outlet(QString::fromLatin1(outlet)));
}

// The date popups list now, created, modified and none, in that order.
RenameRule::Date dateOf(const InterfaceFile &form, const char *outlet)
{
    const int index = selected(form, outlet);
    return index >= 0 && index < 3 ? RenameRule::Date(index + 1) : RenameRule::NoDate;
}

int dateIndex(RenameRule::Date date)
{
    return date == RenameRule::NoDate ? 3 : int(date) - 1;
}

QStringList listOf(const QString &text)
{
    QStringList entries;
    for (const QString &entry : text.split(u','))
        if (!entry.trimmed().isEmpty())
            entries.append(entry.trimmed());
    return entries;
}

RenameRule::Part partOf(const InterfaceFile &form, const QString &side)
{
    const auto name = [&side](const char *field) { return (side + QLatin1String(field)).toLatin1(); };
    RenameRule::Part part;
    part.text = text(form, name("").constData());
    part.start = integer(form, name("_start_num").constData());
    part.step = integer(form, name("_ai_counter").constData());
    part.leadingZeros = checked(form, name("_add_leading_zeros").constData());
    part.digits = integer(form, name("_add_leading_zeros_min").constData());
    part.date = dateOf(form, name("_date_to_use").constData());
    return part;
}

void set(const InterfaceFile &form, const QString &outlet, const QVariant &value)
{
    OutletValues::setContents(form.outlet(outlet), value);
}

void applyPart(const InterfaceFile &form, const QString &side, const RenameRule::Part &part)
{
    set(form, side, part.text);
    set(form, side + QLatin1String("_start_num"), QString::number(part.start));
    set(form, side + QLatin1String("_ai_counter"), QString::number(part.step));
    set(form, side + QLatin1String("_add_leading_zeros"), part.leadingZeros);
    set(form, side + QLatin1String("_add_leading_zeros_min"), QString::number(part.digits));
    set(form, side + QLatin1String("_date_to_use"), dateIndex(part.date));
}

} // namespace

RenameRule rule(const InterfaceFile &form)
{
    RenameRule rule;
    rule.prefix = partOf(form, QStringLiteral("prefix"));
    rule.suffix = partOf(form, QStringLiteral("suffix"));
    rule.includeOriginal = checked(form, "inc_original_name");
    rule.search = text(form, "search_1");
    rule.replace = text(form, "replace_1");
    rule.searchKind = selected(form, "snr_type_1") == 1 ? RenameRule::Search::Grep : RenameRule::Search::Literal;
    rule.considerCase = checked(form, "snr_consider_case_1");
    rule.trimStart = integer(form, "trim_start");
    rule.trimEnd = integer(form, "trim_end");
    rule.nameCase = checked(form, "change_case") ? RenameRule::caseNamed(text(form, "the_case")) : std::nullopt;
    rule.stripAccents = checked(form, "orig_strip_diacriticals");
    switch (selected(form, "extension_matrix")) {
    case 1:
        rule.newExtension = RenameRule::extensionWithStop(text(form, "extension"));
        break;
    case 2:
        rule.newExtension = RenameRule::extensionWithStop(text(form, "extension_popup"));
        break;
    case 3:
        rule.extensionCase = RenameRule::caseNamed(text(form, "ext_case"));
        break;
    default:
        break;
    }
    rule.types = listOf(text(form, "type_filter"));
    rule.extensions = listOf(text(form, "ext_filter"));
    rule.descend = checked(form, "descend");
    rule.folders = checked(form, "folder_rows");
    rule.longNames = checked(form, "long_names");
    rule.datesTaken = checked(form, "dates_taken");
    return rule;
}

void apply(const InterfaceFile &form, const RenameRule &rule)
{
    applyPart(form, QStringLiteral("prefix"), rule.prefix);
    applyPart(form, QStringLiteral("suffix"), rule.suffix);
    set(form, QStringLiteral("inc_original_name"), rule.includeOriginal);
    set(form, QStringLiteral("search_1"), rule.search);
    set(form, QStringLiteral("replace_1"), rule.replace);
    set(form, QStringLiteral("snr_type_1"), rule.searchKind == RenameRule::Search::Grep ? 1 : 0);
    set(form, QStringLiteral("snr_consider_case_1"), rule.considerCase);
    set(form, QStringLiteral("trim_start"), QString::number(rule.trimStart));
    set(form, QStringLiteral("trim_end"), QString::number(rule.trimEnd));
    set(form, QStringLiteral("change_case"), rule.nameCase.has_value());
    if (rule.nameCase)
        set(form, QStringLiteral("the_case"), RenameRule::caseName(*rule.nameCase));
    set(form, QStringLiteral("orig_strip_diacriticals"), rule.stripAccents);
    if (rule.newExtension) {
        // The field shows the extension without its stop.
        set(form, QStringLiteral("extension"), rule.newExtension->startsWith(u'.') ? rule.newExtension->mid(1) : *rule.newExtension);
        set(form, QStringLiteral("extension_matrix"), 1);
    } else if (rule.extensionCase) {
        set(form, QStringLiteral("ext_case"), RenameRule::caseName(*rule.extensionCase));
        set(form, QStringLiteral("extension_matrix"), 3);
    } else {
        set(form, QStringLiteral("extension_matrix"), 0);
    }
    set(form, QStringLiteral("type_filter"), rule.types.join(QStringLiteral(", ")));
    set(form, QStringLiteral("ext_filter"), rule.extensions.join(QStringLiteral(", ")));
    set(form, QStringLiteral("descend"), rule.descend);
    set(form, QStringLiteral("folder_rows"), rule.folders);
    set(form, QStringLiteral("long_names"), rule.longNames);
    set(form, QStringLiteral("dates_taken"), rule.datesTaken);
}

bool prefixZerosConnected(const InterfaceFile &form)
{
    return form.outlet(QStringLiteral("prefix_add_leading_zeros")) != nullptr;
}

bool suffixZerosConnected(const InterfaceFile &form)
{
    return form.outlet(QStringLiteral("suffix_add_leading_zeros")) != nullptr;
}

} // namespace RuleForm
