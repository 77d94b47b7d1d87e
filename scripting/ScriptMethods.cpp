#include "ScriptMethods.h"

#include "CollectionMethods.h"
#include "DateHelpers.h"
#include "UserDefaults.h"

#include "DataAdditions.h"
#include "NativeBinding.h"
#include "ScriptCoertions.h"
#include "ScriptSubroutines.h"

namespace {

using ArgumentConversion::convert;
using namespace ScriptCoertions;

const QString DescriptorClass = QStringLiteral("NSAppleEventDescriptor");
const QString ScriptClass = QStringLiteral("NSAppleScript");

FourCharCode typeCodeArgument(const QVariant &value, int index)
{
    if (value.typeId() == QMetaType::QString)
        if (const auto code = fourCharCodeFrom(value.toString()))
            return *code;
    if (ArgumentConversion::isNumber(value))
        return convert<quint32>(value, index);
    throw ArgumentConversion::WrongType{index, QStringLiteral("a four-character code"),
                                        ArgumentConversion::kindOf(value)};
}

CompiledScript &scriptOf(const Invocation &invocation)
{
    return *convert<CompiledScript *>(invocation.receiver, -1);
}

void registerDescriptors(MethodRegistry &registry)
{
    using NativeBinding::addClassMethod;
    using NativeBinding::addInstanceMethod;
    registry.addValueClass(QMetaType::fromType<Descriptor>(), DescriptorClass);

    // Numeric layouts.
    addClassMethod(registry, DescriptorClass, QStringLiteral("descriptorWithInt16:"), &descriptorWithInt16);
    addClassMethod(registry, DescriptorClass, QStringLiteral("descriptorWithUnsignedInt32:"),
                   &descriptorWithUnsignedInt32);
    addClassMethod(registry, DescriptorClass, QStringLiteral("descriptorWithFloat32:"), &descriptorWithFloat32);
    addClassMethod(registry, DescriptorClass, QStringLiteral("descriptorWithFloat64:"), &descriptorWithFloat64);
    addClassMethod(registry, DescriptorClass, QStringLiteral("descriptorWithLongDateTime:"),
                   &descriptorWithLongDateTime);
    addInstanceMethod(registry, DescriptorClass, QStringLiteral("int16Value"), &int16Value);
    addInstanceMethod(registry, DescriptorClass, QStringLiteral("unsignedInt32Value"), &unsignedInt32Value);
    addInstanceMethod(registry, DescriptorClass, QStringLiteral("float32Value"), &float32Value);
    addInstanceMethod(registry, DescriptorClass, QStringLiteral("float64Value"), &float64Value);
    addInstanceMethod(registry, DescriptorClass, QStringLiteral("longDateTimeValue"), &longDateTimeValue);
    addInstanceMethod(registry, DescriptorClass, QStringLiteral("isMissingValue"), &isMissingValue);

    // Conversion.
    addInstanceMethod(registry, DescriptorClass, QStringLiteral("objCObjectValue"), &objCObjectValue);
    addInstanceMethod(registry, DescriptorClass, QStringLiteral("logDescriptorType"), &logDescriptorType);
    for (const QString &className : {QStringLiteral("NSString"), QStringLiteral("NSNumber"), QStringLiteral("NSArray"),
                                     QStringLiteral("NSDictionary"), QStringLiteral("NSDate"), QStringLiteral("NSData"),
                                     DescriptorClass, QStringLiteral("NSCharacterSet")})
        addInstanceMethod(registry, className, QStringLiteral("aeDescriptorValue"), +[](QVariant self) {
            return aeDescriptorValue(self);
        });
    addClassMethod(registry, QStringLiteral("NSArray"), QStringLiteral("arrayWithAEDesc:"), &arrayWithAEDesc);
    addClassMethod(registry, QStringLiteral("NSDictionary"), QStringLiteral("dictionaryWithAEDesc:"),
                   &dictionaryWithAEDesc);
    addClassMethod(registry, QStringLiteral("NSString"), QStringLiteral("stringWithAEDesc:"), &stringWithAEDesc);
    addClassMethod(registry, QStringLiteral("NSNull"), QStringLiteral("nullWithAEDesc:"), &nullWithAEDesc);
    addClassMethod(registry, QStringLiteral("NSDate"), QStringLiteral("dateWithAEDesc:"), &dateWithAEDesc);
    addClassMethod(registry, QStringLiteral("NSNumber"), QStringLiteral("numberWithAEDesc:"), &numberWithAEDesc);

    // A class method of the table, by name, converts the listed types from now on.
    registry.addClassMethod(
        DescriptorClass, QStringLiteral("registerConversionSubroutine:selector:forDescriptorTypes:"),
        [](Invocation &invocation) {
            const QString className = convert<QString>(invocation.arguments[0], 0);
            const QString selector = convert<QString>(invocation.arguments[1], 1);
            const MethodRegistry *methods = invocation.methods;
            if (!methods || !methods->find(MethodKind::Class, className, selector)
                || MethodRegistry::parameterCount(selector) != 1)
                throw NamedException(NSInvalidArgumentException,
                                     QStringLiteral("%1: no class method taking one descriptor")
                                         .arg(MethodRegistry::methodName(MethodKind::Class, className, selector)));
            QList<FourCharCode> types;
            for (const QVariant &type : convert<QVariantList>(invocation.arguments[2], 2))
                types.append(ArgumentConversion::isNil(type) ? 0 : typeCodeArgument(type, 2));
            ConversionTable::shared().registerConversionSubroutine(
                [methods, className, selector](const Descriptor &descriptor) {
                    Invocation call;
                    call.methods = methods;
                    call.arguments = {QVariant::fromValue(descriptor)};
                    return (*methods->find(MethodKind::Class, className, selector))(call);
                },
                types);
            return QVariant();
        });

    // The constructors and readers that scripts need to build and look into
    // descriptors.
    registry.addClassMethod(DescriptorClass, QStringLiteral("descriptorWithDescriptorType:data:"),
                            [](Invocation &invocation) {
                                return QVariant::fromValue(Descriptor(typeCodeArgument(invocation.arguments[0], 0),
                                                                      convert<QByteArray>(invocation.arguments[1], 1)));
                            });
    registry.addClassMethod(DescriptorClass, QStringLiteral("descriptorWithTypeCode:"), [](Invocation &invocation) {
        return QVariant::fromValue(Descriptor::typeCode(typeCodeArgument(invocation.arguments[0], 0)));
    });
    addClassMethod(registry, DescriptorClass, QStringLiteral("descriptorWithString:"), &Descriptor::string);
    addClassMethod(registry, DescriptorClass, QStringLiteral("descriptorWithBoolean:"), &Descriptor::boolean);
    addClassMethod(registry, DescriptorClass, QStringLiteral("descriptorWithInt32:"), &Descriptor::int32);
    addClassMethod(registry, DescriptorClass, QStringLiteral("nullDescriptor"), &Descriptor::null);
    addInstanceMethod(registry, DescriptorClass, QStringLiteral("descriptorType"),
                      +[](Descriptor self) { return fourCharString(self.descriptorType()); });
    addInstanceMethod(registry, DescriptorClass, QStringLiteral("data"), +[](Descriptor self) { return self.data(); });
    addInstanceMethod(registry, DescriptorClass, QStringLiteral("stringValue"),
                      +[](Descriptor self) { return stringWithAEDesc(self); });
    addInstanceMethod(registry, DescriptorClass, QStringLiteral("booleanValue"),
                      +[](Descriptor self) { return self.booleanValue(); });
    addInstanceMethod(registry, DescriptorClass, QStringLiteral("int32Value"),
                      +[](Descriptor self) { return self.int32Value(); });
    addInstanceMethod(registry, DescriptorClass, QStringLiteral("numberOfItems"),
                      +[](Descriptor self) { return self.numberOfItems(); });
    addInstanceMethod(registry, DescriptorClass, QStringLiteral("descriptorAtIndex:"),
                      +[](Descriptor self, qint64 index) { return self.descriptorAtIndex(index); });
    registry.addInstanceMethod(DescriptorClass, QStringLiteral("descriptorForKeyword:"), [](Invocation &invocation) {
        const auto item = convert<Descriptor>(invocation.receiver, -1)
                              .descriptorForKeyword(typeCodeArgument(invocation.arguments[0], 0));
        return item ? QVariant::fromValue(*item) : QVariant();
    });
    registry.addInstanceMethod(DescriptorClass, QStringLiteral("coerceToDescriptorType:"), [](Invocation &invocation) {
        const auto coerced = convert<Descriptor>(invocation.receiver, -1)
                                 .coerceToDescriptorType(typeCodeArgument(invocation.arguments[0], 0));
        return coerced ? QVariant::fromValue(*coerced) : QVariant();
    });
}

// The routes through a C value take the value's bytes as data.
template <Descriptor (*route)(const QVariant &, const void *, int)>
QVariant routeFromScript(Invocation &invocation)
{
    const int byteCount = convert<int>(invocation.arguments[1], 1);
    const QByteArray bytes = convert<QByteArray>(invocation.arguments[0], 0);
    QByteArray buffer = bytes;
    buffer.resize(std::max<qsizetype>(bytes.size(), 16), '\0');
    if (byteCount > 0 && bytes.size() < std::min(byteCount, 8))
        throw NamedException(NSInvalidArgumentException,
                             QStringLiteral("the data holds %1 bytes, the byte count is %2").arg(bytes.size()).arg(byteCount));
    return QVariant::fromValue(route(invocation.receiver, buffer.constData(), byteCount));
}

template <QVariant (*factory)(const void *, int)>
QVariant factoryFromScript(Invocation &invocation)
{
    const int byteCount = convert<int>(invocation.arguments[1], 1);
    const QByteArray bytes = convert<QByteArray>(invocation.arguments[0], 0);
    QByteArray buffer = bytes;
    buffer.resize(std::max<qsizetype>(bytes.size(), 16), '\0');
    if (byteCount > 0 && byteCount <= 8 && bytes.size() < byteCount)
        throw NamedException(NSInvalidArgumentException,
                             QStringLiteral("the data holds %1 bytes, the byte count is %2").arg(bytes.size()).arg(byteCount));
    return factory(buffer.constData(), byteCount);
}

void registerNumbers(MethodRegistry &registry)
{
    const QString NSNumber = QStringLiteral("NSNumber");
    registry.addInstanceMethod(NSNumber, QStringLiteral("ROZ_DescriptorValueWithSignedIntP:byteCount:"),
                               &routeFromScript<&DescriptorValueWithSignedIntP>);
    registry.addInstanceMethod(NSNumber, QStringLiteral("ROZ_DescriptorValueWithUnsignedIntP:byteCount:"),
                               &routeFromScript<&DescriptorValueWithUnsignedIntP>);
    registry.addInstanceMethod(NSNumber, QStringLiteral("ROZ_DescriptorValueWithFloatP:byteCount:"),
                               &routeFromScript<&DescriptorValueWithFloatP>);
    registry.addClassMethod(NSNumber, QStringLiteral("ROZ_NumberWithSignedIntP:byteCount:"),
                            &factoryFromScript<&NumberWithSignedIntP>);
    registry.addClassMethod(NSNumber, QStringLiteral("ROZ_NumberWithUnsignedIntP:byteCount:"),
                            &factoryFromScript<&NumberWithUnsignedIntP>);
    registry.addClassMethod(NSNumber, QStringLiteral("ROZ_NumberWithFloatP:byteCount:"),
                            &factoryFromScript<&NumberWithFloatP>);
    NativeBinding::addInstanceMethod(registry, QStringLiteral("NSData"), QStringLiteral("offsetOfData:"),
                                     &DataAdditions::offsetOfData);
}

void registerScripts(MethodRegistry &registry)
{
    using namespace ScriptSubroutines;
    const auto script = [](Invocation &invocation) -> CompiledScript & { return scriptOf(invocation); };
    const auto name = [](Invocation &invocation) { return convert<QString>(invocation.arguments[0], 0); };

    // Scripts are made from source text or a file; the caller's object box
    // receives the error dictionary when loading fails.
    registry.addClassMethod(ScriptClass, QStringLiteral("scriptWithSource:"), [](Invocation &invocation) {
        return QVariant::fromValue<QObject *>(
            new CompiledScript(*invocation.methods, convert<QString>(invocation.arguments[0], 0)));
    });
    registry.addClassMethod(ScriptClass, QStringLiteral("scriptWithContentsOfFile:error:"), [](Invocation &invocation) {
        QVariantMap error;
        CompiledScript *loaded =
            CompiledScript::fromFile(*invocation.methods, convert<QString>(invocation.arguments[0], 0), &error);
        if (invocation.hasBox(1))
            invocation.outputs[1] = loaded ? QVariant() : QVariant(error);
        return loaded ? QVariant::fromValue<QObject *>(loaded) : QVariant();
    });
    registry.addInstanceMethod(ScriptClass, QStringLiteral("executeAndReturnError:"), [](Invocation &invocation) {
        QVariantMap error;
        const auto result = scriptOf(invocation).executeAndReturnError(&error);
        if (invocation.hasBox(0))
            invocation.outputs[0] = result ? QVariant() : QVariant(error);
        return result ? QVariant::fromValue(*result) : QVariant();
    });

    registry.addInstanceMethod(ScriptClass, QStringLiteral("ROZ_runScriptSubroutine:"), [=](Invocation &invocation) {
        return runScriptSubroutine(script(invocation), name(invocation));
    });
    registry.addInstanceMethod(ScriptClass, QStringLiteral("ROZ_runScriptSubroutine:withParameter:"),
                               [=](Invocation &invocation) {
                                   return runScriptSubroutine(script(invocation), name(invocation),
                                                                  invocation.arguments[1]);
                               });
    registry.addInstanceMethod(ScriptClass, QStringLiteral("ROZ_runScriptSubroutine:withParameters:"),
                               [=](Invocation &invocation) {
                                   return runScriptSubroutineWithParameters(
                                       script(invocation), name(invocation), convert<QVariantList>(invocation.arguments[1], 1));
                               });
    registry.addInstanceMethod(ScriptClass, QStringLiteral("ROZ_runScriptSubroutine:withParametersFromArray:"),
                               [=](Invocation &invocation) {
                                   return runScriptSubroutineWithParametersFromArray(
                                       script(invocation), name(invocation), convert<QVariantList>(invocation.arguments[1], 1));
                               });
    registry.addInstanceMethod(
        ScriptClass, QStringLiteral("ROZ_ExecuteWithoutTranslationSubroutine:error:withParametersDesc:"),
        [=](Invocation &invocation) {
            std::optional<QVariantMap> error;
            const auto result = ExecuteWithoutTranslationSubroutine(
                script(invocation), name(invocation), &error, convert<Descriptor>(invocation.arguments[2], 2));
            if (invocation.hasBox(1))
                invocation.outputs[1] = error ? QVariant(*error) : QVariant();
            return result ? QVariant::fromValue(*result) : QVariant();
        });
    registry.addInstanceMethod(ScriptClass, QStringLiteral("ROZ_HandleASError:"), [](Invocation &invocation) {
        const QVariant error = invocation.arguments[0];
        return HandleASError(ArgumentConversion::isNil(error)
                                     ? std::nullopt
                                     : std::optional(convert<QVariantMap>(error, 0)));
    });
    NativeBinding::addClassMethod(registry, ScriptClass, QStringLiteral("ROZ_subroutinesInScriptFile:"),
                                  &subroutinesInScriptFile);
    NativeBinding::addClassMethod(registry, ScriptClass, QStringLiteral("ROZ_validSubroutinesFromArray:inScriptFile:"),
                                  &validSubroutinesFromArray);

    registry.addClassMethod(MiscMethodsClass, QStringLiteral("runScript:"), [](Invocation &invocation) {
        return ScriptRunner::runScript(*invocation.methods, convert<QString>(invocation.arguments[0], 0));
    });
    registry.addClassMethod(MiscMethodsClass, QStringLiteral("runScriptFile:"),
                            [](Invocation &invocation) {
                                return ScriptRunner::runScriptFile(*invocation.methods,
                                                                   convert<QString>(invocation.arguments[0], 0));
                            });
}

} // namespace

void registerScriptMethods(MethodRegistry &registry)
{
    registerCollectionMethods(registry);
    registerDateHelperMethods(registry);
    registerUserDefaultsMethods(registry);
    registerDescriptors(registry);
    registerNumbers(registry);
    registerScripts(registry);
}
