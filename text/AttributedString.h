#pragma once

#include <QMetaType>
#include <QString>
#include <QVariantMap>

// Text with one set of attributes over all of it, keyed by the attribute
// names scripts know ("NSFont", "NSForegroundColor", "NSShadow",
// "NSParagraphStyle"). A script reads its plain text and its attributes.
struct AttributedString {
    QString string;
    QVariantMap attributes;
    bool operator==(const AttributedString &) const = default;
};
Q_DECLARE_METATYPE(AttributedString)
