#include "app/faultyfiles.h"
#include "app/noticestrip.h"
#include "app/windowsupport.h"
#include "faults/savedocuments.h"
#include "support/testsupport.h"

#include <cerrno>

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

/// The user may read and write, one other user may read, and nobody else anything.
QByteArray listForTwo()
{
    return littleEndian(quint32(2)) + listEntry(1, 6) + listEntry(2, 4, 1234) + listEntry(4, 0) +
           listEntry(16, 4) + listEntry(32, 0);
}

struct stat statusOf(const QString &path)
{
    struct stat status = {};
    lstat(qPrintable(path), &status);
    return status;
}

int modeOf(const QString &path) { return int(statusOf(path).st_mode & 07777U); }

bool setAttribute(const QString &path, const char *name, const QByteArray &value)
{
    return setxattr(qPrintable(path), name, value.constData(), std::size_t(value.size()), 0) == 0;
}

QByteArray attributeOf(const QString &path, const char *name)
{
    QByteArray value(1000, '\0');
    const ssize_t size = getxattr(qPrintable(path), name, value.data(), std::size_t(value.size()));
    return size < 0 ? QByteArray() : value.first(size);
}

} // namespace

/// Where a file may be written and not replaced, and what of the old one stays with the new.
class tst_MainWindowFaultsReplacing : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        failOnWarningsOfTheProgram();
        home = std::make_unique<PrivateHome>();
        QVERIFY(QDir().mkpath(path({})));
        QVERIFY(writeFile(path(QStringLiteral("prepared")), smallDocument()));
        window = std::make_unique<MainWindow>();
        window->loadFrom(path(QStringLiteral("prepared")));
        QVERIFY(QFile::remove(path(QStringLiteral("prepared"))));
        QVERIFY(writeFile(story(), "old"));
    }
    void cleanup()
    {
        window.reset();
        flushDeferredDeletes();
        home.reset();
    }

    void fileThatMayNotBeReplacedIsWrittenInPlace_data();
    void fileThatMayNotBeReplacedIsWrittenInPlace();
    void newContentStaysBesideAFileThatCannotBeWrittenEither();
    void whatIsNoFileIsRefused_data();
    void whatIsNoFileIsRefused();
    void folderIsSynced();
    void accessListStays();
    void lostAccessListMakesNoReaders();
    void listOfTheFolderMakesNoReaders();
    void attributesStay();
    void groupThatCannotStayMakesNoReaders_data();
    void groupThatCannotStayMakesNoReaders();
    void ownerStays();

private:
    QString path(const QString &name) const { return home->filePath(QStringLiteral("stories/")) + name; }
    QString story() const { return path(QStringLiteral("story.scene")); }
    QStringList save(const std::vector<Fault> &faults)
    {
        const Warnings warnings;
        const FaultyFiles faulty(home->filePath(QStringLiteral("stories")), faults);
        window->saveTo(story());
        for (int i = 0; i < int(faults.size()); ++i) {
            if (faulty.hits(i) == 0)
                return {QStringLiteral("Fault %1 was not met").arg(i)};
        }
        return warnings.lines();
    }

    std::unique_ptr<PrivateHome> home;
    std::unique_ptr<MainWindow> window;
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
    if (mknod(qPrintable(special), mode_t(kind) | 0600U, kind == S_IFCHR ? makedev(1, 3) : 0) != 0)
        QSKIP("only a superuser can make a device");
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

void tst_MainWindowFaultsReplacing::accessListStays()
{
    if (!setAttribute(story(), accessList, listForTwo()))
        QSKIP("there are no access lists on this disk");
    QCOMPARE(save({}), QStringList());
    QCOMPARE(readFile(story()), smallDocument());
    QCOMPARE(attributeOf(story(), accessList).toHex(), listForTwo().toHex());
    QCOMPARE(modeOf(story()), 0640); // the group's bits tell what the list gives at most
}

void tst_MainWindowFaultsReplacing::lostAccessListMakesNoReaders()
{
    if (!setAttribute(story(), accessList, listForTwo()))
        QSKIP("there are no access lists on this disk");
    QCOMPARE(save({{Call::setAttribute, 1, EOPNOTSUPP, true}}), QStringList());
    QCOMPARE(modeOf(story()), 0600);
}

// A new file gets the folder's list, the old one had none.
void tst_MainWindowFaultsReplacing::listOfTheFolderMakesNoReaders()
{
    if (!setAttribute(path({}), listOfNewFiles, listForTwo()))
        QSKIP("there are no access lists on this disk");
    QVERIFY(QFile::setPermissions(story(), QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup));
    QCOMPARE(save({}), QStringList());
    QCOMPARE(attributeOf(story(), accessList), QByteArray());
    QCOMPARE(modeOf(story()), 0640);
}

void tst_MainWindowFaultsReplacing::attributesStay()
{
    if (!setAttribute(story(), "user.comment", "the second draft"))
        QSKIP("there are no attributes on this disk");
    QCOMPARE(save({}), QStringList());
    QCOMPARE(readFile(story()), smallDocument());
    QCOMPARE(attributeOf(story(), "user.comment"), QByteArray("the second draft"));
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
    if (chown(qPrintable(story()), uid_t(-1), 54321) != 0)
        QSKIP("only a superuser can give a file to any group");
    QCOMPARE(chmod(qPrintable(story()), mode_t(before)), 0);
    QCOMPARE(save({{Call::giveAway, 1, EPERM, true}}), QStringList());
    QCOMPARE(readFile(story()), smallDocument());
    QCOMPARE(modeOf(story()), after);
}

void tst_MainWindowFaultsReplacing::ownerStays()
{
    if (chown(qPrintable(story()), 54321, 54322) != 0)
        QSKIP("only a superuser can give a file away");
    QCOMPARE(save({}), QStringList());
    QCOMPARE(readFile(story()), smallDocument());
    QCOMPARE(statusOf(story()).st_uid, uid_t(54321));
    QCOMPARE(statusOf(story()).st_gid, gid_t(54322));
}

QTEST_MAIN(tst_MainWindowFaultsReplacing)
#include "tst_mainwindow_faults_replacing.moc"
