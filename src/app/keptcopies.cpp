#include "app/keptcopies.h"

#include "app/newcontent.h"
#include "app/storing.h"

#include <QDateTime>
#include <QDebug>
#include <QDir>
#include <QRegularExpression>
#include <QStandardPaths>

#include <algorithm>
#include <cerrno>

namespace {

constexpr int mostTries = 1000; // names of one copy, a millisecond apart

QString nameOf(KeptCopies::Occasion occasion)
{
    switch (occasion) {
    case KeptCopies::Occasion::anew:
        return QStringLiteral("new");
    case KeptCopies::Occasion::open:
        return QStringLiteral("open");
    case KeptCopies::Occasion::tab:
        return QStringLiteral("tab");
    case KeptCopies::Occasion::close:
        return QStringLiteral("close");
    case KeptCopies::Occasion::end:
        return QStringLiteral("end");
    case KeptCopies::Occasion::other:
        break;
    }
    return QStringLiteral("other");
}

/// The copies in the folder, the oldest first; what the user has put there by himself is none.
QFileInfoList copiesIn(const QString &folder)
{
    static const QRegularExpression copy(
        QStringLiteral("^\\d{8}_\\d{6}_\\d{3}_(new|open|tab|close|end|other)\\.scene$"));
    QFileInfoList copies = QDir(folder).entryInfoList({QStringLiteral("*.scene")}, QDir::Files, QDir::Name);
    copies.removeIf([](const QFileInfo &file) { return !copy.match(file.fileName()).hasMatch(); });
    return copies;
}

bool holds(const QFileInfo &copy, const QByteArray &content)
{
    if (copy.size() != content.size())
        return false;
    QFile file(copy.filePath());
    return file.open(QIODevice::ReadOnly) && file.readAll() == content;
}

} // namespace

QString KeptCopies::usualFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation) +
           QStringLiteral("/Fablegrid/Kept");
}

KeptCopies::Kept KeptCopies::keep(const QByteArray &content, Occasion occasion) const
{
    if (const QString same = sameAs(content); !same.isEmpty())
        return {same, {}};
    Kept kept = store(content, occasion);
    if (kept.trouble.isEmpty())
        dropOldest(kept.path);
    else
        qWarning() << "Failed to keep a copy:" << kept.path << kept.trouble;
    return kept;
}

/// The newest copy of the same bytes, empty if there is none.
QString KeptCopies::sameAs(const QByteArray &content) const
{
    const QFileInfoList copies = copiesIn(folder);
    const auto same = std::find_if(copies.crbegin(), copies.crend(),
                                   [&content](const QFileInfo &copy) { return holds(copy, content); });
    return same == copies.crend() ? QString() : same->filePath();
}

KeptCopies::Kept KeptCopies::store(const QByteArray &content, Occasion occasion) const
{
    QDir().mkpath(folder);
    QDateTime moment = QDateTime::currentDateTime();
    const auto path = [&] {
        return folder + QLatin1Char('/') + moment.toString(QStringLiteral("yyyyMMdd_HHmmss_zzz_")) +
               nameOf(occasion) + QStringLiteral(".scene");
    };
    NewContent copy(path());
    if (!copy.open())
        return {path(), Storing::reason(errno)};
    if (const QString trouble = copy.write(content); !trouble.isEmpty())
        return {path(), trouble};
    for (int i = 0; i < mostTries; ++i) {
        switch (copy.takeFreeName(path())) {
        case NewContent::Naming::done:
            return {path(), {}};
        case NewContent::Naming::failed:
            return {path(), copy.trouble()};
        case NewContent::Naming::taken:
            moment = moment.addMSecs(1); // another window's, of the same moment
        }
    }
    return {path(), Storing::reason(EEXIST)};
}

/// The new one stays even if the clock was set back and its name is the oldest.
void KeptCopies::dropOldest(const QString &newest) const
{
    QFileInfoList copies = copiesIn(folder);
    for (qsizetype i = 0, surplus = copies.size() - most; i < surplus; ++i) {
        if (copies.at(i).filePath() != newest)
            QFile::remove(copies.at(i).filePath());
    }
}
