#include "CharacterSet.h"

CharacterSet::CharacterSet() : m_bits(std::make_shared<const Bits>()) {}

CharacterSet CharacterSet::fromCharacters(const QString &characters)
{
    auto bits = std::make_shared<Bits>();
    for (QChar c : characters)
        bits->set(c.unicode());
    return CharacterSet(std::move(bits));
}

CharacterSet CharacterSet::fromPredicate(bool (*isMember)(char16_t))
{
    auto bits = std::make_shared<Bits>();
    for (unsigned c = 0; c < 65536; ++c)
        if (isMember(char16_t(c)))
            bits->set(c);
    return CharacterSet(std::move(bits));
}

CharacterSet CharacterSet::inverted() const
{
    return CharacterSet(std::make_shared<const Bits>(~*m_bits));
}

CharacterSet CharacterSet::united(const CharacterSet &other) const
{
    return CharacterSet(std::make_shared<const Bits>(*m_bits | *other.m_bits));
}

namespace {

bool isMark(QChar::Category category)
{
    return category == QChar::Mark_NonSpacing || category == QChar::Mark_SpacingCombining
           || category == QChar::Mark_Enclosing;
}

} // namespace

const CharacterSet &CharacterSet::whitespaceAndNewlines()
{
    static const CharacterSet set = fromPredicate([](char16_t c) {
        const auto category = QChar::category(char32_t(c));
        return category == QChar::Separator_Space || category == QChar::Separator_Line
               || category == QChar::Separator_Paragraph || c == u'\t' || (c >= 0x0A && c <= 0x0D)
               || c == 0x85;
    });
    return set;
}

const CharacterSet &CharacterSet::letters()
{
    static const CharacterSet set = fromPredicate([](char16_t c) {
        const auto category = QChar::category(char32_t(c));
        return isMark(category) || (category >= QChar::Letter_Uppercase && category <= QChar::Letter_Other);
    });
    return set;
}

const CharacterSet &CharacterSet::nonBase()
{
    static const CharacterSet set = fromPredicate([](char16_t c) { return isMark(QChar::category(char32_t(c))); });
    return set;
}
