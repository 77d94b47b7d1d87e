#pragma once

#include <QString>
#include <QVariantList>

// The rename rules, captured from the controls into plain values before
// names are composed. Entries 0..23 of the settings array, in order; the
// two date choices are set by the callers of the composer.
struct RenameSettings {
    QString _prefix;
    qint32 _prefix_start_num = 0; // also the running prefix counter
    qint32 _prefix_ai_counter = 0;
    bool _prefix_add_leading_zeros = false;
    qint32 _prefix_add_leading_zeros_min = 0;
    qint32 _prefix_date_to_use = 0; // 1 supplied date, 2 creation, 3 modification, other none
    bool _inc_original_name = false;
    QString _filename_search_1;
    QString _filename_replace_1;
    QString _search_type_1; // "GREP" or "literal"
    bool _snr_consider_case_1 = false;
    qint32 _trim_start = 0;
    qint32 _trim_end = 0;
    bool _change_case = false;
    QString _case_transformation;
    bool _orig_strip_diacriticals = false;
    QString _suffix;
    qint32 _suffix_start_num = 0; // also the running suffix counter
    qint32 _suffix_ai_counter = 0;
    bool _suffix_add_leading_zeros = false;
    qint32 _suffix_add_leading_zeros_min = 0;
    qint32 _suffix_date_to_use = 0;
    QString _extension;
    bool _use_new_extension = false;
    bool _ext_change_case = false;
    QString _ext_case_transformation;

    static constexpr int count = 24;
    // Stores the 24 entries: strings as they are, integers through
    // intValue, booleans through boolValue. Raises NSRangeException for a
    // shorter array. The date choices are left alone.
    void setConstantData(const QVariantList &entries);
};
