#include "DateHelpers.h"

#include "CalendarFormat.h"
#include "JsonString.h"
#include "MethodRegistry.h"
#include "NativeBinding.h"
#include "ScriptSubroutines.h"
#include "UserDefaults.h"

#include <QCoreApplication>
#include <QLocale>

namespace DateHelpers {

namespace {

struct ProbeRow {
    const char *sample;
    const char *label;
    const char *numeric;
    const char *withWeekday;
    const char *withoutWeekday;
};

// Tried in this order; the first sample read picks the row.
const ProbeRow probeRows[] = {
    {"12/21/2002", "MM/DD/YYYY", "1/2/3", "%A, %B %e, %Y, %I:%M %p", "%m %e, %Y, %I:%M %p"},
    {"21/12/2002", "DD/MM/YYYY", "2/1/3", "%A, %e %B, %Y, %I:%M %p", "%e %m, %Y, %I:%M %p"},
    {"2002/12/21", "YYYY/MM/DD", "3/1/2", "%A, %Y %B %e, %I:%M %p", "%Y %m %e, %I:%M %p"},
    {"2002/21/12", "YYYY/DD/MM", "3/2/1", "%A, %Y %e %B, %I:%M %p", "%Y %e %m, %I:%M %p"},
};

std::function<QDateTime()> &clock()
{
    static std::function<QDateTime()> now = [] { return QDateTime::currentDateTime(); };
    return now;
}

QString textOf(const QVariant &value)
{
    return value.typeId() == QMetaType::Bool ? QString::number(int(value.toBool())) : value.toString();
}

} // namespace

QString probeScript(const QString &dateText)
{
    return QStringLiteral("try {\n\tdate(%1);\n\t1;\n} catch (e) {\n\t0;\n}").arg(JsonString::quoted(dateText));
}

QString dateScript(const QString &dateText)
{
    return QStringLiteral("date(%1)").arg(JsonString::quoted(dateText));
}

bool testDate(const MethodRegistry &methods, const QString &dateText)
{
    return ScriptRunner::runScript(methods, probeScript(dateText)).toInt() == 1;
}

QVariant returnDateFormat(const MethodRegistry &methods, bool asFormat, bool withWeekday, bool asNumeric)
{
    for (const ProbeRow &row : probeRows) {
        if (!testDate(methods, QString::fromLatin1(row.sample)))
            continue;
        const char *entry = asFormat ? (withWeekday ? row.withWeekday : row.withoutWeekday)
                                     : (asNumeric ? row.numeric : row.label);
        return QString::fromLatin1(entry);
    }
    return QVariant();
}

QVariant makeLocalDate(const MethodRegistry &methods, bool textOnly, const QVariant &month, const QVariant &day,
                       const QVariant &year, const QString &time)
{
    const QString pattern = returnDateFormat(methods, false, false, true).toString();
    QStringList parts = pattern.isEmpty() ? QStringList() : pattern.split(u'/');
    for (QString &part : parts) {
        if (part == QLatin1String("1"))
            part = textOf(month);
        else if (part == QLatin1String("2"))
            part = textOf(day);
        else if (part == QLatin1String("3"))
            part = textOf(year);
    }
    const QString text = QStringLiteral("%1 %2").arg(parts.join(u'/'), time);
    if (textOnly)
        return text;
    return ScriptRunner::runScript(methods, dateScript(text));
}

QVariant relativeDescriptionForDate(const QVariant &date, const QVariant &format)
{
    QDateTime when;
    if (date.typeId() == QMetaType::QDateTime) {
        when = date.toDateTime().toLocalTime();
    } else if (date.typeId() == QMetaType::QString) {
        const auto parsed = CalendarFormat::parseDefault(date.toString());
        if (!parsed)
            return QString();
        when = *parsed;
    } else {
        return date;
    }
    const qint64 days = clock()().toLocalTime().date().daysTo(when.date());
    if (days >= -1 && days <= 1) {
        const char *key = days == 0 ? "Today" : days < 0 ? "Yesterday" : "Tomorrow";
        return QCoreApplication::translate("Localizable", key);
    }
    if (!format.isValid() || format.typeId() == QMetaType::Nullptr)
        return CalendarFormat::format(when, CalendarFormat::DefaultFormat);
    QString calendarFormat = format.toString();
    if (calendarFormat.isEmpty()) {
        const QVariant preferred = UserDefaults::readDefault(QStringLiteral("NSDateFormatString"));
        if (!preferred.isValid())
            return QLocale::system().toString(when.date(), QLocale::LongFormat);
        calendarFormat = preferred.toString();
    }
    return CalendarFormat::format(when, calendarFormat);
}

void setClock(std::function<QDateTime()> now)
{
    clock() = std::move(now);
}

} // namespace DateHelpers

void registerDateHelperMethods(MethodRegistry &registry)
{
    using namespace DateHelpers;
    using ArgumentConversion::convert;
    registry.addClassMethod(MiscMethodsClass, QStringLiteral("testDate:"), [](Invocation &invocation) {
        return QVariant(testDate(*invocation.methods, convert<QString>(invocation.arguments[0], 0)));
    });
    registry.addClassMethod(MiscMethodsClass, QStringLiteral("returnDateFormat:withWeekday:asNumeric:"), [](Invocation &invocation) {
        return returnDateFormat(*invocation.methods, convert<bool>(invocation.arguments[0], 0),
                                convert<bool>(invocation.arguments[1], 1), convert<bool>(invocation.arguments[2], 2));
    });
    registry.addClassMethod(MiscMethodsClass, QStringLiteral("makeLocalDate:withMonth:withDay:withYear:withTime:"),
                            [](Invocation &invocation) {
                                const QVariantList &a = invocation.arguments;
                                return makeLocalDate(*invocation.methods, convert<bool>(a[0], 0), a[1], a[2], a[3],
                                                     convert<QString>(a[4], 4));
                            });
    NativeBinding::addClassMethod(registry, MiscMethodsClass, QStringLiteral("relativeDescriptionForDate:withFormat:"),
                                  &relativeDescriptionForDate);
}
