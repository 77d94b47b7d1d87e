#pragma once

#include "ArgumentConversion.h"
#include "MethodRegistry.h"

#include <stdexcept>
#include <utility>

// Registers plain C++ functions under a selector. The receiver becomes the
// first parameter of an instance method; each further parameter is converted
// from the script's argument to the function's parameter type. The function
// must take exactly as many parameters as the selector has colons.
namespace NativeBinding {

namespace detail {

template <typename R, typename... Args, typename Call, std::size_t... I>
QVariant callWith(const Call &call, const Invocation &invocation, std::index_sequence<I...>)
{
    // Converted first, in order, so the first faulty argument is the one named.
    std::tuple<std::decay_t<Args>...> converted{
        ArgumentConversion::convert<std::decay_t<Args>>(invocation.arguments.value(I), int(I))...};
    if constexpr (std::is_void_v<R>) {
        call(std::get<I>(converted)...);
        return QVariant();
    } else {
        return ArgumentConversion::toVariant(call(std::get<I>(converted)...));
    }
}

inline void checkArity(const QString &selector, std::size_t parameters)
{
    if (std::size_t(MethodRegistry::parameterCount(selector)) != parameters)
        throw std::logic_error("selector " + selector.toStdString() + " does not fit its function's parameters");
}

} // namespace detail

template <typename R, typename Self, typename... Args>
void addInstanceMethod(MethodRegistry &registry, const QString &className, const QString &selector,
                       R (*function)(Self, Args...))
{
    detail::checkArity(selector, sizeof...(Args));
    registry.addInstanceMethod(className, selector, [function](Invocation &invocation) {
        auto self = ArgumentConversion::convert<std::decay_t<Self>>(invocation.receiver, -1);
        return detail::callWith<R, Args...>(
            [&](auto &&...args) -> R { return function(self, args...); }, invocation,
            std::index_sequence_for<Args...>{});
    });
}

template <typename R, typename... Args>
void addClassMethod(MethodRegistry &registry, const QString &className, const QString &selector,
                    R (*function)(Args...))
{
    detail::checkArity(selector, sizeof...(Args));
    registry.addClassMethod(className, selector, [function](Invocation &invocation) {
        return detail::callWith<R, Args...>(
            [&](auto &&...args) -> R { return function(args...); }, invocation,
            std::index_sequence_for<Args...>{});
    });
}

} // namespace NativeBinding
