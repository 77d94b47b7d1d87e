#pragma once

#include "RenameRule.h"
#include "Result.h"

#include <QString>
#include <QStringList>

// Rules saved under names, one JSON file each (NAME.json) in
// $XDG_CONFIG_HOME/nomen/rules, so they can be copied and shared. Every
// failure is answered as text that names the file.
class SavedRules {
public:
    explicit SavedRules(QString folder = defaultFolder());
    static QString defaultFolder();

    const QString &folder() const { return m_folder; }
    QString pathOf(const QString &name) const;

    // The names of the saved rules, in natural order (9 before 10); none when the
    // folder is not there yet.
    QStringList names() const;

    Result<RenameRule> load(const QString &name) const;
    // Replaces a rule of the same name.
    Result<> save(const QString &name, const RenameRule &rule) const;
    Result<> remove(const QString &name) const;

    // Whether a name can name a rule: it becomes a file name.
    static Result<> checkName(const QString &name);

private:
    QString m_folder;
};
