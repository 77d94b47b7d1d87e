#pragma once

#include "RenameRule.h"

#include <QString>
#include <QStringList>
#include <optional>

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

    struct Loaded {
        std::optional<RenameRule> rule;
        QString error;
    };
    Loaded load(const QString &name) const;
    // Replaces a rule of the same name. Answers "" or what went wrong.
    QString save(const QString &name, const RenameRule &rule) const;
    QString remove(const QString &name) const;

    // Why a name cannot name a rule ("" when it can): it becomes a file name.
    static QString nameProblem(const QString &name);

private:
    QString m_folder;
};
