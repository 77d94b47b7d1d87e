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
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("randomLongFrom:to:"), &randomLongFrom);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("returnKeyValueIndex:forKey:"), &returnKeyValueIndex);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("reverseArray:"), &reverseArray);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("sortArray:"), &sortArray);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("sortArrayWithStringsAsNumbers:"), &sortArrayWithStringsAsNumbers);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("sortArrayWithCleanedStringSort:"), &sortArrayWithCleanedStringSort);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("sortArrayRemovingDuplicates:"), &sortArrayRemovingDuplicates);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("batchReturnArrayObject:atIndex:"), &batchReturnArrayObject);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("returnSomeObjectOfArray:"), &returnSomeObjectOfArray);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("sortDictionaries:usingKeys:"), &sortDictionaries);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("sortDictionariesByCleanedString:usingKey:"),
                   &sortDictionariesByCleanedString);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("sortDictionariesByDate:usingKey:"), &sortDictionariesByDate);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("sortDictionariesByNumber:usingKey:"), &sortDictionariesByNumber);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("batchReturnDictionaryObject:forKey:"), &batchReturnDictionaryObject);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("batchReturnDictionaries:whoseArrayContains:forKey:"),
                   &batchReturnDictionariesWhoseArrayContains);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("batchReturnDictionaries:containedIn:forKey:"),
                   &batchReturnDictionariesContainedIn);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("batchReturnDictionaries:notContainedIn:forKey:"),
                   &batchReturnDictionariesNotContainedIn);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("batchReturnDictionaries:withObject:forKey:"),
                   &batchReturnDictionariesWithObject);
    registry.addClassMethod(ROZ_MiscMethodsClass, QStringLiteral("batchReturnObjectFromObjects:forKey:"), &objectsAnswering);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("batchCleanString:forChars:"), &batchCleanString);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("uis:"), &uis);
    addClassMethod(registry, ROZ_MiscMethodsClass, QStringLiteral("uisR:replaceWith:"), &uisR);
}
