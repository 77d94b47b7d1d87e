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

} // namespace

QVariantList settings(const InterfaceFile &form)
{
    QString extension = QLatin1String("");
    bool useNewExtension = false;
    bool changeExtensionCase = false;
    switch (selected(form, "extension_matrix")) {
    case 1:
        extension = text(form, "extension");
        useNewExtension = true;
        break;
    case 2:
        extension = text(form, "extension_popup");
        useNewExtension = true;
        break;
    case 3:
        changeExtensionCase = true;
        break;
    default:
        break;
    }
    if (!ROZ_NSStringAdditions::isBlankString(extension) && !extension.startsWith(u'.'))
        extension = u'.' + extension;

    return {
        text(form, "prefix"),
        integer(form, "prefix_start_num"),
        integer(form, "prefix_ai_counter"),
        checked(form, "prefix_add_leading_zeros"),
        integer(form, "prefix_add_leading_zeros_min"),
        checked(form, "inc_original_name"),
        text(form, "search_1"),
        text(form, "replace_1"),
        selected(form, "snr_type_1") == 1 ? QStringLiteral("GREP") : QStringLiteral("literal"),
        checked(form, "snr_consider_case_1"),
        integer(form, "trim_start"),
        integer(form, "trim_end"),
        checked(form, "change_case"),
        text(form, "the_case"),
        checked(form, "orig_strip_diacriticals"),
        text(form, "suffix"),
        integer(form, "suffix_start_num"),
        integer(form, "suffix_ai_counter"),
        checked(form, "suffix_add_leading_zeros"),
        integer(form, "suffix_add_leading_zeros_min"),
        extension,
        useNewExtension,
        changeExtensionCase,
        text(form, "ext_case"),
    };
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
