#include "app/keptcopies.h"

#include "app/newcontent.h"
#include "app/storing.h"

#include <QDateTime>
#include <QDebug>
#include <QDir>
#include <QStandardPaths>

#include <algorithm>
#include <array>
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

QString fileNameOf(const QDateTime &moment, KeptCopies::Occasion occasion)
{
    return moment.toString(QStringLiteral("yyyyMMdd_HHmmss_zzz_")) + nameOf(occasion) +
           QStringLiteral(".scene");
}

/// By hand: when a copy is kept as the program exits, what Qt has for patterns may be gone.
bool isOfACopy(const QString &name)
{
    using Occasion = KeptCopies::Occasion;
    static constexpr std::array<Occasion, 6> occasions{Occasion::anew,  Occasion::open, Occasion::tab,
                                                       Occasion::close, Occasion::end,  Occasion::other};
    const QLatin1String form("00000000_000000_000_"); // a nought for each digit
    if (name.size() < form.size())
        return false;
    for (qsizetype i = 0; i < form.size(); ++i) {
        const QChar sign = name.at(i);
        const bool fits = form.at(i) == u'0' ? sign >= u'0' && sign <= u'9' : sign == form.at(i);
        if (!fits)
            return false;
    }
    const QStringView ending = QStringView(name).sliced(form.size());
    return std::any_of(occasions.begin(), occasions.end(), [ending](Occasion occasion) {
        return ending == QString(nameOf(occasion) + QStringLiteral(".scene"));
    });
}

/// The copies in the folder, the oldest first; what the user has put there by himself is none.
QFileInfoList copiesIn(const QString &folder)
{
    QFileInfoList copies = QDir(folder).entryInfoList(QDir::Files, QDir::Name);
    copies.removeIf([](const QFileInfo &file) { return !isOfACopy(file.fileName()); });
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

QString KeptCopies::nameNow(Occasion occasion) { return fileNameOf(QDateTime::currentDateTime(), occasion); }

void KeptCopies::beReady()
{
    // The calendars are what Qt would make late, and take away early.
    nameNow(Occasion::end);
}

KeptCopies::Kept KeptCopies::keep(const QByteArray &content, Occasion occasion) const
{
    const Same same = sameAs(content);
    if (same.isNewest)
        return {same.path, {}};
    Kept kept = store(content, occasion);
    if (kept.trouble.isEmpty()) {
        // An older one could be the next to be dropped.
        if (!same.path.isEmpty())
            QFile::remove(same.path);
        dropOldest(kept.path);
        return kept;
    }
    if (!same.path.isEmpty())
        return {same.path, {}};
    qWarning() << "Failed to keep a copy:" << kept.path << kept.trouble;
    return kept;
}

KeptCopies::Kept KeptCopies::keepBeside(const QString &path, const QByteArray &content)
{
    NewContent copy(path);
    if (!copy.open())
        return {path, Storing::reason(errno)};
    if (const QString trouble = copy.write(content); !trouble.isEmpty())
        return {path, trouble};
    const QString name = copy.stay();
    if (name.isEmpty())
        return {path, Storing::reason(errno)};
    return {name, {}};
}

/// The newest copy of the same bytes, without a path if there is none.
KeptCopies::Same KeptCopies::sameAs(const QByteArray &content) const
{
    const QFileInfoList copies = copiesIn(folder);
    const auto same = std::find_if(copies.crbegin(), copies.crend(),
                                   [&content](const QFileInfo &copy) { return holds(copy, content); });
    if (same == copies.crend())
        return {};
    return {same->filePath(), same == copies.crbegin()};
}

KeptCopies::Kept KeptCopies::store(const QByteArray &content, Occasion occasion) const
{
    QDir().mkpath(folder);
    QDateTime moment = QDateTime::currentDateTime();
    const auto path = [&] { return folder + QLatin1Char('/') + fileNameOf(moment, occasion); };
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
