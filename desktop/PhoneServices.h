#pragma once

#include <QString>
#include <optional>

// The text-message gateway and the reverse phone lookup: outside web
// services whose base addresses the user supplies in the defaults
// "SMSGatewayURL" and "ReversePhoneLookupURL". Without an address nothing
// is sent.
namespace PhoneServices {

// The number reduced to "1234567890+".
QString cleanNumber(const QString &number);

bool sendMessage(const QString &message, const QString &subject, const QString &phone, const QString &carrier);
std::optional<QString> carrierOf(const QString &phone);

// The carrier code the first matching row of the table gives for a
// provider text, compared without regard to case.
std::optional<QString> carrierForProvider(const QString &provider);

} // namespace PhoneServices
