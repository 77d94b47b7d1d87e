#include "MethodTable.h"
#include "NativeBinding.h"
#include "ScriptHost.h"
#include "TestPrinting.h"

#include <QCoreApplication>
#include <ctime>
#include <gtest/gtest.h>

namespace {

// A class of our own, to see exactly what reaches native code.
QString describeArguments(const QString &self, quint32 index, int count, double ratio, bool flag)
{
    return QStringLiteral("%1|%2|%3|%4|%5").arg(self).arg(index).arg(count).arg(ratio).arg(flag ? "true" : "false");
}

QVariant echo(QVariant value)
{
    return value;
}

class Bridge : public testing::Test {
protected:
    Bridge() : methods(makeTable()), host(methods) {}

    static MethodRegistry makeTable()
    {
        MethodRegistry registry = buildMethodTable();
        NativeBinding::addInstanceMethod(registry, QStringLiteral("NSString"),
                                         QStringLiteral("describe:count:ratio:flag:"), &describeArguments);
        NativeBinding::addClassMethod(registry, QStringLiteral("Probe"), QStringLiteral("echo:"), &echo);
        return registry;
    }

    QString run(const QString &program)
    {
        const auto outcome = host.evaluate(program, QStringLiteral("test.js"));
        if (!outcome.ok())
            return QStringLiteral("ERROR ") + outcome.error;
        return host.printable(outcome.value).value_or(QStringLiteral("<undefined>"));
    }

