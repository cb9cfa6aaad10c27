#pragma once

#include "app/mainwindow.h"
#include "app/programtest.h"
#include "items/eventdata.h"
#include "items/node.h"
#include "items/nodedata.h"
#include "items/stlineedit.h"
#include "overviewer/overviewerscene.h"
#include "overviewer/ovnode.h"
#include "scene/nodegraphscene.h"
#include "support/testsupport.h"
#include "view/nodegraphview.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPointer>
#include <QRegularExpression>
#include <QTabBar>
#include <QTabWidget>
#include <QTest>
#include <QTextCursor>
#include <QTextDocument>
#include <QTimer>
#include <QtEndian>

#include <bit>
#include <functional>
#include <utility>
#include <vector>

#ifdef Q_OS_UNIX
#include <csignal>
#include <sys/resource.h>
#include <unistd.h>
#endif

// What the tests of the main window share: answers to modal dialogs, bytes of a document, and short ways to
// its parts.

/// The captured lines without the platform's own.
inline QStringList programLines(const LogCapture &log)
{
    QStringList lines = log.lines();
    lines.removeAll(platformLine);
    return lines;
}

/// What a modal dialog showed when it came up.
struct SeenDialog
{
    const QWidget *parent = nullptr;
    QString title;
    // Message boxes
    QString text;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QMessageBox::StandardButtons buttons = QMessageBox::NoButton;
    bool hasDefaultButton = false;
    // File dialogs
    QStringList nameFilters;
    QString folder;
    QFileDialog::AcceptMode acceptMode = QFileDialog::AcceptOpen;
};

/// Answers the modal dialogs that come up during its lifetime, one answer each, in order.
///
/// A dialog without an answer is dismissed, and so is one that an answer did not end: no test hangs. That
/// fails the running test function in the end, unless it has asked for problem() itself.
class DialogAnswers
{
public:
    using Answer = std::function<void(QDialog *)>;

    explicit DialogAnswers(std::vector<Answer> inOrder = {}) : answers(std::move(inOrder))
    {
        QObject::connect(&poll, &QTimer::timeout, &poll, [this] { lookForDialog(); });
        poll.start(5);
    }
    ~DialogAnswers()
    {
        if (!isAsked)
            QCOMPARE(problem(), QString());
    }
    DialogAnswers(const DialogAnswers &) = delete;
    DialogAnswers &operator=(const DialogAnswers &) = delete;

    /// Empty if each answer had its dialog and each dialog its answer.
    QString problem() const
    {
        isAsked = true;
        if (!trouble.isEmpty())
            return trouble;
        return seenDialogs.size() < answers.size() ? QStringLiteral("a dialog did not come") : QString();
    }
    const std::vector<SeenDialog> &seen() const { return seenDialogs; }

private:
    void lookForDialog()
    {
        auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
        if (!dialog)
            return;
        if (dialog == current) {
            if (since.elapsed() > 5000)
                dismiss(dialog, QStringLiteral("its answer did not end the dialog "));
            return;
        }
        current = dialog;
        since.start();
        const std::size_t place = seenDialogs.size();
        seenDialogs.push_back(look(dialog));
        if (place >= answers.size()) {
            dismiss(dialog, QStringLiteral("nobody expected the dialog "));
            return;
        }
        // Queued: this timer rests while it is being served, and an answer may open a further dialog.
        QMetaObject::invokeMethod(
            dialog, [answer = answers[place], dialog] { answer(dialog); }, Qt::QueuedConnection);
    }

    void dismiss(QDialog *dialog, const QString &reason)
    {
        trouble += reason + dialog->windowTitle() + QLatin1Char('\n');
        dialog->reject();
    }

    static SeenDialog look(const QDialog *dialog)
    {
        SeenDialog seen;
        seen.parent = dialog->parentWidget();
        seen.title = dialog->windowTitle();
        if (const auto *box = qobject_cast<const QMessageBox *>(dialog)) {
            seen.text = box->text();
            seen.icon = box->icon();
            seen.buttons = box->standardButtons();
            seen.hasDefaultButton = box->defaultButton() != nullptr;
        }
        if (const auto *files = qobject_cast<const QFileDialog *>(dialog)) {
            seen.nameFilters = files->nameFilters();
            seen.folder = files->directory().absolutePath();
            seen.acceptMode = files->acceptMode();
        }
        return seen;
    }

