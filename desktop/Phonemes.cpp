#include "TextShaping.h"

#include <dlfcn.h>
#include <espeak-ng/speak_lib.h>
#include <mutex>

namespace TextShaping {

namespace {

// The speech library, loaded on first use: it brings a sound stack with it
// that no other part of a program needs.
struct Speech {
    decltype(&espeak_Initialize) initialize = nullptr;
    decltype(&espeak_SetVoiceByName) setVoiceByName = nullptr;
    decltype(&espeak_TextToPhonemes) textToPhonemes = nullptr;

    bool load()
    {
        void *library = dlopen("libespeak-ng.so.1", RTLD_NOW | RTLD_LOCAL);
        if (!library)
            return false;
        initialize = reinterpret_cast<decltype(initialize)>(dlsym(library, "espeak_Initialize"));
        setVoiceByName = reinterpret_cast<decltype(setVoiceByName)>(dlsym(library, "espeak_SetVoiceByName"));
        textToPhonemes = reinterpret_cast<decltype(textToPhonemes)>(dlsym(library, "espeak_TextToPhonemes"));
        return initialize && setVoiceByName && textToPhonemes
               && initialize(AUDIO_OUTPUT_RETRIEVAL, 0, nullptr, espeakINITIALIZE_DONT_EXIT) > 0
               && setVoiceByName("en") == EE_OK;
    }
};

} // namespace

std::optional<QString> phonemes(const QString &self)
{
    // The library keeps one voice for the whole process.
    static std::mutex lock;
    const std::lock_guard guard(lock);
    static Speech speech;
    static const bool ready = speech.load();
    if (!ready)
        return std::nullopt;
    const QByteArray text = self.toUtf8();
    const void *next = text.constData();
    QString phonemes;
    // One clause at a time, until the text is used up.
    while (next) {
        if (const char *clause = speech.textToPhonemes(&next, espeakCHARS_UTF8, 0)) {
            if (!phonemes.isEmpty() && *clause)
                phonemes += u' ';
            phonemes += QString::fromUtf8(clause);
        }
    }
    return phonemes;
}

} // namespace TextShaping
