#include "CollectionMethods.h"

#include "Collections.h"
#include "MethodRegistry.h"
#include "NativeBinding.h"

namespace {

// For each object that answers the selector (one taking no argument) as a
// script could call it, the answer; other objects are skipped.
QVariant objectsAnswering(Invocation &invocation)
{
    using ArgumentConversion::convert;
    const MethodRegistry &methods = *invocation.methods;
    const auto objects = convert<QVariantList>(invocation.arguments[0], 0);
    const auto selector = convert<QString>(invocation.arguments[1], 1);
    QVariantList answers;
    if (MethodRegistry::parameterCount(selector) != 0)
        return answers;
    for (const QVariant &object : objects) {
        const NativeMethod *method = methods.find(MethodKind::Instance, methods.classNameOf(object), selector);
        if (!method)
            continue;
        Invocation call;
        call.methods = &methods;
        call.receiver = object;
        answers.append((*method)(call));
    }
    return answers;
}

} // namespace

void registerCollectionMethods(MethodRegistry &registry)
{
    using namespace ROZ_Collections;
    using NativeBinding::addClassMethod;
    const QString Misc = QStringLiteral("ROZ_MiscMethods");
    addClassMethod(registry, Misc, QStringLiteral("randomLongFrom:to:"), &randomLongFrom);
    addClassMethod(registry, Misc, QStringLiteral("returnKeyValueIndex:forKey:"), &returnKeyValueIndex);
    addClassMethod(registry, Misc, QStringLiteral("reverseArray:"), &reverseArray);
    addClassMethod(registry, Misc, QStringLiteral("sortArray:"), &sortArray);
    addClassMethod(registry, Misc, QStringLiteral("sortArrayWithStringsAsNumbers:"), &sortArrayWithStringsAsNumbers);
    addClassMethod(registry, Misc, QStringLiteral("sortArrayWithCleanedStringSort:"), &sortArrayWithCleanedStringSort);
    addClassMethod(registry, Misc, QStringLiteral("sortArrayRemovingDuplicates:"), &sortArrayRemovingDuplicates);
    addClassMethod(registry, Misc, QStringLiteral("batchReturnArrayObject:atIndex:"), &batchReturnArrayObject);
    addClassMethod(registry, Misc, QStringLiteral("returnSomeObjectOfArray:"), &returnSomeObjectOfArray);
    addClassMethod(registry, Misc, QStringLiteral("sortDictionaries:usingKeys:"), &sortDictionaries);
    addClassMethod(registry, Misc, QStringLiteral("sortDictionariesByCleanedString:usingKey:"),
                   &sortDictionariesByCleanedString);
    addClassMethod(registry, Misc, QStringLiteral("sortDictionariesByDate:usingKey:"), &sortDictionariesByDate);
    addClassMethod(registry, Misc, QStringLiteral("sortDictionariesByNumber:usingKey:"), &sortDictionariesByNumber);
    addClassMethod(registry, Misc, QStringLiteral("batchReturnDictionaryObject:forKey:"), &batchReturnDictionaryObject);
    addClassMethod(registry, Misc, QStringLiteral("batchReturnDictionaries:whoseArrayContains:forKey:"),
                   &batchReturnDictionariesWhoseArrayContains);
    addClassMethod(registry, Misc, QStringLiteral("batchReturnDictionaries:containedIn:forKey:"),
                   &batchReturnDictionariesContainedIn);
    addClassMethod(registry, Misc, QStringLiteral("batchReturnDictionaries:notContainedIn:forKey:"),
                   &batchReturnDictionariesNotContainedIn);
    addClassMethod(registry, Misc, QStringLiteral("batchReturnDictionaries:withObject:forKey:"),
                   &batchReturnDictionariesWithObject);
    registry.addClassMethod(Misc, QStringLiteral("batchReturnObjectFromObjects:forKey:"), &objectsAnswering);
    addClassMethod(registry, Misc, QStringLiteral("batchCleanString:forChars:"), &batchCleanString);
    addClassMethod(registry, Misc, QStringLiteral("uis:"), &uis);
    addClassMethod(registry, Misc, QStringLiteral("uisR:replaceWith:"), &uisR);
}