    std::vector<Answer> answers;
    std::vector<SeenDialog> seenDialogs;
    QString trouble;
    mutable bool isAsked = false;
    QTimer poll;
    QPointer<QDialog> current;
    QElapsedTimer since;
};

/// Types the path into a file dialog and confirms it. `accepted` runs before the program gets the path.
inline DialogAnswers::Answer chooseFile(const QString &path, const std::function<void()> &accepted = {})
{
    return [path, accepted](QDialog *dialog) {
        auto *name = dialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
        if (!qobject_cast<QFileDialog *>(dialog) || !name)
            return;
        if (accepted)
            QObject::connect(dialog, &QDialog::accepted, dialog, accepted);
        name->setText(path);
        QTest::keyClick(name, Qt::Key_Return);
    };
}

/// Presses a button of a message box.
inline DialogAnswers::Answer press(QMessageBox::StandardButton button)
{
    return [button](QDialog *dialog) {
        auto *box = qobject_cast<QMessageBox *>(dialog);
        if (box && box->button(button))
            QTest::mouseClick(box->button(button), Qt::LeftButton);
    };
}

inline DialogAnswers::Answer pressEscape()
{
    return [](QDialog *dialog) { QTest::keyClick(dialog, Qt::Key_Escape); };
}

/// As the close button of the dialog's frame does.
inline DialogAnswers::Answer closeDialog()
{
    return [](QDialog *dialog) { dialog->close(); };
}

// Bytes of a document, put together without the program's own stream.

template <typename Unsigned>
QByteArray bigEndian(Unsigned value)
{
    QByteArray bytes(sizeof(Unsigned), '\0');
    qToBigEndian(value, bytes.data());
    return bytes;
}
inline QByteArray intBytes(int value) { return bigEndian(static_cast<quint32>(value)); }
inline QByteArray doubleBytes(double value) { return bigEndian(std::bit_cast<quint64>(value)); }
inline QByteArray textBytes(const QString &text)
{
    QByteArray bytes = intBytes(int(text.size()) * 2);
    for (const QChar unit : text)
        bytes += bigEndian(unit.unicode());
    return bytes;
}

/// One event as it stands in a document.
struct Record
{
    QString title;
    QPointF pos;
    int index = 0;
    int upstream = -1;
    bool endOfStory = false;
    bool important = false;
    QString description{};

    QByteArray bytes() const
    {
        return textBytes(QStringLiteral("Event")) + textBytes(title) + doubleBytes(pos.x()) +
               doubleBytes(pos.y()) + intBytes(index) + intBytes(upstream) + intBytes(endOfStory ? 1 : 0) +
               intBytes(important ? 1 : 0) + textBytes(description);
    }
};

inline QByteArray tabBytes(const std::vector<Record> &records)
{
    QByteArray bytes = intBytes(int(records.size()));
    for (const Record &record : records)
        bytes += record.bytes();
    return bytes;
}

inline QByteArray documentBytes(const std::vector<std::vector<Record>> &tabs)
{
    QByteArray bytes = intBytes(int(tabs.size()));
    for (const std::vector<Record> &records : tabs)
        bytes += tabBytes(records);
    return bytes;
}

inline QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArrayLiteral("cannot be read");
}

inline bool writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

