#include "TextShaping.h"

#include "StringAdditions.h"

#include <QFont>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QStringEncoder>
#include <QTextDocument>
#include <cstdio>

namespace TextShaping {

namespace {

const QString ellipsis = QString(QChar(0x2026));

// Widths in the font the attributes name, measured as 32-bit floats.
class Measure {
public:
    explicit Measure(const QVariantMap &attributes) : m_metrics(fontOf(attributes)) {}
    float operator()(const QString &text) const { return float(m_metrics.horizontalAdvance(text)); }

private:
    static QFont fontOf(const QVariantMap &attributes)
    {
        const QVariant font = attributes.value(QStringLiteral("NSFont"));
        return font.metaType() == QMetaType::fromType<QFont>() ? font.value<QFont>() : QGuiApplication::font();
    }
    QFontMetricsF m_metrics;
};

// The components as a path splits into them: a leading "/" is the first,
// a trailing "/" the last; empty ones between separators go.
QStringList pathComponents(const QString &path)
{
    QStringList components;
    if (path.startsWith(u'/'))
        components.append(QStringLiteral("/"));
    for (const QString &part : path.split(u'/', Qt::SkipEmptyParts))
        components.append(part);
    if (path.size() > 1 && path.endsWith(u'/'))
        components.append(QStringLiteral("/"));
    return components;
}

QString plainTextOfHtml(const QString &html)
{
    QTextDocument document;
    document.setHtml(html);
    return document.toPlainText();
}

} // namespace

QString truncateString(const QString &self, double width, const QVariantMap &attributes)
{
    const Measure measure(attributes);
    if (StringAdditions::isBlankString(self) || measure(self) <= width || self.size() < 3)
        return self;
    const double room = width - measure(ellipsis);
    qsizetype n = self.size();
    QString current = self;
    while (measure(current) > room && n != 0) {
        --n;
        // No white space is left standing before the ellipsis.
        while (n > 0 && StringAdditions::allWhitespaceCharacterSet().contains(self[n - 1]))
            --n;
        current = self.left(n);
    }
    return current + ellipsis;
}

QString truncatePathString(const QString &self, double width, const QVariantMap &attributes)
{
    const Measure measure(attributes);
    if (StringAdditions::isBlankString(self) || measure(self) <= width)
        return self;
    QStringList components = pathComponents(self);
    // The running width is an estimate: the separators taken out with the
    // components are not subtracted.
    double total = measure(self);
    const double ellipsisWidth = measure(ellipsis);
    if (components.size() > 2) {
        qsizetype middle = components.size() / 2;
        while (true) {
            total -= measure(components[middle]) - ellipsisWidth;
            components[middle] = ellipsis;
            if (components.size() < 4 || total <= width)
                break;
            components.removeAt(middle);
            middle = components.size() / 2;
        }
        if (components.size() == 3 && total > width) {
            components.removeAt(1);
            components.removeAt(0);
        }
    }
    QString joined = components.join(u'/');
    joined.replace(QStringLiteral("//"), QStringLiteral("/"));
    return truncateString(joined, width, attributes);
}

QColor color(const QString &self)
{
    float components[4] = {0, 0, 0, 1.0f};
    const QByteArray text = self.toUtf8();
    std::sscanf(text.constData(), "%f%f%f%f", &components[0], &components[1], &components[2], &components[3]);
    return QColor::fromRgbF(components[0], components[1], components[2], components[3]);
}

AttributedString hoverAttributedStringOfSize(const QString &self, float size)
{
    QFont font = QGuiApplication::font();
    font.setPointSizeF(double(size));
    font.setBold(true);
    const QVariantMap paragraph = {{QStringLiteral("alignment"), QStringLiteral("center")},
                                   {QStringLiteral("lineBreakMode"), QStringLiteral("wordWrap")}};
    const QVariantMap shadow = {{QStringLiteral("color"), QColor(Qt::black)},
                                {QStringLiteral("offset"), QVariantList{0.0, -1.0}},
                                {QStringLiteral("blurRadius"), 3.0}};
    return {self,
            {{QStringLiteral("NSFont"), font},
             {QStringLiteral("NSParagraphStyle"), paragraph},
             {QStringLiteral("NSForegroundColor"), QColor(Qt::white)},
             {QStringLiteral("NSShadow"), shadow}}};
}

QString convertHTMLEntities(const QString &self)
{
    if (StringAdditions::isBlankString(self))
        return self;
    return plainTextOfHtml(self);
}

QString flattenHTML(const QString &self)
{
    if (StringAdditions::isBlankString(self))
        return self;
    // Up to three characters are taken as Mac OS Roman: one it cannot
    // write leaves the text as it is.
    if (self.size() <= 3) {
        QStringEncoder roman("macintosh", QStringEncoder::Flag::Stateless);
        if (!roman.isValid())
            return self;
        const QByteArray encoded = roman(self);
        if (roman.hasError() || encoded.size() != self.size())
            return self;
    }
    return plainTextOfHtml(self);
}

} // namespace TextShaping
