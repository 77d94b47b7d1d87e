#include "Introspection.h"
#include "MethodTable.h"
#include "MiscMethods.h"
#include "TestPrinting.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QStandardItemModel>
#include <QTreeView>
#include <gtest/gtest.h>

using M = MiscMethods;

namespace {

TEST(Keys, DeleteKeysByCharacterCodeOrQtKey)
{
    EXPECT_TRUE(M::deleteKeyPressed(QStringLiteral("127")));
    EXPECT_TRUE(M::deleteKeyPressed(8));
    EXPECT_TRUE(M::deleteKeyPressed(63272));
    EXPECT_TRUE(M::deleteKeyPressed(int(Qt::Key_Backspace)));
    EXPECT_TRUE(M::deleteKeyPressed(int(Qt::Key_Delete)));
    EXPECT_FALSE(M::deleteKeyPressed(9));
    EXPECT_FALSE(M::deleteKeyPressed(QStringLiteral("tab")));
}

TEST(Keys, OnlyUpAndDownArrowsCount)
{
    installKeyEventTracking();
    QLineEdit field;
    for (const auto &[key, expected] : {std::pair{Qt::Key_Up, true}, std::pair{Qt::Key_Down, true},
                                        std::pair{Qt::Key_Left, false}, std::pair{Qt::Key_A, false}}) {
        QKeyEvent press(QEvent::KeyPress, key, Qt::ShiftModifier);
        QApplication::sendEvent(&field, &press);
        EXPECT_EQ(M::arrowKeyPressed(QVariant()), expected) << key;
    }
}

struct ElementCase {
    const char *name;
    QVariant value;
    bool string, array, dictionary, number, date, boolean;
    friend void PrintTo(const ElementCase &c, std::ostream *os) { *os << c.name; }
};

class TypeTests : public testing::TestWithParam<ElementCase> {};

TEST_P(TypeTests, AnswerByKind)
{
    const ElementCase &c = GetParam();
    EXPECT_EQ(M::isThisAString(c.value), c.string);
    EXPECT_EQ(M::isThisAnArray(c.value), c.array);
    EXPECT_EQ(M::isThisADictionary(c.value), c.dictionary);
    EXPECT_EQ(M::isThisANumber(c.value), c.number);
    EXPECT_EQ(M::isThisADate(c.value), c.date);
    EXPECT_EQ(M::isThisABoolean(c.value), c.boolean);
    EXPECT_EQ(M::stringForElement(c.value).isValid(), c.string);
    EXPECT_EQ(M::dateForElement(c.value).isValid(), c.date);
}

INSTANTIATE_TEST_SUITE_P(
    Table, TypeTests,
    testing::Values(ElementCase{"string", QStringLiteral("1"), true, false, false, false, false, false},
                    ElementCase{"one", QVariant(1), false, false, false, true, false, true},
                    ElementCase{"two", QVariant(2), false, false, false, true, false, false},
                    ElementCase{"true", QVariant(true), false, false, false, true, false, true},
                    ElementCase{"one_and_a_half_reads_as_one", QVariant(1.5), false, false, false, true, false, true},
                    ElementCase{"list", QVariantList{1}, false, true, false, false, false, false},
                    ElementCase{"map", QVariantMap{{"a", 1}}, false, false, true, false, false, false},
                    ElementCase{"date", QDateTime::currentDateTime(), false, false, false, false, true, false},
                    ElementCase{"nil", QVariant(), false, false, false, false, false, false}),
    [](const auto &info) { return info.param.name; });

TEST(Elements, UnsignedValuesOfNumbersOnly)
{
    EXPECT_EQ(M::uintForElement(QVariant(7)), 7u);
    EXPECT_EQ(M::uintForElement(QVariant(-1)), 0xFFFFFFFFu);
    EXPECT_EQ(M::uintForElement(QVariant(true)), 1u);
    EXPECT_EQ(M::uintForElement(QStringLiteral("7")), 0u);
}

TEST(Outlines, ExpandTheItemAtAVisibleRow)
{
    QStandardItemModel model;
    auto *parent = new QStandardItem(QStringLiteral("Photos"));
    parent->appendRow(new QStandardItem(QStringLiteral("2024")));
    model.appendRow(parent);
    model.appendRow(new QStandardItem(QStringLiteral("Scans")));
    QTreeView outline;
    outline.setModel(&model);
    EXPECT_FALSE(M::isOutlineItemExpanded(&outline, 0));
    EXPECT_TRUE(M::expandOutlineItem(&outline, 0));
    EXPECT_TRUE(M::isOutlineItemExpanded(&outline, 0));
    EXPECT_FALSE(M::expandOutlineItem(&outline, 7)) << "no item at that row";
    EXPECT_FALSE(M::isOutlineItemExpanded(nullptr, 0));
}

TEST(Introspection, DescribesValuesAndNativeObjects)
{
    const MethodRegistry methods = buildMethodTable();
    EXPECT_EQ(Introspection::superclassesForObject(methods, QStringLiteral("x")), QStringList({"NSString", "NSObject"}));
    EXPECT_EQ(Introspection::superclassesForObject(methods, QVariant(1)),
              QStringList({"NSNumber", "NSValue", "NSObject"}));
    const QStringList stringMethods = Introspection::instanceMethodNamesForObject(methods, QStringLiteral("x"));
    EXPECT_TRUE(stringMethods.contains(QStringLiteral("titleCaseString")));
    EXPECT_TRUE(stringMethods.contains(QStringLiteral("pathHFS")));
    EXPECT_TRUE(Introspection::classMethodNamesForObject(methods, QStringLiteral("ROZ_MiscMethods"))
                    .contains(QStringLiteral("describeObject:")))
        << "a class name stands for the class";
    const QVariantList records = Introspection::instanceMethodsForObject(methods, QVariantMap());
    ASSERT_FALSE(records.isEmpty());
    EXPECT_EQ(records.first().toMap().value("method_types"),
              QVariant(QStringLiteral("@@:") + QString(MethodRegistry::parameterCount(records.first().toMap().value("method_name").toString()), u'@')));
    EXPECT_TRUE(Introspection::ivarsForObject(QStringLiteral("x")).isEmpty());

    QWidget window;
    auto *field = new QLineEdit(&window);
    field->setObjectName(QStringLiteral("prefix"));
    field->setText(QStringLiteral("IMG"));
    const QVariant object = QVariant::fromValue<QObject *>(field);
    EXPECT_EQ(Introspection::superclassesForObject(methods, object).mid(0, 3),
              QStringList({"QLineEdit", "QWidget", "QObject"}));
    bool sawText = false;
    for (const QVariant &record : Introspection::ivarsForObject(object)) {
        const QVariantMap ivar = record.toMap();
        if (ivar.value("ivar_name") == QLatin1String("text")) {
            sawText = true;
            EXPECT_EQ(ivar.value("ivar_type"), QVariant(QStringLiteral("@")));
            EXPECT_EQ(ivar.value("ivar_object"), QVariant(QStringLiteral("IMG")));
        }
        if (ivar.value("ivar_name") == QLatin1String("maxLength")) {
            EXPECT_EQ(ivar.value("ivar_type"), QVariant(QStringLiteral("i")));
        }
    }
    EXPECT_TRUE(sawText);
    const QString text = Introspection::describeObject(methods, object);
    EXPECT_TRUE(text.startsWith(QStringLiteral("\n\nobject <QLineEdit:0x"))) << text.toStdString();
    EXPECT_TRUE(text.contains(QStringLiteral("superviews:\nsuperview 1: <QWidget: 0x")));
    EXPECT_TRUE(text.contains(QStringLiteral("\ttext: (@) IMG\n")));
    EXPECT_TRUE(Introspection::describeObject(methods, QVariant(3)).contains(QStringLiteral("superviews:\nn/a\n")));
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