#ifdef Q_OS_UNIX
/// No file can grow beyond that size during the lifetime of this object, as on a full disk.
class FullDisk
{
public:
    explicit FullDisk(rlim_t bytes)
    {
        formerAction = std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &former);
        const rlimit limit{bytes, former.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk()
    {
        setrlimit(RLIMIT_FSIZE, &former);
        std::signal(SIGXFSZ, formerAction);
    }
    FullDisk(const FullDisk &) = delete;
    FullDisk &operator=(const FullDisk &) = delete;

private:
    rlimit former{};
    void (*formerAction)(int) = SIG_DFL;
};
#endif

#if defined(Q_OS_LINUX) && !defined(FABLEGRID_SANITIZED)
#define FABLEGRID_CAN_LIMIT_MEMORY
/// The program gets that many bytes more than it has, and no others, during the lifetime of this object.
class LittleMemory
{
public:
    explicit LittleMemory(rlim_t more)
    {
        getrlimit(RLIMIT_AS, &former);
        const rlim_t pages = readFile(QStringLiteral("/proc/self/statm")).split(' ').front().toULongLong();
        const rlimit limit{pages * rlim_t(sysconf(_SC_PAGESIZE)) + more, former.rlim_max};
        setrlimit(RLIMIT_AS, &limit);
    }
    ~LittleMemory() { setrlimit(RLIMIT_AS, &former); }
    LittleMemory(const LittleMemory &) = delete;
    LittleMemory &operator=(const LittleMemory &) = delete;

private:
    rlimit former{};
};
#endif

// Short ways to the window's parts.

inline QTabWidget *tabsOf(const MainWindow &window)
{
    return window.findChild<QTabWidget *>(QStringLiteral("Nodegraph"));
}

inline QStringList tabTitles(const MainWindow &window)
{
    QStringList titles;
    for (int i = 0; i < tabsOf(window)->count(); ++i)
        titles << tabsOf(window)->tabText(i);
    return titles;
}

/// The scene of the tab that was made at that place, counted from 0 among the open ones.
inline NodegraphScene *sceneOf(const MainWindow &window, int place)
{
    return window.views().at(std::size_t(place))->nodegraphScene();
}

inline QAction *actionOf(const MainWindow &window, const char *name)
{
    return window.findChild<QAction *>(QString::fromLatin1(name));
}

inline QAbstractButton *buttonOf(const MainWindow &window, const char *name)
{
    return window.findChild<QAbstractButton *>(QString::fromLatin1(name));
}

/// Changes a text item's text as typing does.
inline void typeInto(const QGraphicsTextItem *item, const QString &text)
{
    QTextCursor cursor(item->document());
    cursor.select(QTextCursor::Document);
    cursor.insertText(text);
}

inline STLineEdit *descriptionOf(const Node *node)
{
    return node->payload()->eventContent()->descriptionItem();
}

inline STLineEdit *descriptionOf(OvNode *entry)
{
    return dynamic_cast<EventData *>(entry->eventData())->descriptionItem();
}

/// An event with these texts, added as the user adds one; it follows the current event, if there is one.
inline Node *addEvent(NodegraphScene *scene, const QString &title, const QString &description = {})
{
    scene->sl_addEventNode();
    Node *node = scene->nodes().back();
    node->setNodeName(title);
    typeInto(descriptionOf(node), description);
    return node;
}

/// What the panel lists, top first.
inline QStringList panelTexts(const MainWindow &window)
{
    QStringList texts;
    for (OvNode *entry : window.overviewerScene()->ovNodes())
        texts << descriptionOf(entry)->toPlainText();
    return texts;
}

inline QStringList titlesOf(const NodegraphScene *scene)
{
    QStringList titles;
    for (const Node *node : scene->nodes())
        titles << node->title();
    return titles;
}

/// The lines that tell how a document is saved and opened, without what the scenes say of their events.
inline QStringList documentLines(const LogCapture &log)
{
    const QRegularExpression wanted(QStringLiteral(
        "^(Tabs to save|Nodes to save|Clearing tabs|Tabs to open|Adding tabs|Fileopening|Nodes to open)"));
    return log.lines().filter(wanted);
}

/// Opens the file through the dialog; what went wrong with that, or nothing.
inline QString openFile(MainWindow &window, const QString &file)
{
    const DialogAnswers answers({chooseFile(file)});
    window.sl_loadFile();
    return answers.problem();
}

/// Saves under that path through the dialog; what went wrong with that, or nothing.
inline QString saveAs(MainWindow &window, const QString &file)
{
    const DialogAnswers answers({chooseFile(file)});
    window.sl_saveAsFile();
    return answers.problem();
}

/// Saves where the document already has its path; what went wrong with that, or nothing.
inline QString saveAgain(MainWindow &window)
{
    const DialogAnswers nothing;
    window.sl_saveFile();
    return nothing.problem();
}
