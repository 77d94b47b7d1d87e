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
    return ROZ_NSDictionaryAdditions::intValue(text(form, outlet));
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
    rule.grep = selected(form, "snr_type_1") == 1;
    rule.considerCase = checked(form, "snr_consider_case_1");
    rule.trimStart = integer(form, "trim_start");
    rule.trimEnd = integer(form, "trim_end");
    rule.caseName = checked(form, "change_case") ? text(form, "the_case") : QString();
    rule.stripAccents = checked(form, "orig_strip_diacriticals");
    switch (selected(form, "extension_matrix")) {
    case 1:
        rule.newExtension = text(form, "extension");
        break;
    case 2:
        rule.newExtension = text(form, "extension_popup");
        break;
    case 3:
        rule.extensionCase = text(form, "ext_case");
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
    set(form, QStringLiteral("snr_type_1"), rule.grep ? 1 : 0);
    set(form, QStringLiteral("snr_consider_case_1"), rule.considerCase);
    set(form, QStringLiteral("trim_start"), QString::number(rule.trimStart));
    set(form, QStringLiteral("trim_end"), QString::number(rule.trimEnd));
    set(form, QStringLiteral("change_case"), !rule.caseName.isEmpty());
    if (!rule.caseName.isEmpty())
        set(form, QStringLiteral("the_case"), rule.caseName);
    set(form, QStringLiteral("orig_strip_diacriticals"), rule.stripAccents);
    if (rule.newExtension) {
        set(form, QStringLiteral("extension"), *rule.newExtension);
        set(form, QStringLiteral("extension_matrix"), 1);
    } else if (!rule.extensionCase.isEmpty()) {
        set(form, QStringLiteral("ext_case"), rule.extensionCase);
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

QVariantList settings(const InterfaceFile &form)
{
    QVariantList entries = rule(form).settings();
    // The case popups are read as they stand, whether or not their change
    // is on.
    entries[13] = text(form, "the_case");
    entries[23] = text(form, "ext_case");
    return entries;
}

qint32 prefixDateChoice(const InterfaceFile &form)
{
    return selected(form, "prefix_date_to_use") + 1;
}

qint32 suffixDateChoice(const InterfaceFile &form)
{
    return selected(form, "suffix_date_to_use") + 1;
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
