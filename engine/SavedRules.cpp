#include "SavedRules.h"
#include "OpenFiles.h"
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
    FolderEntries folder(PathCodec::encode(m_folder));
    while (const dirent *entry = folder.next()) {
        const QString file = PathCodec::decode(entry->d_name);
        if (file.endsWith(suffix) && file.size() > suffix.size() && !file.startsWith(u'.'))
            found.append(file.chopped(suffix.size()));
    }
    std::sort(found.begin(), found.end(), [](const QString &a, const QString &b) {
        return SortFunctions::stringAsNumberCompare(a, b) < 0;
    });
    return found;
}

Result<RenameRule> SavedRules::load(const QString &name) const
{
    if (auto usable = checkName(name); !usable)
        return Failure{usable.reason()};
    const QString path = pathOf(name);
    if (struct stat info; lstat(PathCodec::encode(path).constData(), &info) != 0 && errno == ENOENT)
        return Failure{QStringLiteral("there is no rule named \"%1\" (%2)").arg(name, path)};
    const FileBytes::Contents contents = FileBytes::read(path);
    if (!contents.bytes)
        return Failure{contents.error};
    auto rule = RenameRule::fromJson(*contents.bytes);
    if (!rule)
        return Failure{QStringLiteral("%1: %2").arg(path, rule.reason())};
    return rule;
}

Result<> SavedRules::save(const QString &name, const RenameRule &rule) const
{
    if (auto usable = checkName(name); !usable)
        return usable;
    if (auto made = makeFolders(PathCodec::encode(m_folder), 0700); !made)
        return made;
    if (const QString failed = FileBytes::replaceContents(pathOf(name), rule.toJson()); !failed.isEmpty())
        return Failure{failed};
    return {};
}

Result<> SavedRules::remove(const QString &name) const
{
    if (auto usable = checkName(name); !usable)
        return usable;
    const QString path = pathOf(name);
    if (unlink(PathCodec::encode(path).constData()) != 0)
        return Failure{QStringLiteral("%1: %2").arg(path, errnoText(errno))};
    return {};
}

Result<> SavedRules::checkName(const QString &name)
{
    if (name.trimmed().isEmpty())
        return Failure{QStringLiteral("a rule needs a name")};
    if (name.contains(u'/') || name.contains(QChar(0)))
        return Failure{QStringLiteral("the rule name \"%1\" holds \"/\" or a NUL character").arg(name)};
    if (name.startsWith(u'.'))
        return Failure{QStringLiteral("the rule name \"%1\" starts with \".\"").arg(name)};
    if (PathCodec::encode(name + suffix).size() > 255)
        return Failure{QStringLiteral("the rule name \"%1\" is too long").arg(name)};
    return {};
}
