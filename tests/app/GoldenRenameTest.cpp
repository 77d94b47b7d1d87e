// Whole renames: a folder tree in, the tree after the rename out, compared
// with a checked-in expectation. Set NOMEN_WRITE_GOLDEN=1 to rewrite the
// expectation, then review it as a diff.

#include "TestPrinting.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QProcess>
#include "TemporaryFolder.h"
#include <gtest/gtest.h>

namespace {

QString readText(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

void buildTree(const QString &root, const QString &treeFile)
{
    for (const QString &line : readText(treeFile).split(u'\n', Qt::SkipEmptyParts)) {
        const QString path = root + u'/' + line;
        if (line.endsWith(u'/')) {
            QDir().mkpath(path);
            continue;
        }
        QDir().mkpath(QFileInfo(path).absolutePath());
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(line.toUtf8());
    }
}

QStringList treeOf(const QString &root)
{
    QStringList entries;
    QDirIterator it(root, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        QString relative = path.mid(root.size() + 1);
        if (QFileInfo(path).isDir()) {
            if (!QDir(path).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot))
                continue;
            relative += u'/';
        }
        entries.append(relative);
    }
    entries.sort();
    return entries;
}

TEST(GoldenRename, PhotosTree)
{
    const QString data = QStringLiteral(NOMEN_TEST_DATA);
    TemporaryFolder dir;
    buildTree(dir.path(), data + QStringLiteral("/rename_photos.tree"));
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("DISPLAY"));
    environment.insert(QStringLiteral("LANG"), QStringLiteral("en_US.UTF-8"));
    process.setProcessEnvironment(environment);
    const QString script = QStringLiteral("var ROOT = \"%1\";\n").arg(dir.path()) + readText(data + QStringLiteral("/rename_photos.js"));
    process.start(QStringLiteral(NOMEN_SCRIPT_PATH), {QStringLiteral("-e"), script});
    ASSERT_TRUE(process.waitForFinished(60000));
    const QString outcome = QString::fromUtf8(process.readAllStandardOutput()) + treeOf(dir.path()).join(u'\n') + u'\n';
    const QString expectedPath = data + QStringLiteral("/rename_photos.expected");
    if (qEnvironmentVariableIsSet("NOMEN_WRITE_GOLDEN")) {
        QFile file(expectedPath);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(outcome.toUtf8());
    }
    EXPECT_EQ(outcome, readText(expectedPath)) << process.readAllStandardError().toStdString();
}

QString run(const QString &program, const QStringList &arguments, const QString &home)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("DISPLAY"));
    environment.insert(QStringLiteral("LANG"), QStringLiteral("en_US.UTF-8"));
    environment.insert(QStringLiteral("XDG_DATA_HOME"), home);
    process.setProcessEnvironment(environment);
    process.start(program, arguments);
    process.waitForFinished(60000);
    return QString::fromUtf8(process.readAllStandardOutput());
}

// Folder by folder in natural order of their paths, names in natural order
// within each: the window's table and the command line number alike.
TEST(GoldenRename, RecursiveNumberingIsTheSameInTheWindowAndTheCommandLine)
{
    const QString data = QStringLiteral(NOMEN_TEST_DATA);
    TemporaryFolder dir;
    buildTree(dir.path(), data + QStringLiteral("/recursive_numbering.tree"));
    const QString window = run(QStringLiteral(NOMEN_SCRIPT_PATH),
                               {QStringLiteral("-e"), QStringLiteral("var ROOT = \"%1\";\n").arg(dir.path())
                                                          + readText(data + QStringLiteral("/recursive_numbering.js"))},
                               dir.path());
    QString commandLine;
    for (const QString &line : run(QStringLiteral(NOMEN_CLI_PATH), {"--recursive", "--prefix", "«#» ", dir.path() + "/Trip"}, dir.path())
                                   .split(u'\n'))
        if (line.startsWith(QLatin1String("rename")))
            commandLine += line.mid(11).replace(dir.path() + u'/', QString()) + u'\n';
    const QString expectedPath = data + QStringLiteral("/recursive_numbering.expected");
    if (qEnvironmentVariableIsSet("NOMEN_WRITE_GOLDEN")) {
        QFile file(expectedPath);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(window.toUtf8());
    }
    EXPECT_EQ(window, readText(expectedPath));
    EXPECT_EQ(commandLine, readText(expectedPath));
}

} // namespace
