#include "app/faultstest.h"
#include "app/noticestrip.h"
#include "app/windowsupport.h"

#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace {

using Call = FaultyFiles::Call;
using Fault = FaultyFiles::Fault;

constexpr const char *accessList = "system.posix_acl_access";
constexpr const char *listOfNewFiles = "system.posix_acl_default";
constexpr quint32 nobodyInParticular = 0xFFFFFFFF;

template <typename Unsigned>
QByteArray littleEndian(Unsigned value)
{
    QByteArray bytes(sizeof(Unsigned), '\0');
    qToLittleEndian(value, bytes.data());
    return bytes;
}

QByteArray listEntry(quint16 tag, quint16 rights, quint32 who = nobodyInParticular)
{
    return littleEndian(tag) + littleEndian(rights) + littleEndian(who);
}

/// For the user, one other user, the group, at most for these two, and for all others.
QByteArray listFor(quint16 user, quint16 other, quint16 group, quint16 most, quint16 others)
{
    return littleEndian(quint32(2)) + listEntry(1, user) + listEntry(2, other, 1234) + listEntry(4, group) +
           listEntry(16, most) + listEntry(32, others);
}

/// The user may read and write, one other user may read, and nobody else anything.
QByteArray listForTwo() { return listFor(6, 4, 0, 4, 0); }

struct stat statusOf(const QString &path)
{
    struct stat status = {};
    lstat(qPrintable(path), &status);
    return status;
}

int modeOf(const QString &path) { return int(statusOf(path).st_mode & 07777U); }

// Each returns 0, or what the system says of it.
int setAttribute(const QString &path, const char *name, const QByteArray &value)
{
    return setxattr(qPrintable(path), name, value.constData(), std::size_t(value.size()), 0) == 0 ? 0 : errno;
}

int giveTo(const QString &path, uid_t user, gid_t group)
{
    return chown(qPrintable(path), user, group) == 0 ? 0 : errno;
}

int makeSpecial(const QString &path, int kind)
{
    const dev_t device = kind == S_IFCHR ? makedev(1, 3) : 0;
    return mknod(qPrintable(path), mode_t(kind) | 0600U, device) == 0 ? 0 : errno;
}

// Where it is the system that does not allow something, there is nothing to be seen; anything else is a
// failure.
#define SKIP_WHERE_FORBIDDEN(outcome)                                                                        \
    do {                                                                                                     \
        const int error_ = (outcome);                                                                        \
        if (error_ == EPERM)                                                                                 \
            QSKIP("only a superuser can give files away");                                                   \
        QCOMPARE(error_, 0);                                                                                 \
    } while (false)
#define SKIP_WHERE_THERE_ARE_NONE(outcome)                                                                   \
    do {                                                                                                     \
        const int error_ = (outcome);                                                                        \
        if (error_ == ENOTSUP)                                                                               \
            QSKIP("there are no such attributes on this disk");                                              \
        QCOMPARE(error_, 0);                                                                                 \
    } while (false)

QByteArray attributeOf(const QString &path, const char *name)
{
    QByteArray value(1000, '\0');
    const ssize_t size = getxattr(qPrintable(path), name, value.data(), std::size_t(value.size()));
    return size < 0 ? QByteArray() : value.first(size);
}

} // namespace

/// Where a file may be written and not replaced, and what of the old one stays with the new.
class tst_MainWindowFaultsReplacing : public FaultsTest
{
    Q_OBJECT

private slots:
    void fileThatMayNotBeReplacedIsWrittenInPlace_data();
    void fileThatMayNotBeReplacedIsWrittenInPlace();
    void newContentStaysBesideAFileThatCannotBeWrittenEither();
    void whatIsNoFileIsRefused_data();
    void whatIsNoFileIsRefused();
    void folderIsSynced();
    void newFileIsWhatTheFolderSays_data();
    void newFileIsWhatTheFolderSays();
    void attributeStays_data();
    void attributeStays();
    void lostAccessListMakesNoReaders();
    void listOfTheFolderMakesNoReaders();
    void groupThatCannotStayMakesNoReaders_data();
    void groupThatCannotStayMakesNoReaders();
    void ownerStays();

private:
    void prepare() override
    {
        QVERIFY(QDir().mkpath(path({})));
        QVERIFY(writeFile(path(QStringLiteral("prepared")), smallDocument()));
        makeWindow();
        window->loadFrom(path(QStringLiteral("prepared")));
        QVERIFY(QFile::remove(path(QStringLiteral("prepared"))));
        QVERIFY(writeFile(story(), "old"));
    }
    QString path(const QString &name) const { return home->filePath(QStringLiteral("stories/")) + name; }
    QString story() const { return path(QStringLiteral("story.scene")); }
    QStringList save(const std::vector<Fault> &faults)
    {
        return warningsOf(path({}), faults, [this] { window->saveTo(story()); });
    }
};

