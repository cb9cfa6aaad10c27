#include "app/faultstest.h"
#include "app/windowsupport.h"

#include <cstring>
#include <optional>

namespace {

using Call = FaultyFiles::Call;
using Fault = FaultyFiles::Fault;

enum class Save { again, asNew, autosave };

/// What goes wrong from the n-th call on.
struct Trouble
{
    const char *name;
    Call call;
    int error = 0; // 0: half of the bytes are taken
    bool lasting = false;
    int errorAfterwards = 0; // of all later calls
    const char *outcome; // of a save whose 1st, 2nd, ... call is hit, as a pattern: r reported, . harmless
};

// A write that fails once may be tried again, and so may giving a name to an unnamed temporary. The folder is
// synced, and it and the temporary are closed, when every byte is on the disk under its name. Before a save
// the file and the copy that is kept of it are read and closed.
const Trouble troubles[] = {
    {"I/O error at a write", Call::write, EIO, false, 0, "[r.]+"},
    {"I/O errors from a write on", Call::write, EIO, true, 0, "r+"},
    {"disk full for a write", Call::write, ENOSPC, false, 0, "[r.]+"},
    {"disk full from a write on", Call::write, ENOSPC, true, 0, "r+"},
    {"quota used up from a write on", Call::write, EDQUOT, true, 0, "r+"},
    {"interrupted write", Call::write, EINTR, false, 0, "\\.+"},
    {"half a write", Call::write, 0, false, 0, "\\.+"},
    {"half writes", Call::write, 0, true, 0, "\\.+"},
    {"half a write, then the disk is full", Call::write, 0, false, ENOSPC, "r+"},
    {"half a write, then I/O errors", Call::write, 0, false, EIO, "r+"},
    {"I/O error at a sync", Call::sync, EIO, false, 0, "r\\."},
    {"disk full from a sync on", Call::sync, ENOSPC, true, 0, "r\\."},
    {"quota used up from a sync on", Call::sync, EDQUOT, true, 0, "r\\."},
    {"I/O error at a close", Call::close, EIO, false, 0, "(\\.\\.)?r\\.\\."},
    {"disk full from a close on", Call::close, ENOSPC, true, 0, "(rr)?r\\.\\."},
    {"quota used up from a close on", Call::close, EDQUOT, true, 0, "(rr)?r\\.\\."},
    {"I/O error at a rename", Call::rename, EIO, false, 0, "\\.?rr?"},
    {"I/O errors from a rename on", Call::rename, EIO, true, 0, "r+"},
    {"disk full from a rename on", Call::rename, ENOSPC, true, 0, "r+"},
    {"quota used up from a rename on", Call::rename, EDQUOT, true, 0, "r+"},
};

const QString oldName = QStringLiteral("story.scene");
const QString autosaves = QStringLiteral("Fablegrid/Autosavedir");
// What stands in the file is kept already, so that the calls of a save are those of the file alone.
const QStringList laidOut{autosaves + QStringLiteral("/Yarnsmith_20200101_120000_autosaveVersion.scene"),
                          QStringLiteral("Fablegrid/Kept/20200101_120000_000_other.scene"), oldName};
const QByteArray oldBytes = documentBytes({{}, {}});

} // namespace

Q_DECLARE_METATYPE(Save)

/// Lets each call of a save go wrong, the first, then the second, until there is none left.
class tst_MainWindowFaults : public FaultsTest
{
    Q_OBJECT

private slots:
    void saveIsAllOrNothing_data();
    void saveIsAllOrNothing();

private:
    void prepare() override
    {
        QVERIFY(QDir().mkpath(folder() + QLatin1Char('/') + autosaves));
        QVERIFY(QDir().mkpath(path(QStringLiteral("Fablegrid/Kept"))));
    }
    QString folder() const { return home->filePath(QStringLiteral("Documents")); }
    QString path(const QString &name) const { return folder() + QLatin1Char('/') + name; }
    /// What was there before a save, so that the save must not touch any of it but its own file.
    void layOut() const;
    void save(Save way, const std::vector<Fault> &faults = {});
    /// Each tells what is not as it should be after a save.
    QString nothingWritten(Save way, const QString &reason) const;
    QString allWritten(Save way) const;

    QByteArray document;
    QString newName; // for the next Save As
    // Of the last save
    QStringList warnings;
    int hits = 0;
    int createdByName = 0;
};

void tst_MainWindowFaults::layOut() const
{
    for (const QString &name : filesBelow(folder()))
        QFile::remove(path(name));
    for (const QString &name : laidOut)
        QVERIFY(writeFile(path(name), oldBytes));
}

void tst_MainWindowFaults::save(Save way, const std::vector<Fault> &faults)
{
    std::optional<FaultyFiles> faulty;
    const auto arm = [&] {
        if (!faults.empty())
            faulty.emplace(folder(), faults);
    };
    const Warnings collected;
    if (way == Save::asNew) {
        const DialogAnswers answers({chooseFile(path(newName), arm)});
        window->sl_saveAsFile();
    } else {
        arm();
        way == Save::again ? window->sl_saveFile() : window->autosave();
    }
    hits = faulty ? faulty->hits() : 0;
    createdByName = faulty ? faulty->calls(Call::create) : 0;
    faulty.reset();
    warnings = collected.lines();
}

