#pragma once

#include "PathCodec.h"

#include <QByteArray>
#include <QStringList>
#include <vector>

// The argument vector posix_spawn wants: the program, then its arguments,
// null-terminated, with the bytes it points into kept alive beside it.
// Words are written as file names are, so a path among them that is not
// UTF-8 reaches the program byte for byte.
class SpawnArguments {
public:
    SpawnArguments(const QString &program, const QStringList &arguments) : m_words{PathCodec::encode(program)}
    {
        for (const QString &argument : arguments)
            m_words.push_back(PathCodec::encode(argument));
        for (QByteArray &word : m_words)
            m_argv.push_back(word.data());
        m_argv.push_back(nullptr);
    }
    SpawnArguments(const SpawnArguments &) = delete;
    SpawnArguments &operator=(const SpawnArguments &) = delete;

    char *const *argv() const { return m_argv.data(); }
    const char *program() const { return m_argv.front(); }

private:
    std::vector<QByteArray> m_words;
    std::vector<char *> m_argv;
};
