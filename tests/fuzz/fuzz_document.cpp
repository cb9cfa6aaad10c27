#include "app/badfiles.h"

#include <QApplication>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace {

// What costs seconds a file and shows nothing that a smaller one does not.
constexpr qint32 mostTabs = 12;
constexpr std::size_t mostEditedEvents = 50;
constexpr std::size_t mostDrawnEvents = 20;
constexpr int longOnesSkipped = 64; // one of so many is tried

std::size_t eventCount(const DocumentModel::Document &document)
{
    std::size_t count = 0;
    for (const DocumentModel::Tab &tab : document.tabs)
        count += tab.events.size();
    return count;
}

/// The same file with few tabs.
QByteArray withFewTabs(QByteArray bytes)
{
    const qint32 stored = DocumentModel::Bytes(bytes).whole();
    if (std::min<qint64>(stored, DocumentModel::mostTabs(bytes.size())) > mostTabs)
        bytes.replace(0, 4, intBytes(stored % mostTabs));
    return bytes;
}

/// The application and its window. Never destroyed: the fuzzer leaves by exit(), where Qt's own globals go
/// first.
class Session
{
public:
    Session()
    {
        opener.window().resize(320, 240);
        opener.window().show();
        draw();
    }

    QString problemOf(const QByteArray &bytes)
    {
        const DocumentModel::Document document = DocumentModel::read(bytes);
        const std::size_t events = eventCount(document);
        const bool isLong = events > mostEditedEvents;
        // A damaged count makes a thousand events, and every second mutation damages a count.
        if (isLong && qChecksum(bytes) % longOnesSkipped != 0)
            return {};
        const QString problem = isLong ? opener.open(bytes) : opener.check(bytes);
        if (!problem.isEmpty() || events > mostDrawnEvents)
            return problem;
        draw();
        const QStringList warnings = opener.takeWarnings();
        return warnings.isEmpty() ? QString()
                                  : QStringLiteral("drawing warns: ") + warnings.join(QLatin1Char('\n'));
    }

private:
    void draw()
    {
        QCoreApplication::processEvents();
        opener.window().grab();
    }

    /// Without a screen, whatever the environment says.
    static int &arguments()
    {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        qputenv("QT_QPA_PLATFORMTHEME", "");
        static int count = 0;
        return count;
    }

    PrivateHome home;
    QApplication app{arguments(), nullptr};
    FileOpener opener;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size)
{
    static Session &session = *new Session;
    const QString problem =
        session.problemOf(withFewTabs(QByteArray(reinterpret_cast<const char *>(data), qsizetype(size))));
    if (!problem.isEmpty()) {
        std::fprintf(stderr, "%s\n", qPrintable(problem));
        std::abort();
    }
    return 0;
}
