#include "UiMethods.h"

#include "ArgumentConversion.h"
#include "MethodRegistry.h"
#include "NamedException.h"
#include "NativeBinding.h"
#include "Speech.h"
#include "UserInput.h"

namespace {

// Every item must be a record: anything else would type the A key.
QList<UserInput::KeyStroke> strokesFrom(const QVariantList &records)
{
    QList<UserInput::KeyStroke> strokes;
    for (const QVariant &record : records) {
        if (record.typeId() != QMetaType::QVariantMap)
            throw ArgumentConversion::WrongType{0, QStringLiteral("a list of key stroke records"),
                                                QStringLiteral("a list holding ") + ArgumentConversion::kindOf(record)};
        strokes.append(UserInput::KeyStroke::fromRecord(record.toMap()));
    }
    return strokes;
}

} // namespace

void registerInputAndSpeechMethods(MethodRegistry &registry)
{
    using NativeBinding::addClassMethod;
    const QString M = MiscMethodsClass;
    addClassMethod(registry, M, QStringLiteral("moveMouseToPointX:andY:"),
                   +[](float x, float y) { UserInput::moveMouseTo({x, y}); });
    addClassMethod(registry, M, QStringLiteral("getCurrentMouseLocation"), +[] { return UserInput::mouseLocation(); });
    addClassMethod(registry, M, QStringLiteral("getCurrentMouseLocationAsNumbers"), +[] {
        const QPointF point = UserInput::mouseLocation();
        return QVariantList{float(point.x()), float(point.y())};
    });
    addClassMethod(registry, M, QStringLiteral("clickAsUserAtPointX:andY:"),
                   +[](float x, float y) { UserInput::clickAt({x, y}); });
    addClassMethod(registry, M, QStringLiteral("typeAsUser:"),
                   +[](const QVariantList &records) {
                       if (const QString refused = UserInput::type(strokesFrom(records)); !refused.isEmpty())
                           throw NamedException(NSInvalidArgumentException, QStringLiteral("typeAsUser: ") + refused);
                   });
    addClassMethod(registry, M, QStringLiteral("returnSpeechVoices"), &Speech::voiceNames);
    addClassMethod(registry, M, QStringLiteral("speak:usingVoice:"), &Speech::speak);
}
