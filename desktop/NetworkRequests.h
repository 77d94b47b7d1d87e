#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>
#include <optional>

// Requests a caller waits for: each runs the event loop until the server
// answers or the time is up, so the answer comes back in one call.
namespace NetworkRequests {

struct Reply {
    std::optional<QByteArray> data; // the body of any HTTP answer, error pages included
    QString error;                  // why no answer came, "" when one did
};

// The time a request may take: the "NetworkTimeout" default in seconds,
// else 30 seconds.
int timeoutMilliseconds();

Reply get(const QUrl &url);
// A form post (application/x-www-form-urlencoded).
Reply post(const QUrl &url, const QByteArray &body);

// An http or https address from the user's defaults, without a trailing
// "/"; nullopt when the key is unset or holds anything else.
std::optional<QUrl> serviceAddress(const QString &defaultsKey);

} // namespace NetworkRequests