void tst_MainWindowFaultsReplacing::fileThatMayNotBeReplacedIsWrittenInPlace_data()
{
    QTest::addColumn<int>("error");
    QTest::addColumn<bool>("unnamed");
    for (const bool unnamed : {true, false}) {
        const char *kind = unnamed ? "unnamed" : "named";
        QTest::addRow("sticky folder, %s temporary", kind) << EPERM << unnamed;
        QTest::addRow("mounted file, %s temporary", kind) << EBUSY << unnamed;
    }
}

void tst_MainWindowFaultsReplacing::fileThatMayNotBeReplacedIsWrittenInPlace()
{
    QFETCH(const int, error);
    QFETCH(const bool, unnamed);
    const ino_t before = statusOf(story()).st_ino;
    // An unnamed temporary gets its name by a call of the same kind.
    std::vector<Fault> faults{{Call::rename, unnamed ? 2 : 1, error, true}};
    if (!unnamed)
        faults.push_back({Call::createUnnamed, 1, EOPNOTSUPP, true});
    QCOMPARE(save(faults), QStringList());
    QCOMPARE(readFile(story()), smallDocument());
    QCOMPARE(statusOf(story()).st_ino, before);
    QCOMPARE(filesBelow(path({})), QStringList{QStringLiteral("story.scene")});
}

void tst_MainWindowFaultsReplacing::newContentStaysBesideAFileThatCannotBeWrittenEither()
{
    // The first write is that of the temporary.
    QCOMPARE(
        save({{Call::rename, 2, EBUSY, true}, {Call::write, 2, EIO}}),
        QStringList{
            QStringLiteral("Couldn't write the scene file: \"%1\" \"Input/output error\"").arg(story())});
    QCOMPARE(readFile(story()), QByteArray("old"));
    QStringList files = filesBelow(path({}));
    QCOMPARE(files.size(), 2);
    files.removeAll(QStringLiteral("story.scene"));
    QVERIFY2(files.front().startsWith(QStringLiteral("story.scene.")), qPrintable(files.front()));
    QCOMPARE(readFile(path(files.front())), smallDocument());
    const QString notice = window->findChild<NoticeStrip *>()->accessibleName();
    QVERIFY2(notice.contains(files.front()), qPrintable(notice));
}

void tst_MainWindowFaultsReplacing::whatIsNoFileIsRefused_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<bool>("throughLink");
    for (const bool link : {false, true}) {
        const char *way = link ? " through a link" : "";
        QTest::addRow("pipe%s", way) << int(S_IFIFO) << link;
        QTest::addRow("socket%s", way) << int(S_IFSOCK) << link;
        QTest::addRow("device%s", way) << int(S_IFCHR) << link;
    }
}

void tst_MainWindowFaultsReplacing::whatIsNoFileIsRefused()
{
    QFETCH(const int, kind);
    QFETCH(const bool, throughLink);
    const QString special = path(QStringLiteral("special"));
    const int error = makeSpecial(special, kind);
    if (error == EPERM && kind == S_IFCHR)
        QSKIP("only a superuser can make a device");
    QCOMPARE(error, 0);
    const QString name = throughLink ? path(QStringLiteral("link.scene")) : special;
    if (throughLink)
        QVERIFY(QFile::link(special, name));
    QTest::ignoreMessage(QtWarningMsg, "Couldn't open file for writing.");
    QVERIFY(!window->saveTo(name));
    QCOMPARE(int(statusOf(special).st_mode & S_IFMT), kind);
}

void tst_MainWindowFaultsReplacing::folderIsSynced()
{
    QVERIFY(writeFile(story(), smallDocument())); // or there would be a copy of what stood there, too
    const FaultyFiles counting(home->filePath(QString()), {});
    QVERIFY(window->saveTo(story()));
    QCOMPARE(counting.calls(Call::sync), 2); // the file, and the folder with its name
}

void tst_MainWindowFaultsReplacing::newFileIsWhatTheFolderSays_data()
{
    QTest::addColumn<QByteArray>("list");
    QTest::newRow("no list") << QByteArray();
    QTest::newRow("for two") << listForTwo();
    QTest::newRow("for the group") << listFor(7, 0, 5, 5, 0);
    QTest::newRow("for all") << listFor(7, 7, 7, 7, 7);
    QTest::newRow("for all but the group") << listFor(6, 0, 0, 7, 4);
    QTest::newRow("no more than a mode")
        << littleEndian(quint32(2)) + listEntry(1, 7) + listEntry(4, 5) + listEntry(32, 0);
}

