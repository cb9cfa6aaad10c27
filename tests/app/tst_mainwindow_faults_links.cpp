#include "app/longruns.h"
#include "app/windowsupport.h"
#include "faults/savedocuments.h"
#include "support/testsupport.h"

#include <sys/stat.h>
#include <unistd.h>

namespace {

/// The bits of a file's mode that chmod can set.
int modeOf(const QString &path)
{
    struct stat status = {};
    return stat(qPrintable(path), &status) == 0 ? int(status.st_mode & 07777U) : -1;
}

/// What a link says, as it was written; empty if there is no link.
QString linkText(const QString &path)
{
    QByteArray text(4096, '\0');
    const ssize_t length = readlink(qPrintable(path), text.data(), std::size_t(text.size()));
    return length < 0 ? QString() : QFile::decodeName(text.left(int(length)));
}

/// Decides for its lifetime which permissions a new file gets.
class Umask
{
public:
    explicit Umask(mode_t mask) : former(umask(mask)) {}
    ~Umask() { umask(former); }
    Umask(const Umask &) = delete;
    Umask &operator=(const Umask &) = delete;

private:
    mode_t former;
};

} // namespace

/// A save makes a new file; what else belonged to the old one stays.
class tst_MainWindowFaultsLinks : public WindowTest
{
    Q_OBJECT

public:
    static void initMain() { keepFilesInMemory(); }

private slots:
    void linkStaysALink_data();
    void linkStaysALink();
    void otherNameOfTheFileKeepsTheOldText();
    void linkThatEndsNowhereIsReported_data();
    void linkThatEndsNowhereIsReported();
    void permissionsStay_data();
    void permissionsStay();
    void newFileFollowsTheUmask_data();
    void newFileFollowsTheUmask();
    void readOnlyFileIsLeftAlone();

private:
    void prepare() override
    {
        QVERIFY(QDir().mkpath(path(QStringLiteral("here"))));
        QVERIFY(QDir().mkpath(path(QStringLiteral("there"))));
        QVERIFY(writeFile(path(QStringLiteral("prepared")), smallDocument()));
        makeWindow();
        window->loadFrom(path(QStringLiteral("prepared")));
    }
    QString path(const QString &name) const { return home->filePath(QStringLiteral("stories/")) + name; }
};

void tst_MainWindowFaultsLinks::linkStaysALink_data()
{
    using Links = QList<std::pair<QString, QString>>; // each its text and its place
    QTest::addColumn<Links>("links");
    QTest::addColumn<bool>("dangling");
    const QString story = QStringLiteral("there/story.scene");
    const QString first = QStringLiteral("here/first.scene");
    const QString second = QStringLiteral("second.scene");
    for (const bool dangling : {false, true}) {
        const char *end = dangling ? "to nothing" : "to a file";
        QTest::addRow("absolute link %s", end) << Links{{QStringLiteral("%1") + story, first}} << dangling;
        QTest::addRow("relative link %s", end) << Links{{QStringLiteral("../") + story, first}} << dangling;
        QTest::addRow("two links %s", end)
            << Links{{QStringLiteral("%1") + story, second}, {QStringLiteral("../") + second, first}}
            << dangling;
        QTest::addRow("two relative links %s", end)
            << Links{{story, second}, {QStringLiteral("../") + second, first}} << dangling;
    }
}

void tst_MainWindowFaultsLinks::linkStaysALink()
{
    using Links = QList<std::pair<QString, QString>>;
    QFETCH(Links, links);
    QFETCH(const bool, dangling);
    const QString story = path(QStringLiteral("there/story.scene"));
    if (!dangling)
        QVERIFY(writeFile(story, "old"));
    for (auto &[text, place] : links) {
        text.replace(QStringLiteral("%1"), path({}));
        QCOMPARE(symlink(qPrintable(text), qPrintable(path(place))), 0);
    }
    const QStringList before = filesBelow(path({}));

    for (int i = 0; i < 2; ++i) {
        window->saveTo(path(links.last().second));
        QCOMPARE(readFile(story), smallDocument());
        QVERIFY(!QFileInfo(story).isSymLink());
        for (const auto &[text, place] : links)
            QCOMPARE(linkText(path(place)), text);
        QStringList after = filesBelow(path({}));
        after.removeAll(QStringLiteral("there/story.scene"));
        QStringList others = before;
        others.removeAll(QStringLiteral("there/story.scene"));
        for (const auto &link : links) {
            after.removeAll(link.second);
            others.removeAll(link.second);
        }
        QCOMPARE(after, others);
    }
}

