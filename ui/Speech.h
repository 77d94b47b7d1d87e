#pragma once

#include <QString>
#include <QStringList>

// Speech through Qt's text-to-speech engines (the flite engine here). One
// text at a time: a second call waits for the first to end.
namespace Speech {

// The display names of the installed voices, in the engine's order.
QStringList voiceNames();

// Speaks the text with the named voice, or the default one for an unknown
// or blank name, and returns when speech has ended. A blank text (empty)
// returns at once. When the engine cannot start, or nothing can be heard
// (no audio device), it returns once speech has failed or the time the
// text could take to say (a second per five characters, at least five
// seconds) has passed.
void speak(const QString &text, const QString &voiceName);

} // namespace Speech
