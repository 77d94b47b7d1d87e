#include "Speech.h"

#include "StringAdditions.h"

#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTextToSpeech>
#include <QTimer>
#include <QVoice>

#include <functional>

namespace Speech {

namespace {

constexpr int pollMilliseconds = 50;

// Our own speech in progress, across nested event loops.
bool &speaking()
{
    static bool flag = false;
    return flag;
}

// Handles events in steps of 50 ms until the condition holds or time runs out.
void waitUntil(const std::function<bool()> &done, QDeadlineTimer deadline)
{
    while (!done() && !deadline.hasExpired()) {
        QEventLoop loop;
        QTimer::singleShot(pollMilliseconds, &loop, &QEventLoop::quit);
        loop.exec();
    }
}

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
    if (ROZ_NSStringAdditions::isBlankString(text))
        return;
    QTextToSpeech engine;
    if (!ROZ_NSStringAdditions::isBlankString(voiceName)) {
        const QList<QVoice> voices = engine.availableVoices();
        for (const QVoice &voice : voices)
            if (voice.name() == voiceName) {
                engine.setVoice(voice);
                break;
            }
    }
    const QDeadlineTimer deadline(std::max<qint64>(5000, qint64(text.size()) * 200));
    waitUntil([] { return !speaking(); }, deadline);
    // Saying is asynchronous: done once speech has begun and ended, or failed.
    bool started = false, ended = false;
    QObject::connect(&engine, &QTextToSpeech::stateChanged, [&](QTextToSpeech::State state) {
        started = started || state == QTextToSpeech::Speaking;
        ended = ended || state == QTextToSpeech::Error || (started && state == QTextToSpeech::Ready);
    });
    speaking() = true;
    engine.say(text);
    waitUntil([&] { return ended || engine.state() == QTextToSpeech::Error; }, deadline);
    if (!ended)
        engine.stop();
    speaking() = false;
}

} // namespace Speech
