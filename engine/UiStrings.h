#pragma once

class QCoreApplication;

// The "ui" string table (the Qt translation context "ui"): English first,
// then the user's language over it, so a key no table holds answers itself.
namespace UiStrings {

void install(QCoreApplication &application);

} // namespace UiStrings
