#pragma once

#include <QMetaType>
#include <QString>
#include <bitset>
#include <memory>

// A set of UTF-16 code units, the unit every text operation works in.
// Immutable and cheap to copy: the membership table is shared.
class CharacterSet {
public:
    CharacterSet();

    static CharacterSet fromCharacters(const QString &characters);
    static CharacterSet fromPredicate(bool (*isMember)(char16_t));

    bool contains(char16_t c) const { return m_bits->test(c); }
    bool contains(QChar c) const { return m_bits->test(c.unicode()); }

    CharacterSet inverted() const;
    CharacterSet united(const CharacterSet &other) const;

    // Unicode general categories Z* with tab and U+000A..U+000D, U+0085:
    // what a text scanner skips unless told otherwise.
    static const CharacterSet &whitespaceAndNewlines();
    // Letters and marks (L* and M*).
    static const CharacterSet &letters();
    // Combining marks (M*).
    static const CharacterSet &nonBase();

private:
    using Bits = std::bitset<65536>;
    explicit CharacterSet(std::shared_ptr<const Bits> bits) : m_bits(std::move(bits)) {}
    std::shared_ptr<const Bits> m_bits;
};

Q_DECLARE_METATYPE(CharacterSet)
