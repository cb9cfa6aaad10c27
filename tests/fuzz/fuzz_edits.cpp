#include "app/windowsupport.h"
#include "random/choices.h"
#include "random/sequence.h"

#include <QApplication>

#include <cstdio>
#include <cstdlib>
#include <memory>

// Edit sequences whose decisions are the fuzzer's bytes; the window is checked after every step. More bytes
// mean a longer sequence.

namespace {

constexpr int mostSteps = 400;
constexpr int sequencesAWindow = 100; // making one takes longer than a short sequence

/// The application and its home folder. Never destroyed: the fuzzer leaves by exit(), where Qt's own globals
/// go first.
struct Session
{
    /// Without a screen, whatever the environment says.
    static int &arguments()
    {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        qputenv("QT_QPA_PLATFORMTHEME", "");
        static int count = 0;
        return count;
    }

    MainWindow &window()
    {
        if (used++ % sequencesAWindow == 0) {
            shown = std::make_unique<MainWindow>();
            showForSequences(*shown);
        }
        return *shown;
    }

    PrivateHome home;
    QApplication app{arguments(), nullptr};
    std::unique_ptr<MainWindow> shown;
    int used = 0;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size)
{
    static Session &session = *new Session;
    Choices choices = Choices::fromBytes(QByteArray(reinterpret_cast<const char *>(data), qsizetype(size)));
    const QString fault = runSequence(session.window(), choices, mostSteps);
    if (!fault.isEmpty()) {
        std::fprintf(stderr, "%s\n", qPrintable(fault));
        std::abort();
    }
    return 0;
}
