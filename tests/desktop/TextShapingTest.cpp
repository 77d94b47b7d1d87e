// Text fitted to widths measured in a font the bootstrap installs, HTML
// read as text, colours, captions, phonemes and alias records.

#include "PathCodec.h"
#include "PathConversion.h"
#include "ScriptCoertions.h"
#include "TextShaping.h"

#include <QFontDatabase>
#include <QFontInfo>
#include <QFontMetricsF>
#include "TemporaryFolder.h"
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

using namespace TextShaping;

namespace {

const QString ellipsis = QString(QChar(0x2026));

QVariantMap dejaVu()
{
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPointSizeF(12);
    return {{QStringLiteral("NSFont"), font}};
}

double width(const QString &text)
{
    return QFontMetricsF(dejaVu().value(QStringLiteral("NSFont")).value<QFont>()).horizontalAdvance(text);
}

TEST(TextShaping, TheTestFontIsTheOneTheBootstrapInstalls)
{
    EXPECT_TRUE(QFontDatabase::families().contains(QStringLiteral("DejaVu Sans")));
    EXPECT_EQ(QFontInfo(dejaVu().value(QStringLiteral("NSFont")).value<QFont>()).family(), "DejaVu Sans");
}

TEST(TextShaping, EndTruncationFitsTheWidthAndNeverLeavesASpaceBeforeTheEllipsis)
{
    const QString text = QStringLiteral("Holiday in the mountains, summer 2026");
    for (double limit = 20; limit < width(text); limit += 7) {
        const QString cut = truncateString(text, limit, dejaVu());
        ASSERT_TRUE(cut.endsWith(ellipsis)) << limit;
        const QString kept = cut.chopped(1);
        EXPECT_TRUE(text.startsWith(kept)) << limit;
        EXPECT_LE(width(cut), limit + 0.01) << cut.toStdString();
        EXPECT_FALSE(kept.endsWith(u' ')) << cut.toStdString();
        // As long as it can be: one more character would not fit.
        if (kept.size() + 1 < text.size() && text[kept.size()] != u' ') {
            EXPECT_GT(width(text.left(kept.size() + 1) + ellipsis), limit) << cut.toStdString();
        }
    }
    EXPECT_EQ(truncateString(text, width(text), dejaVu()), text);
    EXPECT_EQ(truncateString(QStringLiteral("Wm"), 1, dejaVu()), "Wm") << "two characters never get an ellipsis";
}

TEST(TextShaping, PathsLoseTheirMiddleComponentsFirst)
{
    const QString path = QStringLiteral("/home/someone/Pictures/Holidays/2026/Mountains/summit.jpg");
    const QString middle = truncatePathString(path, width(path) - 30, dejaVu());
    EXPECT_EQ(middle, "/home/someone/Pictures/…/2026/Mountains/summit.jpg");
    // At every width: what is kept is the path's start and its end around
    // one ellipsis, or the last component alone, cut at its end at most.
    for (double limit = 30; limit < width(path); limit += 9) {
        const QString cut = truncatePathString(path, limit, dejaVu());
        EXPECT_LE(width(cut), limit + 0.01) << cut.toStdString();
        const qsizetype gap = cut.indexOf(QStringLiteral("/…/"));
        if (gap >= 0) {
            EXPECT_TRUE(path.startsWith(cut.left(gap + 1)) && path.endsWith(cut.mid(gap + 2))) << cut.toStdString();
            EXPECT_TRUE(cut.endsWith(QStringLiteral("/summit.jpg"))) << cut.toStdString();
        } else {
            EXPECT_TRUE(QStringLiteral("summit.jpg").startsWith(cut.endsWith(ellipsis) ? cut.chopped(1) : cut))
                << cut.toStdString();
        }
    }
    EXPECT_EQ(truncatePathString(path, 5000, dejaVu()), path);
}

TEST(TextShaping, HtmlIsReadAsTextWithEntitiesResolvedAndTagsDropped)
{
    EXPECT_EQ(convertHTMLEntities(QStringLiteral("caf&eacute; &amp; &#8364;5 &lt;b&gt; <b>bold</b>")),
              QStringLiteral("café & €5 <b> bold"));
    EXPECT_EQ(flattenHTML(QStringLiteral("<b>bold</b>")), "bold");
    EXPECT_EQ(flattenHTML(QStringLiteral("x")), "x");
    EXPECT_EQ(flattenHTML(QStringLiteral("☺")), "☺") << "three characters or fewer must be Mac OS Roman, else unchanged";
    EXPECT_EQ(flattenHTML(QStringLiteral("☺ &amp;")), "☺ &");
    EXPECT_EQ(convertHTMLEntities(QString()), "");
}

TEST(TextShaping, ColoursCaptionsAndPhonemes)
{
    EXPECT_EQ(color(QStringLiteral("1 0 0")), QColor::fromRgbF(1, 0, 0, 1));
    EXPECT_EQ(color(QString()), QColor::fromRgbF(0, 0, 0, 1));
    EXPECT_EQ(color(QStringLiteral("0 0 1 0.5")), QColor::fromRgbF(0, 0, 1, 0.5));

    const AttributedString caption = hoverAttributedStringOfSize(QStringLiteral("Sunset"), 18);
    EXPECT_EQ(caption.string, "Sunset");
    const QFont font = caption.attributes.value(QStringLiteral("NSFont")).value<QFont>();
    EXPECT_TRUE(font.bold());
    EXPECT_EQ(font.pointSizeF(), 18);
    EXPECT_EQ(caption.attributes.value(QStringLiteral("NSForegroundColor")).value<QColor>(), QColor(Qt::white));
    const QVariantMap shadow = caption.attributes.value(QStringLiteral("NSShadow")).toMap();
    EXPECT_EQ(shadow.value(QStringLiteral("blurRadius")).toDouble(), 3.0);
    EXPECT_EQ(shadow.value(QStringLiteral("offset")).toList(), QVariantList({0.0, -1.0}));

    const std::optional<QString> spoken = phonemes(QStringLiteral("hello world"));
    ASSERT_TRUE(spoken.has_value());
    EXPECT_TRUE(spoken->startsWith(QStringLiteral("h@l"))) << spoken->toStdString();
}

TEST(TextShaping, AnAliasIsThePathsBytesAndComesBackAsThePath)
{
    TemporaryFolder folder;
    const QByteArray name = PathCodec::encode(folder.path()) + "/caf\xe9 $(x)";
    const int fd = open(name.constData(), O_CREAT | O_WRONLY, 0600);
    ASSERT_GE(fd, 0);
    close(fd);
    const QString path = PathCodec::decode(name);
    EXPECT_EQ(PathConversion::aliasData(path), name);
    const std::optional<Descriptor> alias = PathConversion::alias(path);
    ASSERT_TRUE(alias.has_value());
    EXPECT_EQ(alias->descriptorType(), fourCharCode("alis"));
    EXPECT_EQ(ScriptCoertions::objCObjectValue(*alias).toString(), path);
    EXPECT_FALSE(PathConversion::alias(path + QStringLiteral("-gone")).has_value());
    EXPECT_EQ(PathConversion::fsRef(path), QByteArray(80, '\0'));
}

} // namespace
