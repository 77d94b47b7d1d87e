#include "MetadataTokens.h"

namespace MetadataTokens {

std::optional<Token> at(QStringView text, qsizetype at)
{
    if (at >= text.size() || text[at] != u'«')
        return std::nullopt;
    const qsizetype close = text.indexOf(u'»', at + 1);
    if (close < 0)
        return std::nullopt;
    const QStringView inside = text.sliced(at + 1, close - at - 1);
    Token token;
    token.length = close - at + 1;
    static const QString tagOpening = QStringLiteral("tag ");
    if (inside.startsWith(tagOpening)) {
        const QStringView key = inside.sliced(tagOpening.size()).trimmed();
        if (key.isEmpty())
            return std::nullopt;
        token.tag = key.toString();
        return token;
    }
    token.field = Metadata::fieldNamed(inside);
    if (!token.field)
        return std::nullopt;
    return token;
}

Metadata::Request requestOf(std::initializer_list<QStringView> texts)
{
    Metadata::Request request;
    for (QStringView text : texts)
        for (qsizetype from = 0; (from = text.indexOf(u'«', from)) >= 0; ++from) {
            const std::optional<Token> token = at(text, from);
            if (!token)
                continue;
            if (token->field)
                request.fields.add(*token->field);
            else if (!request.tags.contains(token->tag))
                request.tags.append(token->tag);
        }
    return request;
}

QString written(Metadata::Field field)
{
    return u'«' + Metadata::tokenName(field) + u'»';
}

} // namespace MetadataTokens