void tst_MainWindowFaultsLinks::otherNameOfTheFileKeepsTheOldText()
{
    const QString story = path(QStringLiteral("here/story.scene"));
    const QString other = path(QStringLiteral("there/other.scene"));
    QVERIFY(writeFile(story, "old"));
    QCOMPARE(link(qPrintable(story), qPrintable(other)), 0);
    QVERIFY(window->saveTo(story));
    QCOMPARE(readFile(story), smallDocument());
    QCOMPARE(readFile(other), QByteArray("old"));
}

void tst_MainWindowFaultsLinks::linkThatEndsNowhereIsReported_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("missing folder") << QStringLiteral("../missing/story.scene");
    QTest::newRow("folder") << QStringLiteral("../there");
    QTest::newRow("circle") << QStringLiteral("link.scene");
}

void tst_MainWindowFaultsLinks::linkThatEndsNowhereIsReported()
{
    QFETCH(const QString, text);
    const QString link = path(QStringLiteral("here/link.scene"));
    QCOMPARE(symlink(qPrintable(text), qPrintable(link)), 0);
    QTest::ignoreMessage(QtWarningMsg, "Couldn't open file for writing.");
    window->saveTo(link);
    QCOMPARE(linkText(link), text);
    QCOMPARE(QDir(path(QStringLiteral("there"))).isEmpty(), true);
    QCOMPARE(filesBelow(path({})).filter(QStringLiteral("story")), QStringList());
}

void tst_MainWindowFaultsLinks::permissionsStay_data()
{
    QTest::addColumn<int>("mode");
    for (const int mode : {0600, 0640, 0644, 0660, 0664, 0666, 0700, 0755})
        QTest::addRow("%04o", unsigned(mode)) << mode;
}

void tst_MainWindowFaultsLinks::permissionsStay()
{
    QFETCH(const int, mode);
    const Umask umask(022);
    const QString story = path(QStringLiteral("here/story.scene"));
    QVERIFY(writeFile(story, "old"));
    QCOMPARE(chmod(qPrintable(story), mode_t(mode)), 0);
    for (int i = 0; i < 2; ++i) {
        window->saveTo(story);
        QCOMPARE(readFile(story), smallDocument());
        QCOMPARE(QString::number(modeOf(story), 8), QString::number(mode, 8));
    }
}

void tst_MainWindowFaultsLinks::newFileFollowsTheUmask_data()
{
    QTest::addColumn<int>("mask");
    QTest::addColumn<int>("mode");
    QTest::newRow("022") << 022 << 0644;
    QTest::newRow("027") << 027 << 0640;
    QTest::newRow("077") << 077 << 0600;
    QTest::newRow("002") << 002 << 0664;
}

void tst_MainWindowFaultsLinks::newFileFollowsTheUmask()
{
    QFETCH(const int, mask);
    QFETCH(const int, mode);
    const Umask umask{mode_t(mask)};
    const QString story = path(QStringLiteral("here/story.scene"));
    window->saveTo(story);
    QCOMPARE(QString::number(modeOf(story), 8), QString::number(mode, 8));
}

// The superuser may write what nobody may write.
void tst_MainWindowFaultsLinks::readOnlyFileIsLeftAlone()
{
    const QString story = path(QStringLiteral("here/story.scene"));
    QVERIFY(writeFile(story, "old"));
    QCOMPARE(chmod(qPrintable(story), 0444), 0);
    const bool mayWrite = access(qPrintable(story), W_OK) == 0;
    if (!mayWrite)
        QTest::ignoreMessage(QtWarningMsg, "Couldn't open file for writing.");
    window->saveTo(story);
    QCOMPARE(readFile(story), mayWrite ? smallDocument() : QByteArray("old"));
    QCOMPARE(QString::number(modeOf(story), 8), QStringLiteral("444"));
}

QTEST_MAIN(tst_MainWindowFaultsLinks)
#include "tst_mainwindow_faults_links.moc"
