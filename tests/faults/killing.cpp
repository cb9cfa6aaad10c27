#include "faults/killing.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QThread>

#include <csignal>

namespace {

constexpr int patience = 10000; // milliseconds
constexpr int leastShare = 10;  // of the kills, in percent, that must fall into a write

QByteArray hashOf(const QByteArray &bytes)
{
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256);
}

QByteArray bytesOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Whether no thread of the process runs any more.
bool isHalted(qint64 process)
{
    const QDir tasks(QStringLiteral("/proc/%1/task").arg(process));
    const QStringList threads = tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString &thread : threads) {
        const QByteArray status = bytesOf(tasks.filePath(thread + QStringLiteral("/stat")));
        const char state = status.mid(status.lastIndexOf(')') + 2, 1).append(' ').front();
        if (state != 'T')
            return false;
    }
    return true;
}

} // namespace

Killing::Killing(const QString &folderOfFiles, unsigned seed)
    : folder(QFileInfo(folderOfFiles).canonicalFilePath()), random(seed)
{}

bool Killing::know(const QByteArray &document, const QString &name)
{
    return names.emplace(hashOf(document), name).second;
}

int Killing::instant(int most) { return std::uniform_int_distribution<int>(0, most)(random); }

bool Killing::isWriting(qint64 process) const
{
    const QDir descriptors(QStringLiteral("/proc/%1/fd").arg(process));
    const QFileInfoList all =
        descriptors.entryInfoList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
    for (const QFileInfo &each : all) {
        if (each.symLinkTarget().startsWith(folder.path() + QLatin1Char('/')))
            return true;
    }
    return false;
}

bool Killing::kill(QProcess &process)
{
    const auto id = static_cast<pid_t>(process.processId());
    if (process.state() != QProcess::Running || ::kill(id, SIGSTOP) != 0)
        return false;
    // A call into the system that was under way comes to its end first.
    for (int waited = 0; !isHalted(id) && waited < patience; ++waited)
        QThread::msleep(1);
    if (isWriting(id))
        ++whileWriting;
    ++kills;
    ::kill(id, SIGKILL);
    return process.waitForFinished(patience) && process.exitStatus() == QProcess::CrashExit &&
           process.exitCode() == SIGKILL;
}

bool Killing::count(const QString &path)
{
    const auto found = names.find(hashOf(bytesOf(path)));
    ++outcomes[found == names.end() ? QStringLiteral("damaged") : found->second];
    return found != names.end();
}

bool Killing::countLeftOver(const QString &path)
{
    ++leftOver;
    return names.count(hashOf(bytesOf(path))) == 1;
}

QString Killing::result() const
{
    QString text =
        QStringLiteral("%1 kills, %2 of them while a file was being written").arg(kills).arg(whileWriting);
    for (const auto &[name, times] : outcomes)
        text += QStringLiteral(", %1: %2").arg(name).arg(times);
    return text + QStringLiteral(", left under a temporary name: %1").arg(leftOver);
}

bool Killing::isTelling() const
{
    bool all = whileWriting * 100 >= kills * leastShare;
    for (const auto &[hash, name] : names)
        all = all && outcomes.count(name) == 1;
    return all;
}
