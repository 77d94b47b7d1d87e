#include "JsonString.h"

namespace JsonString {

QString quoted(const QString &text)
{
    QString out = QStringLiteral("\"");
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        if (c.isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate()) {
            out.append(c).append(text[++i]);
            continue;
        }
        switch (c.unicode()) {
        case u'"':
            out += QStringLiteral("\\\"");
            break;
        case u'\\':
            out += QStringLiteral("\\\\");
            break;
        case u'\n':
            out += QStringLiteral("\\n");
            break;
        case u'\r':
            out += QStringLiteral("\\r");
            break;
        case u'\t':
            out += QStringLiteral("\\t");
            break;
        default:
            // The line and paragraph separators end a script's string
            // literal (in the language's versions before 2019) though not a
            // JSON one: escaped, the text serves both.
            if (c.unicode() < 0x20 || c.isSurrogate() || c.unicode() == 0x2028 || c.unicode() == 0x2029)
                out += QStringLiteral("\\u%1").arg(c.unicode(), 4, 16, QLatin1Char('0'));
            else
                out += c;
        }
    }
    return out + u'"';
}

} // namespace JsonString
