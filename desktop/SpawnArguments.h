#pragma once

#include <QByteArray>
#include <QStringList>
#include <vector>

// The argument vector posix_spawn wants: the program, then its arguments,
// null-terminated, with the bytes it points into kept alive beside it.
class SpawnArguments {
public:
    SpawnArguments(const QByteArray &program, const QStringList &arguments) : m_words{program}
    {
        for (const QString &argument : arguments)
            m_words.push_back(argument.toUtf8());
        for (QByteArray &word : m_words)
            m_argv.push_back(word.data());
        m_argv.push_back(nullptr);
    }
    SpawnArguments(const SpawnArguments &) = delete;
    SpawnArguments &operator=(const SpawnArguments &) = delete;

    char *const *argv() const { return m_argv.data(); }

private:
    std::vector<QByteArray> m_words;
    std::vector<char *> m_argv;
};