// A temporary is made for the user alone, and on some disks without the folder's list.
void tst_MainWindowFaultsReplacing::newFileIsWhatTheFolderSays()
{
    QFETCH(const QByteArray, list);
    if (!list.isEmpty())
        SKIP_WHERE_THERE_ARE_NONE(setAttribute(path({}), listOfNewFiles, list));
    const QString usual = path(QStringLiteral("usual"));
    QVERIFY(writeFile(usual, "made by the system"));
    QVERIFY(QFile::remove(story()));
    QCOMPARE(save({}), QStringList());
    QCOMPARE(modeOf(story()), modeOf(usual));
    QCOMPARE(attributeOf(story(), accessList).toHex(), attributeOf(usual, accessList).toHex());
    // The kernel's temporaries without a name are not to be had everywhere.
    QVERIFY(QFile::remove(story()));
    QCOMPARE(save({{Call::createUnnamed, 1, EOPNOTSUPP, true}}), QStringList());
    QCOMPARE(modeOf(story()), modeOf(usual));
    QCOMPARE(attributeOf(story(), accessList).toHex(), attributeOf(usual, accessList).toHex());
}

void tst_MainWindowFaultsReplacing::attributeStays_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<int>("mode");
    // The group's bits tell what the list gives at most.
    QTest::newRow("access list") << QByteArray(accessList) << listForTwo() << 0640;
    QTest::newRow("comment") << QByteArray("user.comment") << QByteArray("the second draft") << 0600;
}

void tst_MainWindowFaultsReplacing::attributeStays()
{
    QFETCH(const QByteArray, name);
    QFETCH(const QByteArray, value);
    QFETCH(const int, mode);
    QCOMPARE(chmod(qPrintable(story()), 0600), 0);
    SKIP_WHERE_THERE_ARE_NONE(setAttribute(story(), name, value));
    QCOMPARE(save({}), QStringList());
    QCOMPARE(readFile(story()), smallDocument());
    QCOMPARE(attributeOf(story(), name).toHex(), value.toHex());
    QCOMPARE(modeOf(story()), mode);
}

void tst_MainWindowFaultsReplacing::lostAccessListMakesNoReaders()
{
    SKIP_WHERE_THERE_ARE_NONE(setAttribute(story(), accessList, listForTwo()));
    QCOMPARE(save({{Call::setAttribute, 1, EOPNOTSUPP, true}}), QStringList());
    QCOMPARE(modeOf(story()), 0600);
}

// A new file gets the folder's list, the old one had none.
void tst_MainWindowFaultsReplacing::listOfTheFolderMakesNoReaders()
{
    SKIP_WHERE_THERE_ARE_NONE(setAttribute(path({}), listOfNewFiles, listForTwo()));
    QVERIFY(QFile::setPermissions(story(), QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup));
    QCOMPARE(save({}), QStringList());
    QCOMPARE(attributeOf(story(), accessList), QByteArray());
    QCOMPARE(modeOf(story()), 0640);
}

void tst_MainWindowFaultsReplacing::groupThatCannotStayMakesNoReaders_data()
{
    QTest::addColumn<int>("before");
    QTest::addColumn<int>("after");
    QTest::newRow("for the group") << 0640 << 0600;
    QTest::newRow("not for the group") << 0604 << 0600;
    QTest::newRow("for all") << 0644 << 0644;
    QTest::newRow("written by the group") << 0664 << 0644;
}

void tst_MainWindowFaultsReplacing::groupThatCannotStayMakesNoReaders()
{
    QFETCH(const int, before);
    QFETCH(const int, after);
    SKIP_WHERE_FORBIDDEN(giveTo(story(), uid_t(-1), 54321));
    QCOMPARE(chmod(qPrintable(story()), mode_t(before)), 0);
    QCOMPARE(save({{Call::giveAway, 1, EPERM, true}}), QStringList());
    QCOMPARE(readFile(story()), smallDocument());
    QCOMPARE(modeOf(story()), after);
}

void tst_MainWindowFaultsReplacing::ownerStays()
{
    SKIP_WHERE_FORBIDDEN(giveTo(story(), 54321, 54322));
    QCOMPARE(save({}), QStringList());
    QCOMPARE(statusOf(story()).st_uid, uid_t(54321));
    QCOMPARE(statusOf(story()).st_gid, gid_t(54322));
}

QTEST_MAIN(tst_MainWindowFaultsReplacing)
#include "tst_mainwindow_faults_replacing.moc"
