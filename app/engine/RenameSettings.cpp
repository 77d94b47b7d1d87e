#include "RenameSettings.h"

#include "DictionaryAdditions.h"
#include "NamedException.h"

namespace {

// A number or text read as an integer and as a yes or no.
qint32 intValueOf(const QVariant &value)
{
    if (value.typeId() == QMetaType::QString)
        return ROZ_NSDictionaryAdditions::intValue(value.toString());
    if (value.typeId() == QMetaType::Double || value.typeId() == QMetaType::Float)
        return qint32(static_cast<long long>(value.toDouble()));
    return qint32(value.toLongLong());
}

bool boolValueOf(const QVariant &value)
{
    if (value.typeId() == QMetaType::QString) {
        const QString text = value.toString().trimmed();
        return ROZ_NSDictionaryAdditions::intValue(text) != 0 || text.startsWith(u'y', Qt::CaseInsensitive)
               || text.startsWith(u't', Qt::CaseInsensitive);
    }
    return intValueOf(value) != 0 || (value.typeId() == QMetaType::Double && value.toDouble() != 0);
}

} // namespace

void RenameSettings::setConstantData(const QVariantList &e)
{
    if (e.size() < count)
        throw arrayIndexBeyondBounds(e.size(), e.size());
    _prefix = e[0].toString();
    _prefix_start_num = intValueOf(e[1]);
    _prefix_ai_counter = intValueOf(e[2]);
    _prefix_add_leading_zeros = boolValueOf(e[3]);
    _prefix_add_leading_zeros_min = intValueOf(e[4]);
    _inc_original_name = boolValueOf(e[5]);
    _filename_search_1 = e[6].toString();
    _filename_replace_1 = e[7].toString();
    _search_type_1 = e[8].toString();
    _snr_consider_case_1 = boolValueOf(e[9]);
    _trim_start = intValueOf(e[10]);
    _trim_end = intValueOf(e[11]);
    _change_case = boolValueOf(e[12]);
    _case_transformation = e[13].toString();
    _orig_strip_diacriticals = boolValueOf(e[14]);
    _suffix = e[15].toString();
    _suffix_start_num = intValueOf(e[16]);
    _suffix_ai_counter = intValueOf(e[17]);
    _suffix_add_leading_zeros = boolValueOf(e[18]);
    _suffix_add_leading_zeros_min = intValueOf(e[19]);
    _extension = e[20].toString();
    _use_new_extension = boolValueOf(e[21]);
    _ext_change_case = boolValueOf(e[22]);
    _ext_case_transformation = e[23].toString();
}