    MethodRegistry methods;
    ScriptHost host;
};

TEST_F(Bridge, NumbersNarrowToTheParameterTypeLikeC)
{
    EXPECT_EQ(run(R"(callMethod("s", "describe:count:ratio:flag:", [-1, 2.9, 0.5, 1]))"),
              QStringLiteral("s|4294967295|2|0.5|true"));
    EXPECT_EQ(run(R"(callMethod("s", "describe:count:ratio:flag:", [4294967296 + 7, -2.9, 1e300, 0]))"),
              QStringLiteral("s|7|-2|1e+300|false"));
    EXPECT_EQ(run(R"(callMethod("s", "describe:count:ratio:flag:", [null, undefined, null, null]))"),
              QStringLiteral("s|0|0|0|false"));
    EXPECT_EQ(run(R"(callMethod("s", "describe:count:ratio:flag:", [NaN, Infinity, 0, true]))"),
              QStringLiteral("s|0|0|0|true"));
}

TEST_F(Bridge, ValuesComeBackAsScriptValues)
{
    EXPECT_EQ(run(R"(JSON.stringify(callClassMethod("Probe", "echo:", [[1, "a", null, true, {k: [2.5]}]])))"),
              QStringLiteral(R"([1,"a",null,true,{"k":[2.5]}])"));
    EXPECT_EQ(run(R"(callClassMethod("Probe", "echo:", [new Date(Date.UTC(2024, 1, 29, 12))]).getTime())"),
              QStringLiteral("1709208000000"));
    EXPECT_EQ(run(R"(callClassMethod("Probe", "echo:", [undefined]) === null)"), QStringLiteral("true"));
    EXPECT_EQ(run(R"(callMethod("", "isBlankString") === true)"), QStringLiteral("true"));
    EXPECT_EQ(run(R"(typeof callMethod("abc", "characterCount"))"), QStringLiteral("number"));
    EXPECT_EQ(run(R"(callMethod("abc", "charAtIndex:", [3]) === null)"), QStringLiteral("true"));
}

TEST_F(Bridge, NilReceiverAnswersNil)
{
    EXPECT_EQ(run(R"(callMethod(null, "titleCaseString") === null && callMethod(undefined, "no such") === null)"),
              QStringLiteral("true"));
}

TEST_F(Bridge, ReceiverKindPicksTheClass)
{
    EXPECT_EQ(run(R"(try { callMethod(5, "titleCaseString") } catch (e) { e.reason })"),
              QStringLiteral("-[NSNumber titleCaseString]: unrecognized selector sent to instance"));
    EXPECT_EQ(run(R"(try { callMethod([], "count") } catch (e) { e.reason })"),
              QStringLiteral("-[NSArray count]: unrecognized selector sent to instance"));
    EXPECT_EQ(run(R"(try { callMethod({}, "count") } catch (e) { e.reason })"),
              QStringLiteral("-[NSDictionary count]: unrecognized selector sent to instance"));
    EXPECT_EQ(run(R"(try { callMethod(new Date(), "count") } catch (e) { e.reason })"),
              QStringLiteral("-[NSDate count]: unrecognized selector sent to instance"));
    EXPECT_EQ(run(R"(try { callMethod(new ArrayBuffer(2), "count") } catch (e) { e.reason })"),
              QStringLiteral("-[NSData count]: unrecognized selector sent to instance"));
    EXPECT_EQ(run(R"(try { callClassMethod("NSString", "titleCaseString") } catch (e) { e.reason })"),
              QStringLiteral("+[NSString titleCaseString]: unrecognized selector sent to class"));
    EXPECT_EQ(run(R"(var set = callClassMethod("NSCharacterSet", "newlineCharacterSet");
                     try { callMethod(set, "count") } catch (e) { e.reason })"),
              QStringLiteral("-[NSCharacterSet count]: unrecognized selector sent to instance"));
}

TEST_F(Bridge, FaultsBecomeScriptErrorsWithNameAndReason)
{
    EXPECT_EQ(run(R"(try { callMethod("x", "nope:", [1]) } catch (e) { e.name + " / " + e.message })"),
              QStringLiteral("NSInvalidArgumentException / -[NSString nope:]: unrecognized selector sent to instance"));
    EXPECT_EQ(run(R"(try { callMethod("x", "snr:replaceWith:", ["a"]) } catch (e) { e.reason })"),
              QStringLiteral("-[NSString snr:replaceWith:] takes 2 parameter(s), 1 given"));
    EXPECT_EQ(run(R"(try { callMethod("x", "snr:replaceWith:", "ab") } catch (e) { e.reason })"),
              QStringLiteral("-[NSString snr:replaceWith:]: the parameters must be an array"));
    EXPECT_EQ(run(R"(try { callMethod("x", "snr:replaceWith:", [1, "b"]) } catch (e) { e.reason })"),
              QStringLiteral("-[NSString snr:replaceWith:]: parameter 1 must be a string, not a number"));
    EXPECT_EQ(run(R"(try { callMethod("x", "trimFromStart:", [["a", 2]]) } catch (e) { e.reason })"),
              QStringLiteral("-[NSString trimFromStart:]: parameter 1 must be a list of strings, not a list holding "
                             "a number"));
    EXPECT_EQ(run(R"(try { callMethod("", "charAtIndex:", [0]) } catch (e) { e.name + " / " + e.reason })"),
              QStringLiteral("NSRangeException / *** -[NSMutableArray objectAtIndex:]: index 0 beyond bounds for "
                             "empty array"));
    EXPECT_EQ(run(R"(try { callMethod("x", "snrBatch:replaceArray:", [["a"], []]) } catch (e) { e.name })"),
              QStringLiteral("NSRangeException"));
    EXPECT_EQ(run(R"(try { callClassMethod("Probe", "echo:", [function () {}]) } catch (e) { e.name })"),
              QStringLiteral("NSInvalidArgumentException"));
}

TEST_F(Bridge, OutParametersFillTheBoxesPassed)
{
    EXPECT_EQ(run(R"js(var r = ["old"], e = {stale: 1};
                     var m = callMethod("file42", "substringsMatchingRegularExpression:count:options:ranges:error:",
                                        ["([a-z]+)([0-9]+)", 2, 0, r, e]);
                     JSON.stringify([m, r, e]))js"),
              QStringLiteral(R"([["file42","file","42"],[{"length":6,"location":0},{"length":4,"location":0},)"
                             R"({"length":2,"location":4}],{}])"));
    EXPECT_EQ(run(R"(var e = {};
                     var m = callMethod("abc", "substringsMatchingRegularExpression:count:options:ranges:error:",
                                        ["(", 0, 0, null, e]);
                     [m === null, e.domain, e.code, typeof e.message].join())"),
              QStringLiteral("true,regerror,8,string"));
    EXPECT_EQ(run(R"(callMethod("abc", "substringsMatchingRegularExpression:count:options:ranges:error:",
                                ["B", 0, 2, null, null]))"),
              QStringLiteral(R"(["b"])"));
}