QString tst_MainWindowFaults::nothingWritten(Save way, const QString &reason) const
{
    const QString text = way == Save::autosave ? QStringLiteral("Failed to write autosave file:")
                                               : QStringLiteral("Couldn't write the scene file:");
    QString file = QRegularExpression::escape(path(way == Save::again ? oldName : newName));
    if (way == Save::autosave)
        file = QRegularExpression::escape(path(autosaves)) +
               QStringLiteral("/Yarnsmith_\\d{8}_\\d{6}_autosaveVersion\\.scene");
    const QRegularExpression expected(QRegularExpression::anchoredPattern(
        text + QStringLiteral(" \"%1\" \"%2\"").arg(file, QRegularExpression::escape(reason))));
    if (warnings.size() != 1 || !expected.match(warnings.front()).hasMatch())
        return QStringLiteral("Warned of: ") + warnings.join(QLatin1Char('\n'));
    if (filesBelow(folder()) != laidOut)
        return QStringLiteral("Left over: ") + filesBelow(folder()).join(QLatin1Char(' '));
    for (const QString &name : laidOut) {
        if (readFile(path(name)) != oldBytes)
            return name + QStringLiteral(" was changed");
    }
    return {};
}

QString tst_MainWindowFaults::allWritten(Save way) const
{
    if (!warnings.isEmpty())
        return QStringLiteral("Warned of: ") + warnings.join(QLatin1Char('\n'));
    QStringList names = filesBelow(folder());
    QStringList others = laidOut;
    QString written = oldName;
    if (way == Save::again) {
        others.removeAll(oldName);
    } else {
        for (const QString &name : laidOut)
            names.removeAll(name);
        written = names.value(0);
    }
    if (names.size() != (way == Save::again ? laidOut.size() : 1))
        return QStringLiteral("Left there: ") + names.join(QLatin1Char(' '));
    if (way == Save::asNew && written != newName)
        return QStringLiteral("Not the chosen name: ") + written;
    if (readFile(path(written)) != document)
        return written + QStringLiteral(" is not the document");
    for (const QString &name : others) {
        if (readFile(path(name)) != oldBytes)
            return name + QStringLiteral(" was changed");
    }
    return {};
}

void tst_MainWindowFaults::saveIsAllOrNothing_data()
{
    QTest::addColumn<Save>("way");
    QTest::addColumn<bool>("large");
    QTest::addColumn<bool>("unnamed");
    QTest::addColumn<int>("number");
    for (const auto &[wayName, way] : {std::pair("save", Save::again), std::pair("save as", Save::asNew),
                                       std::pair("autosave", Save::autosave)}) {
        for (const bool large : {false, true}) {
            for (const bool unnamed : {true, false}) {
                if (large && (way == Save::asNew || !unnamed))
                    continue; // the number of writes depends on the document alone
                for (int i = 0; i < int(std::size(troubles)); ++i)
                    QTest::addRow("%s, %s, %s: %s", wayName, large ? "large" : "small",
                                  unnamed ? "unnamed temporary" : "named temporary", troubles[i].name)
                        << way << large << unnamed << i;
            }
        }
    }
}

void tst_MainWindowFaults::saveIsAllOrNothing()
{
    QFETCH(const Save, way);
    QFETCH(const bool, large);
    QFETCH(const bool, unnamed);
    QFETCH(const int, number);
    const Trouble &trouble = troubles[number];
    document = large ? largeDocument() : smallDocument();
    makeWindow();
    QVERIFY(writeFile(path(oldName), document));
    {
        const Warnings none;
        window->loadFrom(path(oldName));
        QCOMPARE(none.lines(), QStringList());
    }

    QString outcome;
    for (int nth = 1; nth < 100; ++nth) {
        layOut();
        newName = QStringLiteral("new%1.scene").arg(nth);
        std::vector<Fault> faults{{trouble.call, nth, trouble.error, trouble.lasting}};
        if (trouble.errorAfterwards)
            faults.push_back({trouble.call, nth + 1, trouble.errorAfterwards, true});
        if (!unnamed)
            faults.push_back({Call::createUnnamed, 1, EOPNOTSUPP, true});
        save(way, faults);
        const bool clean = hits == 0;
        if (warnings.isEmpty()) {
            QCOMPARE(allWritten(way), QString());
        } else {
            QVERIFY2(!clean, qPrintable(warnings.join(QLatin1Char('\n'))));
            const int error = trouble.error ? trouble.error : trouble.errorAfterwards;
            QCOMPARE(nothingWritten(way, QString::fromLocal8Bit(std::strerror(error))), QString());
        }
        QCOMPARE(window->currentFilePath(), path(way == Save::asNew ? newName : oldName));
        QVERIFY(unnamed || createdByName == 1);
        if (clean)
            break;
        outcome += warnings.isEmpty() ? QLatin1Char('.') : QLatin1Char('r');

        if (warnings.isEmpty())
            layOut(); // or an autosave of the next second would be a second file
        save(way == Save::asNew ? Save::again : way);
        QCOMPARE(allWritten(way), QString());
    }
    QCOMPARE(hits, 0);
    const QRegularExpression expected(QRegularExpression::anchoredPattern(QLatin1String(trouble.outcome)));
    QVERIFY2(expected.match(outcome).hasMatch(), qPrintable(outcome));
}

QTEST_MAIN(tst_MainWindowFaults)
#include "tst_mainwindow_faults.moc"
