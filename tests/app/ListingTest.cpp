#include "FolderListing.h"
#include "ItemRecordValues.h"
#include "PathCodec.h"
#include "ScriptRequests.h"
#include "TestPrinting.h"

#include <QDir>
#include <QFile>
#include "TemporaryFolder.h"
#include <gtest/gtest.h>
#include <cerrno>
#include <cstddef>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <mutex>
#include <thread>
#include <utime.h>

namespace {

// Listings as scripts receive them.
class Listings : public testing::Test {
protected:
    Listings() : listing(dates, stop) {}

    QString make(const QString &relative, const QByteArray &contents = "x")
    {
        const QString path = root() + u'/' + relative;
        QDir().mkpath(QFileInfo(path).absolutePath());
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(contents);
        return path;
    }
    QString root() const { return dir.path(); }
    // Names of the rows, marked "+" when ticked and "-" when not, with their
    // folder relative to the root.
    QStringList rows(const QVariantList &records) const
    {
        QStringList names;
        for (const QVariant &record : records) {
            if (record.typeId() != QMetaType::QVariantMap) {
                names.append(QStringLiteral("<NO>"));
                continue;
            }
            const QVariantMap r = record.toMap();
            const QString location = r.value("location").toString().mid(root().size() + 1);
            names.append((r.value("include").toBool() ? "+" : "-") + location + r.value("original").toString());
        }
        names.sort();
        return names;
    }
    QVariantList parse(ListingRequest request)
    {
        request.root = root();
        if (request.paths.isEmpty())
            request.paths = {root()};
        return script(listing.list(request));
    }
    QVariantList script(const Listing &found) const
    {
        const QVariant value = ItemRecordValues::toScript(found, dates);
        return value.typeId() == QMetaType::Bool ? QVariantList{QStringLiteral("stopped")} : value.toList();
    }

    TemporaryFolder dir;
    std::atomic<bool> stop{true};
    const ClampedDates dates;
    FolderListing listing;
};

TEST_F(Listings, FiltersAndTheirBlankForms)
{
    make("a.jpg");
    make("b.JPG");
    make("c.png");
    make(".hidden.jpg");
    ListingRequest all;
    all.typeCodes = {""};
    all.extensions = {""};
    EXPECT_EQ(rows(parse(all)), QStringList({"+a.jpg", "+b.JPG", "+c.png"})) << "single blank filters are no filters";
    ListingRequest none;
    EXPECT_EQ(rows(parse(none)), QStringList({"+a.jpg", "+b.JPG", "+c.png"})) << "empty filters are no filters";
    ListingRequest jpg;
    jpg.extensions = {"jpg"};
    jpg.typeCodes = {""};
    EXPECT_EQ(rows(parse(jpg)), QStringList({"+a.jpg"})) << "extensions match exactly";
    jpg.listUnmatched = true;
    EXPECT_EQ(rows(parse(jpg)), QStringList({"+a.jpg", "-b.JPG", "-c.png"}));
    jpg.folderRows = true;
    EXPECT_EQ(rows(parse(jpg)), QStringList({"+a.jpg"})) << "unmatched files are not listed with folder rows";
}

// Type codes from the Finder information, a link's own and not its
// target's. Kernels before 6.13 (Debian 12's among them), and sandboxes that
// refuse system calls they do not know, cannot read attributes by folder:
// children that refuse the call list the same rows, read by path.
TEST_F(Listings, TypeCodesFromTheFinderInformation)
{
    const QString text = make("notes");
    make("other");
    unsigned char info[32] = {'T', 'E', 'X', 'T'};
    if (setxattr(PathCodec::encode(text).constData(), "user.com.apple.FinderInfo", info, 32, 0) != 0)
        GTEST_SKIP() << "no user extended attributes here";
    ASSERT_EQ(symlink("notes", PathCodec::encode(root() + "/link").constData()), 0);
    ListingRequest request;
    request.typeCodes = {"TEXT"};
    request.extensions = {""};
    const QStringList typed = {"+notes"};
    EXPECT_EQ(rows(parse(request)), typed) << "a link's own information, not its target's";
    for (const int refusal : {ENOSYS, EPERM}) {
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            constexpr unsigned getxattrat = 464;
            sock_filter filter[] = {
                BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
                BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, getxattrat, 0, 1),
                BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | (unsigned(refusal) & SECCOMP_RET_DATA)),
                BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
            };
            const sock_fprog program = {sizeof filter / sizeof filter[0], filter};
            if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 || prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) != 0)
                _exit(2);
            _exit(rows(parse(request)) == typed ? 0 : 1);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFEXITED(status));
        EXPECT_NE(WEXITSTATUS(status), 2) << "no system call filter here";
        EXPECT_EQ(WEXITSTATUS(status), 0) << "by path, after a refusal with " << refusal;
    }
    EXPECT_TRUE(FolderListing::fileTypeCode(0x54455854, {"JPEG", "TEXT"}));
    EXPECT_FALSE(FolderListing::fileTypeCode(0x54455854, {}));
    EXPECT_FALSE(FolderListing::fileTypeCode(0x54455854, {"TEX"}));
}