TEST_F(Bridge, StringsStandForCharacterSets)
{
    EXPECT_EQ(run(R"(callMethod("a,b;;c", "tokensSeparatedByCharactersFromSet:", [",;"]).join("|"))"),
              QStringLiteral("a|b|c"));
    EXPECT_EQ(run(R"(callMethod("a b\tc", "tokensSeparatedByCharactersFromSet:",
                                [callClassMethod("NSCharacterSet", "allWhitespaceCharacterSet")]).length)"),
              QStringLiteral("3"));
}

TEST_F(Bridge, PrintableFormsOfResults)
{
    EXPECT_EQ(run(QStringLiteral("'text'")), QStringLiteral("text"));
    EXPECT_EQ(run(QStringLiteral("undefined")), QStringLiteral("<undefined>"));
    EXPECT_EQ(run(QStringLiteral("[1, 2.5, null, true, 'q\"\\n']")), QStringLiteral(R"([1,2.5,null,true,"q\"\n"])"));
    EXPECT_EQ(run(QStringLiteral("({b: 1, a: {c: []}})")), QStringLiteral(R"({"b":1,"a":{"c":[]}})"));
    EXPECT_EQ(run(QStringLiteral("callClassMethod('NSCharacterSet', 'newlineCharacterSet')")),
              QStringLiteral(R"("<NSCharacterSet>")"));
    EXPECT_EQ(run(QStringLiteral("[NaN, 1/0]")), QStringLiteral("[null,null]"));
}

TEST(MethodTable, SelectorArityIsCheckedWhenRegistering)
{
    MethodRegistry registry;
    EXPECT_THROW(NativeBinding::addClassMethod(registry, QStringLiteral("Probe"), QStringLiteral("echo"), &echo),
                 std::logic_error);
    NativeBinding::addClassMethod(registry, QStringLiteral("Probe"), QStringLiteral("echo:"), &echo);
    EXPECT_THROW(NativeBinding::addClassMethod(registry, QStringLiteral("Probe"), QStringLiteral("echo:"), &echo),
                 std::logic_error);
}

} // namespace

int main(int argc, char **argv)
{
    // Dates are checked against one time zone with daylight saving.
    qputenv("TZ", "Europe/Paris");
    tzset();
    QCoreApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}

namespace {

// A value that holds itself, or is nested past the limit, is refused with a
// script error instead of exhausting the stack; a value as deep as the limit
// and shared parts that are no cycle still cross.
TEST_F(Bridge, ValuesThatHoldThemselvesOrNestTooDeepAreRefused)
{
    const QString refused = QStringLiteral("ERROR test.js:1: NSInvalidArgumentException: ");
    EXPECT_EQ(run(R"(var a = [1]; a.push(a); callClassMethod("Probe", "echo:", [a]))"),
              refused + "a value that holds itself cannot cross to native code");
    EXPECT_EQ(run(R"(var o = {x: {}}; o.x.back = o; try { callClassMethod("Probe", "echo:", [o]); } catch (e) { e.name + " " + e.reason })"),
              "NSInvalidArgumentException a value that holds itself cannot cross to native code");
    const auto nested = [](int depth) {
        return QStringLiteral("var v = 0; for (var i = 0; i < %1; ++i) v = [v]; callClassMethod(\"Probe\", \"echo:\", [v]).length").arg(depth);
    };
    EXPECT_EQ(run(nested(63)), "1") << "the parameter array is a level too";
    EXPECT_EQ(run(nested(100000)), refused + "a value nested deeper than 64 levels cannot cross to native code");
    EXPECT_EQ(run(R"(var shared = {n: 1}; JSON.stringify(callClassMethod("Probe", "echo:", [[shared, shared]])))"),
              R"([{"n":1},{"n":1}])");
}

} // namespace
