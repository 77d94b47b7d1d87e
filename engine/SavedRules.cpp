#include "SavedRules.h"
#include "ErrnoText.h"

#include "FileBytes.h"
#include "PathCodec.h"
#include "SortFunctions.h"
#include "UserFolders.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

const QString suffix = QStringLiteral(".json");

// The folder and those above it, as `mkdir -p` makes them.
QString makeFolder(const QString &folder)
{
    const QByteArray path = PathCodec::encode(folder);
    for (qsizetype slash = path.indexOf('/', 1); ; slash = path.indexOf('/', slash + 1)) {
        const QByteArray part = slash < 0 ? path : path.left(slash);
        if (mkdir(part.constData(), 0700) != 0 && errno != EEXIST)
            return QStringLiteral("%1: %2").arg(PathCodec::decode(part), errnoText(errno));
        if (slash < 0)
            return {};
    }
}

} // namespace

SavedRules::SavedRules(QString folder) : m_folder(std::move(folder)) {}

QString SavedRules::defaultFolder()
{
    return UserFolders::configHome() + QStringLiteral("/nomen/rules");
}

QString SavedRules::pathOf(const QString &name) const
{
    return m_folder + u'/' + name + suffix;
}

QStringList SavedRules::names() const
{
    QStringList found;
    DIR *folder = opendir(PathCodec::encode(m_folder).constData());
    if (!folder)
        return found;
    while (const dirent *entry = readdir(folder)) {
        const QString file = PathCodec::decode(entry->d_name);
        if (file.endsWith(suffix) && file.size() > suffix.size() && !file.startsWith(u'.'))
            found.append(file.chopped(suffix.size()));
    }
    closedir(folder);
    std::sort(found.begin(), found.end(), [](const QString &a, const QString &b) {
        return SortFunctions::stringAsNumberCompare(a, b) < 0;
    });
    return found;
}

SavedRules::Loaded SavedRules::load(const QString &name) const
{
    if (const QString problem = nameProblem(name); !problem.isEmpty())
        return {std::nullopt, problem};
    const QString path = pathOf(name);
    if (struct stat info; lstat(PathCodec::encode(path).constData(), &info) != 0 && errno == ENOENT)
        return {std::nullopt, QStringLiteral("there is no rule named \"%1\" (%2)").arg(name, path)};
    const FileBytes::Contents contents = FileBytes::read(path);
    if (!contents.bytes)
        return {std::nullopt, contents.error};
    QString problem;
    auto rule = RenameRule::fromJson(*contents.bytes, &problem);
    if (!rule)
        return {std::nullopt, QStringLiteral("%1: %2").arg(path, problem)};
    return {rule, {}};
}

QString SavedRules::save(const QString &name, const RenameRule &rule) const
{
    if (const QString problem = nameProblem(name); !problem.isEmpty())
        return problem;
    if (const QString failed = makeFolder(m_folder); !failed.isEmpty())
        return failed;
    return FileBytes::replaceContents(pathOf(name), rule.toJson());
}

QString SavedRules::remove(const QString &name) const
{
    if (const QString problem = nameProblem(name); !problem.isEmpty())
        return problem;
    const QString path = pathOf(name);
    if (unlink(PathCodec::encode(path).constData()) != 0)
        return QStringLiteral("%1: %2").arg(path, errnoText(errno));
    return {};
}

QString SavedRules::nameProblem(const QString &name)
{
    if (name.trimmed().isEmpty())
        return QStringLiteral("a rule needs a name");
    if (name.contains(u'/') || name.contains(QChar(0)))
        return QStringLiteral("the rule name \"%1\" holds \"/\" or a NUL character").arg(name);
    if (name.startsWith(u'.'))
        return QStringLiteral("the rule name \"%1\" starts with \".\"").arg(name);
    if (PathCodec::encode(name + suffix).size() > 255)
        return QStringLiteral("the rule name \"%1\" is too long").arg(name);
    return {};
}
