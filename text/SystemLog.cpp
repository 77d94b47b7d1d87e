#include "SystemLog.h"

#include "FormatString.h"

#include <QDateTime>
#include <cerrno>
#include <cstdio>
#include <mutex>
#include <unistd.h>

namespace SystemLog {

void write(const QString &message)
{
    static std::mutex lock;
    const QString stamp = QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss.zzz"));
    // One pass of arg(): text put in is never read again as placeholders.
    const QByteArray line = QStringLiteral("%1 %2[%3] %4\n")
                                .arg(stamp, QString::fromLocal8Bit(program_invocation_short_name),
                                     QString::number(getpid()), message)
                                .toUtf8();
    std::lock_guard guard(lock);
    std::fwrite(line.constData(), 1, size_t(line.size()), stderr);
    std::fflush(stderr);
}

QString formatWithoutArguments(const QString &format)
{
    return FormatString::apply(format, {});
}

} // namespace SystemLog
