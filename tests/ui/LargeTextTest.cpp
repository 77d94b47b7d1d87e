// The large-type size search, and windows sized to their text, on Qt's
// offscreen platform (its screen is 800 by 800, all of it visible).

#include "GuiWaiting.h"
#include "LargeText.h"
#include "UserDefaults.h"
#include "WindowSizing.h"

#include <QGuiApplication>
#include <QLabel>
#include <QScreen>
#include <gtest/gtest.h>

namespace {

using LargeText::Limits;

// A text whose measure grows linearly with the size.
LargeText::Choice chooseFor(qreal widthPerPoint, qreal heightPerPoint, Limits limits = {1080, 578, 1000})
{
    return LargeText::chooseSize([&](float size) { return QSizeF(widthPerPoint * size, heightPerPoint * size); },
                                 limits);
}

TEST(LargeTextSize, GrowsShrinksOrStaysAsTheTextMeetsTheLimit)
{
    const Limits limits = LargeText::limitsFor(QRect(0, 22, 1280, 778), std::nullopt);
    EXPECT_EQ(limits.width, 1080);
    EXPECT_EQ(limits.height, 578);
    EXPECT_EQ(limits.largest, 1000);
    // Grows until the width reaches 1080 at 108: the last that fitted.
    const LargeText::Choice grown = chooseFor(10, 2);
    EXPECT_EQ(grown.size, 107);
    EXPECT_EQ(grown.measurements, 1 + (108 - 24));
    // The other side stops it: 9 x 65 is over 578.
    EXPECT_EQ(chooseFor(10, 9).size, 64);
    // The height governs a tall text.
    EXPECT_EQ(chooseFor(2, 10).size, 57);
    EXPECT_EQ(chooseFor(45, 2).size, 24) << "exactly at the limit";
    // Too wide at 24: shrinks until 100 x 10 fits, and ends one above.
    EXPECT_EQ(chooseFor(100, 2).size, 11);
    EXPECT_EQ(chooseFor(10, 2, {1080, 578, 72}).size, 72) << "capped by the default";
    EXPECT_GE(chooseFor(1e9, 1).size, 1) << "never below one";
}

TEST(LargeTextSize, FillsTheRoomInTheInstalledFont)
{
    const Limits limits = LargeText::limitsFor(QRect(0, 0, 1920, 1080), std::nullopt);
    const float size = LargeText::chooseSize([](float s) { return LargeText::measure(QStringLiteral("W"), s); }, limits).size;
    const QSizeF fits = LargeText::measure(QStringLiteral("W"), size);
    const QSizeF over = LargeText::measure(QStringLiteral("W"), size + 1);
    EXPECT_LT(fits.height(), limits.height);
    EXPECT_LE(fits.width(), limits.width);
    EXPECT_TRUE(over.height() >= limits.height || over.width() > limits.width) << "could have grown past " << size;
}

TEST(LargeTextWindows, FrameTheFieldAndHonourTheLargestSizeDefault)
{
    UserDefaults::writeDefault(72.0f, QStringLiteral("maxLargeTypeFontSize"));
    QWidget window;
    auto *field = new QLabel(&window);
    EXPECT_EQ(LargeText::show(QStringLiteral("7"), field, &window), 72);
    UserDefaults::removeDefault(QStringLiteral("maxLargeTypeFontSize"));
    EXPECT_EQ(field->font().pixelSize(), 72);
    EXPECT_TRUE(field->font().bold());
    EXPECT_EQ(window.size(), field->size() + QSize(70, 25));
    EXPECT_EQ(field->pos(), QPoint(35, 12));
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    EXPECT_EQ(window.geometry().bottomLeft(), screen.bottomLeft()) << "at the screen's bottom-left corner";
    EXPECT_GT(LargeText::show(QStringLiteral("7"), field, &window), 72) << "without the default it grows on";
}

TEST(WindowSizing, FitsTheWindowToTheFieldsTextFromTheTopOrTheBottom)
{
    QWidget window;
    window.setGeometry(100, 100, 300, 200);
    auto *field = new QLabel(QStringLiteral("one line"), &window);
    field->setWordWrap(true);
    field->setGeometry(10, 10, 280, 20);
    WindowSizing::fitTextFieldToText(field, 10, 40, true);
    EXPECT_EQ(window.geometry(), QRect(100, 100, 300, 50)) << "the smallest height, top kept";
    field->setText(QString(40, u'w').replace(QString(4, u'w'), QStringLiteral("www ")).repeated(6));
    const int needed = WindowSizing::neededHeight(field);
    ASSERT_GT(needed, 40);
    WindowSizing::fitTextFieldToText(field, 10, 40, false);
    EXPECT_EQ(window.geometry(), QRect(100, 150 - (needed + 14), 300, needed + 14)) << "the bottom kept";
}

TEST(WindowSizing, DisclosesToAHeightKeepingTheTopWithOrWithoutAnimation)
{
    QWidget titled;
    titled.setGeometry(100, 100, 300, 200);
    titled.show();
    ASSERT_TRUE(waitFor([&] { return titled.frameGeometry() != titled.geometry(); })) << "no title bar drawn";
    WindowSizing::discloseWindow(&titled, 300, false);
    EXPECT_EQ(titled.geometry(), QRect(100, 100, 300, 300));
    WindowSizing::discloseWindow(&titled, 100, true);
    EXPECT_NE(titled.geometry().height(), 100) << "an animation does not jump";
    EXPECT_TRUE(waitFor([&] { return titled.geometry() == QRect(100, 100, 300, 100); }, 3000));

    // Without a title bar, the one a titled window has is counted.
    QWidget bare(nullptr, Qt::Window | Qt::FramelessWindowHint);
    bare.setGeometry(100, 100, 300, 200);
    bare.show();
    WindowSizing::discloseWindow(&bare, 300, false);
    EXPECT_EQ(bare.geometry(), QRect(100, 100, 300, 322));
}

} // namespace
