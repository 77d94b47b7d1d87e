#include "Speech.h"

#include "StringAdditions.h"

#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTextToSpeech>
#include <QTimer>
#include <QVoice>

#include <cerrno>
#include <fcntl.h>
#include <functional>
#include <sys/file.h>
#include <unistd.h>

namespace Speech {

namespace {

constexpr int pollMilliseconds = 50;

// Our own speech in progress, across nested event loops.
bool &speaking()
{
    static bool flag = false;
    return flag;
}

// Handles events in steps of 50 ms until the condition holds.
void waitUntil(const std::function<bool()> &done)
{
    while (!done()) {
        QEventLoop loop;
        QTimer::singleShot(pollMilliseconds, &loop, &QEventLoop::quit);
        loop.exec();
    }
}

// Nomen's speech in other processes: whoever speaks holds a lock in the
// user's runtime folder, so two runs never talk over each other.
class SpeechTurn {
public:
    SpeechTurn()
    {
        const QByteArray folder = qgetenv("XDG_RUNTIME_DIR");
        const QByteArray path = (folder.isEmpty() ? QByteArray("/tmp") : folder) + "/nomen-speech.lock";
        m_descriptor = ::open(path.constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
        if (m_descriptor >= 0)
            waitUntil([this] { return ::flock(m_descriptor, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK; });
    }
    ~SpeechTurn()
    {
        if (m_descriptor >= 0)
            ::close(m_descriptor); // and the lock with it
    }
    SpeechTurn(const SpeechTurn &) = delete;
    SpeechTurn &operator=(const SpeechTurn &) = delete;

private:
    int m_descriptor = -1;
};

// Speech that has not begun this long after it was asked for never will
// (no sound device to play it on).
constexpr qint64 startMilliseconds = 10000;

} // namespace

QStringList voiceNames()
{
    QTextToSpeech engine;
    QStringList names;
    for (const QVoice &voice : engine.availableVoices())
        names.append(voice.name());
    return names;
}

void speak(const QString &text, const QString &voiceName)
{
    if (StringAdditions::isBlankString(text))
        return;
    QTextToSpeech engine;
    if (!StringAdditions::isBlankString(voiceName)) {
        const QList<QVoice> voices = engine.availableVoices();
        for (const QVoice &voice : voices)
            if (voice.name() == voiceName) {
                engine.setVoice(voice);
                break;
            }
    }
    // One voice at a time, however long the one before takes.
    waitUntil([] { return !speaking(); });
    speaking() = true;
    const SpeechTurn turn;
    // Saying is asynchronous: done once speech has begun and ended, or
    // failed. The whole of it is waited for, however long it is.
    bool started = false, ended = false;
    QObject::connect(&engine, &QTextToSpeech::stateChanged, [&](QTextToSpeech::State state) {
        started = started || state == QTextToSpeech::Speaking;
        ended = ended || state == QTextToSpeech::Error || (started && state == QTextToSpeech::Ready);
    });
    engine.say(text);
    const QDeadlineTimer beginning(startMilliseconds);
    waitUntil([&] {
        return ended || engine.state() == QTextToSpeech::Error || (!started && beginning.hasExpired());
    });
    if (!ended)
        engine.stop();
    speaking() = false;
}

} // namespace Speech