TEST_F(Listings, DescentFolderRowsAndTheRootNeverARow)
{
    make("top.txt");
    make("Sub/inner.txt");
    make("Sub/Deeper/deep.txt");
    ListingRequest flat;
    EXPECT_EQ(rows(parse(flat)), QStringList({"+top.txt"})) << "without descent only the root is read";
    ListingRequest deep;
    deep.descend = true;
    EXPECT_EQ(rows(parse(deep)), QStringList({"+Sub/Deeper/deep.txt", "+Sub/inner.txt", "+top.txt"}));
    deep.folderRows = true;
    EXPECT_EQ(rows(parse(deep)), QStringList({"+Sub", "+Sub/Deeper"})) << "folder rows, and files untick with no filter";
    const QVariantList records = parse(deep);
    for (const QVariant &record : records) {
        if (record.toMap().value("original") == QLatin1String("Sub")) {
            EXPECT_EQ(record.toMap().value("size"), QVariant(QStringLiteral("-")));
        }
    }
}

TEST_F(Listings, LongNamesMode)
{
    make(QString(32, u'L') + ".txt");
    make("short.txt");
    ListingRequest request;
    request.longNames = true;
    request.listUnmatched = true;
    EXPECT_EQ(rows(parse(request)), QStringList({"-" + QString(32, u'L') + ".txt", "-short.txt"}))
        << "with the folder-rows flag off no file is ticked in this mode";
    request.folderRows = true;
    EXPECT_EQ(rows(parse(request)), QStringList({"+" + QString(32, u'L') + ".txt"}));
}

TEST_F(Listings, DatesAreClampedAndSizesKept)
{
    const QString old = make("old.txt", "12345");
    const QString future = make("future.txt");
    const QString epoch = make("epoch.txt");
    const utimbuf oldTimes{0, -2208988800LL};        // 1900
    const utimbuf futureTimes{0, 4102444800LL};      // 2100
    const utimbuf epochTimes{0, 0};                  // 1970-01-01 00:00 GMT
    utime(PathCodec::encode(old).constData(), &oldTimes);
    utime(PathCodec::encode(future).constData(), &futureTimes);
    utime(PathCodec::encode(epoch).constData(), &epochTimes);
    EXPECT_EQ(ScriptRequests::fileInfo(listing.fileInfo(old), dates).value("modification").toDateTime().date(), QDate(1904, 1, 1));
    EXPECT_EQ(ScriptRequests::fileInfo(listing.fileInfo(future), dates).value("modification").toDateTime(), QDateTime(QDate(2040, 2, 6), QTime(5, 28, 15), Qt::UTC));
    EXPECT_EQ(ScriptRequests::fileInfo(listing.fileInfo(epoch), dates).value("modification").toDateTime(), QDateTime(QDate(1970, 1, 1), QTime(0, 0), Qt::LocalTime));
    EXPECT_EQ(ScriptRequests::fileInfo(listing.fileInfo(old), dates).value("file_size").toULongLong(), 5u);
    EXPECT_EQ(ScriptRequests::fileInfo(listing.fileInfo(old), dates).value("the_extension"), QVariant(QStringLiteral("txt")));
    const QVariantMap missing = ScriptRequests::fileInfo(listing.fileInfo(root() + "/missing"), dates);
    EXPECT_EQ(missing.value("creation").toDateTime().date(), QDate(1904, 1, 1));
    EXPECT_EQ(missing.value("file_size").toULongLong(), 0u);
    listing.metadata.dateTaken = true;
    listing.readMetadata = [](const QByteArray &, const Metadata::Request &) {
        Metadata::Values values;
        values.taken = DateTaken::atWallClock(QDateTime(QDate(2003, 4, 5), QTime(6, 7, 8)), -8 * 3600);
        return values;
    };
    const QDateTime taken = ScriptRequests::fileInfo(listing.fileInfo(old), dates).value("creation").toDateTime();
    EXPECT_EQ(taken, QDateTime(QDate(2003, 4, 5), QTime(6, 7, 8), Qt::OffsetFromUTC, -8 * 3600)) << "dates taken when chosen";
    EXPECT_EQ(taken.time(), QTime(6, 7, 8)) << "as the camera's clock read, wherever it is renamed";
    EXPECT_EQ(ScriptRequests::folderInfo(listing.folderInfo(root() + "/missing"), dates).value("modification").toDateTime().date(), QDate(1904, 1, 1));
}

