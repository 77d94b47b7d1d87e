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
    using namespace Collections;
    using NativeBinding::addClassMethod;
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("randomLongFrom:to:"), &randomLongFrom);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("returnKeyValueIndex:forKey:"), &returnKeyValueIndex);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("reverseArray:"), &reverseArray);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("sortArray:"), &sortArray);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("sortArrayWithStringsAsNumbers:"), &sortArrayWithStringsAsNumbers);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("sortArrayWithCleanedStringSort:"), &sortArrayWithCleanedStringSort);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("sortArrayRemovingDuplicates:"), &sortArrayRemovingDuplicates);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("batchReturnArrayObject:atIndex:"), &batchReturnArrayObject);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("returnSomeObjectOfArray:"), &returnSomeObjectOfArray);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("sortDictionaries:usingKeys:"), &sortDictionaries);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("sortDictionariesByCleanedString:usingKey:"),
                   &sortDictionariesByCleanedString);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("sortDictionariesByDate:usingKey:"), &sortDictionariesByDate);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("sortDictionariesByNumber:usingKey:"), &sortDictionariesByNumber);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("batchReturnDictionaryObject:forKey:"), &batchReturnDictionaryObject);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("batchReturnDictionaries:whoseArrayContains:forKey:"),
                   &batchReturnDictionariesWhoseArrayContains);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("batchReturnDictionaries:containedIn:forKey:"),
                   &batchReturnDictionariesContainedIn);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("batchReturnDictionaries:notContainedIn:forKey:"),
                   &batchReturnDictionariesNotContainedIn);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("batchReturnDictionaries:withObject:forKey:"),
                   &batchReturnDictionariesWithObject);
    registry.addClassMethod(MiscMethodsClass, QStringLiteral("batchReturnObjectFromObjects:forKey:"), &objectsAnswering);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("batchCleanString:forChars:"), &batchCleanString);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("uis:"), &uis);
    addClassMethod(registry, MiscMethodsClass, QStringLiteral("uisR:replaceWith:"), &uisR);
}
