#include "NetworkRequests.h"

#include "UserDefaults.h"

#include <QEventLoop>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>

#include <functional>
#include <memory>

namespace NetworkRequests {

namespace {

// Each request has its own manager, so none outlives the application.
Reply waitFor(const std::function<QNetworkReply *(QNetworkAccessManager &)> &send)
{
    QNetworkAccessManager manager;
    const std::unique_ptr<QNetworkReply> reply(send(manager));
    QEventLoop loop;
    QTimer timer;
    timer.setSingleShot(true);
    QObject::connect(&timer, &QTimer::timeout, &loop, &QEventLoop::quit);
    QObject::connect(reply.get(), &QNetworkReply::finished, &loop, &QEventLoop::quit);
    timer.start(timeoutMilliseconds());
    if (!reply->isFinished())
        loop.exec(QEventLoop::ExcludeUserInputEvents);
    if (!reply->isFinished()) {
        reply->abort();
        return {std::nullopt, QStringLiteral("The request timed out.")};
    }
    // An HTTP status means the server answered; its page is the answer even
    // when the status is an error.
    if (reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).isValid())
        return {reply->readAll(), QString()};
    return {std::nullopt, reply->errorString()};
}

} // namespace

int timeoutMilliseconds()
{
    const QVariant seconds = UserDefaults::readDefault(QStringLiteral("NetworkTimeout"));
    bool number = false;
    const double value = seconds.toDouble(&number);
    return number && value > 0 && value < 3600 ? int(value * 1000) : 30000;
}

Reply get(const QUrl &url)
{
    return waitFor([&](QNetworkAccessManager &manager) { return manager.get(QNetworkRequest(url)); });
}

Reply post(const QUrl &url, const QByteArray &body)
{
    QNetworkRequest request(url);
    request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/x-www-form-urlencoded"));
    return waitFor([&](QNetworkAccessManager &manager) { return manager.post(request, body); });
}

std::optional<QUrl> serviceAddress(const QString &defaultsKey)
{
    const QVariant value = UserDefaults::readDefault(defaultsKey);
    if (value.typeId() != QMetaType::QString)
        return std::nullopt;
    QString text = value.toString().trimmed();
    while (text.endsWith(u'/'))
        text.chop(1);
    const QUrl url(text, QUrl::StrictMode);
    if (!url.isValid() || url.host().isEmpty() ||
        (url.scheme() != QLatin1String("http") && url.scheme() != QLatin1String("https")))
        return std::nullopt;
    return url;
}

} // namespace NetworkRequests
