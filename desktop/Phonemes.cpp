#include "TextShaping.h"

#include <espeak-ng/speak_lib.h>
#include <mutex>

namespace ROZ_TextShaping {

std::optional<QString> phonemes(const QString &self)
{
    // The speech library keeps one voice for the whole process.
    static std::mutex lock;
    const std::lock_guard guard(lock);
    static const bool ready = espeak_Initialize(AUDIO_OUTPUT_RETRIEVAL, 0, nullptr, espeakINITIALIZE_DONT_EXIT) > 0
                              && espeak_SetVoiceByName("en") == EE_OK;
    if (!ready)
        return std::nullopt;
    const QByteArray text = self.toUtf8();
    const void *next = text.constData();
    QString phonemes;
    // One clause at a time, until the text is used up.
    while (next) {
        if (const char *clause = espeak_TextToPhonemes(&next, espeakCHARS_UTF8, 0)) {
            if (!phonemes.isEmpty() && *clause)
                phonemes += u' ';
            phonemes += QString::fromUtf8(clause);
        }
    }
    return phonemes;
}

} // namespace ROZ_TextShaping
