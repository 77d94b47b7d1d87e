#include "PhoneServices.h"

#include "NetworkRequests.h"
#include "StringAdditions.h"
#include "SystemLog.h"


#include <utility>

namespace PhoneServices {

namespace {

const QStringList &acceptedCarriers()
{
    static const QStringList codes = {
        "ACS",       "ALASKA_WIRELESS_US", "ALLTEL",      "ATT",          "BLUECELL_US", "CELLCOM_US",
        "SLO_CELLULAR_US", "CELL_SOUTH", "CELLULARONE", "CENTENNIAL", "CINCINNATI_BELL", "COPPER_VALLEY_US",
        "HELIO",     "METROPCS",    "MIDWEST_WIRELESS", "NEXTEL",      "NTELOS_US",   "OMNIPOINT",
        "QWEST",     "SPRINT",      "SRT_US",           "SUNCOM",      "SUREWEST_US", "TMOBILE",
        "RCC",       "USCELLULAR",  "VERIZON",          "VIRGIN",      "WESTERN_WIRELESS",
    };
    return codes;
}

// Searched in order by containment, so a longer name stands before a
// shorter one it contains.
const std::pair<const char *, const char *> carrierTable[] = {
    {"alaska communications", "ACS"},
    {"alaska", "ALASKA_WIRELESS_US"},
    {"alltel", "ALLTEL"},
    {"at&t", "ATT"},
    {"att", "ATT"},
    {"cingular", "ATT"},
    {"bluegrass cellular", "BLUECELL_US"},
    {"cellcom", "CELLCOM_US"},
    {"cellular one of san luis obispo", "SLO_CELLULAR_US"},
    {"cellular south", "CELL_SOUTH"},
    {"cellularone", "CELLULARONE"},
    {"centennial", "CENTENNIAL"},
    {"cincinnati bell", "CINCINNATI_BELL"},
    {"copper valley", "COPPER_VALLEY_US"},
    {"helio", "HELIO"},
    {"metropcs", "METROPCS"},
    {"midwest", "MIDWEST_WIRELESS"},
    {"nextel", "NEXTEL"},
    {"ntelos", "NTELOS_US"},
    {"t-mobile", "TMOBILE"},
    {"tmobile", "TMOBILE"},
    {"omnipoint", "TMOBILE"},
    {"qwest", "QWEST"},
    {"sprint", "SPRINT"},
    {"srt", "SRT_US"},
    {"suncom wireless", "SUNCOM"},
    {"surewest", "SUREWEST_US"},
    {"unicel", "RCC"},
    {"us cellular", "USCELLULAR"},
    {"verizon", "VERIZON"},
    {"virgin", "VIRGIN"},
    {"western", "WESTERN_WIRELESS"},
};

bool isBlank(const QString &text) { return text.trimmed().isEmpty(); }

} // namespace

QString cleanNumber(const QString &number)
{
    return StringAdditions::clean(number, QStringLiteral("1234567890+"));
}

bool sendMessage(const QString &message, const QString &subject, const QString &phone, const QString &carrier)
{
    const QString number = cleanNumber(phone);
    if (isBlank(number) || !acceptedCarriers().contains(carrier))
        return false;
    const auto gateway = NetworkRequests::serviceAddress(QStringLiteral("SMSGatewayURL"));
    if (!gateway)
        return false;
    using StringAdditions::addPercentEscapes;
    const QString body = QStringLiteral("client=navclient-ffsms&gl=US&hl=en&c=1&subject=%1&text=%2&mobile_user_id=%3"
                                        "&carrier=%4&send_button=Send")
                             .arg(addPercentEscapes(subject), addPercentEscapes(message), number, carrier);
    QUrl address = *gateway;
    address.setPath(address.path() + QStringLiteral("/sendtophone"));
    const NetworkRequests::Reply reply = NetworkRequests::post(address, body.toLatin1());
    if (!reply.error.isEmpty()) {
        SystemLog::write(QStringLiteral("error: ") + reply.error);
        return false;
    }
    if (!reply.data || reply.data->isEmpty())
        return false;
    return QString::fromLatin1(*reply.data).contains(QLatin1String("Message sent"), Qt::CaseInsensitive);
}

std::optional<QString> carrierOf(const QString &phone)
{
    const QString number = cleanNumber(phone);
    if (isBlank(number))
        return std::nullopt;
    const auto service = NetworkRequests::serviceAddress(QStringLiteral("ReversePhoneLookupURL"));
    if (!service)
        return std::nullopt;
    QUrl address = *service;
    address.setPath(address.path() + QStringLiteral("/search/ReversePhone"));
    // A "+" left bare in a query reads as a blank.
    address.setQuery(QStringLiteral("full_phone=") + QString(number).replace(u'+', QLatin1String("%2B")),
                     QUrl::TolerantMode);
    const NetworkRequests::Reply reply = NetworkRequests::get(address);
    if (!reply.data || reply.data->isEmpty())
        return std::nullopt;
    const QString page = QString::fromLatin1(*reply.data);
    static const QString marker = QStringLiteral("Provider: ");
    const qsizetype start = page.indexOf(marker, 0, Qt::CaseInsensitive);
    if (start < 0)
        return std::nullopt;
    const qsizetype from = start + marker.size();
    const qsizetype end = page.indexOf(QLatin1String("</span>"), from);
    return carrierForProvider(page.mid(from, end < 0 ? -1 : end - from));
}

std::optional<QString> carrierForProvider(const QString &provider)
{
    const QString text = provider.toLower();
    for (const auto &[name, code] : carrierTable)
        if (text.contains(QLatin1String(name)))
            return QString::fromLatin1(code);
    return std::nullopt;
}

} // namespace PhoneServices
