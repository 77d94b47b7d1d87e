#pragma once

#include <QString>
#include <optional>
#include <utility>

// What anything that can fail gives back: its value, or the reason it failed
// (a sentence naming the file or thing at fault). A failure is written
// `return Failure{why};`; Result<> is "done, or why not".
struct Failure {
    QString reason;
};

template <class T = void>
class [[nodiscard]] Result {
public:
    Result(T value) : m_value(std::move(value)) {}
    Result(Failure failure) : m_reason(std::move(failure.reason)) {}

    bool ok() const { return m_value.has_value(); }
    explicit operator bool() const { return ok(); }
    const QString &reason() const { return m_reason; }

    const T &operator*() const & { return *m_value; }
    T &operator*() & { return *m_value; }
    T &&operator*() && { return std::move(*m_value); }
    const T *operator->() const { return &*m_value; }
    T *operator->() { return &*m_value; }

private:
    std::optional<T> m_value;
    QString m_reason;
};

template <>
class [[nodiscard]] Result<void> {
public:
    Result() = default;
    Result(Failure failure) : m_failed(true), m_reason(std::move(failure.reason)) {}

    bool ok() const { return !m_failed; }
    explicit operator bool() const { return ok(); }
    const QString &reason() const { return m_reason; }

private:
    bool m_failed = false;
    QString m_reason;
};
