#pragma once

#include <QString>
#include <QVariantMap>

// The proxy settings and whether a host can be reached.
namespace NetworkSettings {

// The proxies under the keys "HTTPEnable", "HTTPProxy", "HTTPPort",
// "HTTPSEnable", "HTTPSProxy", "HTTPSPort" and "ExceptionsList", from the
// environment (http_proxy, https_proxy, no_proxy, upper or lower case) and,
// for what the environment leaves unset, from GNOME's manual proxy settings.
QVariantMap rawProxies();
// The six-key summary of the raw settings.
QVariantMap proxySummary(const QVariantMap &raw);

// True when the host name resolves and the system has a route to one of
// its addresses. Nothing is sent.
bool isReachable(const QString &host);

} // namespace NetworkSettings