// Dates taken are read for every file once, on several threads, and each
// lands on its own row; folders keep their own dates.
TEST_F(Listings, EachFilesDateTakenIsReadOnceAndLandsOnItsRow)
{
    for (int i = 0; i < 300; ++i)
        make(QStringLiteral("Photos/p%1.jpg").arg(i));
    make(QStringLiteral("Photos/Sub/inner.jpg"));
    std::mutex lock;
    QHash<QByteArray, int> reads;
    listing.metadata.dateTaken = true;
    listing.readMetadata = [&](const QByteArray &path, const Metadata::Request &) {
        {
            const std::lock_guard guard(lock);
            ++reads[path];
        }
        // Minutes after midnight as the photo's number, at +05:30.
        const int number = QFileInfo(QString::fromUtf8(path)).baseName().mid(1).toInt(); // "inner" is 0
        Metadata::Values values;
        values.taken = DateTaken::atWallClock(QDateTime(QDate(2020, 1, 1), QTime(0, 0).addSecs(60 * number)), 19800);
        return values;
    };
    ListingRequest request;
    request.root = root() + QStringLiteral("/Photos");
    request.paths = {request.root};
    request.descend = true;
    request.folderRows = true;
    request.extensions = {QStringLiteral("jpg")};
    const Listing found = listing.list(request);
    ASSERT_EQ(found.items.size(), 302u);
    EXPECT_EQ(reads.size(), 301) << "the folder row is not read";
    EXPECT_TRUE(std::all_of(reads.cbegin(), reads.cend(), [](int n) { return n == 1; }));
    for (const ItemRecord &row : found.items) {
        if (!row.size)
            continue;
        const QDateTime taken = ItemRecordValues::field(row, QStringLiteral("creation"), dates).toDateTime();
        EXPECT_EQ(taken.time(), QTime(0, 0).addSecs(60 * row.name.mid(1).section(u'.', 0, 0).toInt())) << row.name.toStdString();
        EXPECT_EQ(taken.offsetFromUtc(), 19800);
    }
}

TEST_F(Listings, LinksAreListedAsThemselves)
{
    make("Real/inside.txt");
    ASSERT_EQ(symlink(PathCodec::encode(root() + "/Real").constData(), PathCodec::encode(root() + "/link").constData()), 0);
    ListingRequest request;
    request.descend = true;
    EXPECT_EQ(rows(parse(request)), QStringList({"+Real/inside.txt", "+link"})) << "a link to a folder is not entered";
}

TEST_F(Listings, StopAtTheTopLevelAndInsideASubfolder)
{
    make("a.txt");
    make("Sub/b.txt");
    ListingRequest request;
    request.honourStop = true;
    request.descend = true;
    stop = false;
    EXPECT_TRUE(listing.list({{root()}, {}, {}, false, true, false, false, true, root()}).stopped);
    EXPECT_TRUE(stop.load()) << "the flag is set back";
    // A stop met inside the subfolder leaves NO in the parent's records.
    int calls = 0;
    listing.keepResponsive = [&] {
        if (++calls == 2) // inside Sub, before its first item
            stop = false;
    };
    request.paths = {root() + "/Sub", root() + "/a.txt"};
    const Listing found = listing.list(request);
    ASSERT_FALSE(found.stopped);
    EXPECT_EQ(rows(script(found)), QStringList({"+a.txt", "<NO>"}));
    // And the flag may be set from another thread.
    listing.keepResponsive = nullptr;
    std::thread([this] { stop = false; }).join();
    EXPECT_TRUE(listing.list(request).stopped);
}

TEST_F(Listings, SmallServices)
{
    make("a.txt");
    make(".dot");
    EXPECT_EQ(FolderListing::containerAndItemName("/x/y/z.txt"), QStringList({"z.txt", "/x/y/"}));
    EXPECT_EQ(FolderListing::directoryContents(root(), true).size(), 2);
    EXPECT_EQ(FolderListing::directoryContents(root(), false), QStringList({"a.txt"}));
    EXPECT_EQ(FolderListing::listFolder(root()), QStringList({root() + "/a.txt"}));
    EXPECT_EQ(FolderListing::listFolder(root() + "/"), QStringList({root() + "/a.txt"}));
}

TEST_F(Listings, NamesThatAreNotUtf8AreListedLosslessly)
{
    const QByteArray bytes = PathCodec::encode(root()) + "/raw\xff\xfe.txt";
    FILE *file = fopen(bytes.constData(), "w");
    ASSERT_NE(file, nullptr);
    fclose(file);
    const QVariantList records = parse(ListingRequest());
    ASSERT_EQ(records.size(), 1);
    const QVariantMap record = records[0].toMap();
    EXPECT_EQ(PathCodec::encode(record.value("location").toString() + record.value("original").toString()), bytes);
}

} // namespace
