#include "NamedException.h"

NamedException::NamedException(QString name, QString reason)
    : m_name(std::move(name)), m_reason(std::move(reason)),
      m_what((m_name + QStringLiteral(": ") + m_reason).toUtf8())
{
}

NamedException arrayIndexBeyondBounds(qsizetype index, qsizetype count)
{
    return NamedException(NSRangeException, QStringLiteral("*** -[NSArray objectAtIndex:]: index %1 beyond bounds [0 .. %2]")
                                                 .arg(index)
                                                 .arg(count - 1));
}
