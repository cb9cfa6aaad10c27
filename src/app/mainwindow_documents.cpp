#include "app/mainwindow.h"

#include "app/documentstream.h"
#include "app/durablefile.h"
#include "app/tabsaside.h"
#include "overviewer/overviewerscene.h"
#include "scene/nodegraphscene.h"
#include "ui_mainwindow.h"
#include "view/nodegraphview.h"

#include <QBuffer>
#include <QCloseEvent>
#include <QDateTime>
#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QPointer>
#include <QStandardPaths>

#include <algorithm>

namespace {

constexpr QMessageBox::StandardButtons answers = QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;

/// Every tab takes four bytes at least; a count beyond that is damage, and the empty tabs would never end.
qint64 mostTabsOf(const QFile &file)
{
    constexpr qint64 bytesOfATab = 4;
    constexpr qint64 spare = 16;
    return file.size() / bytesOfATab + spare;
}

} // namespace

QString MainWindow::askForSavePath()
{
    return QFileDialog::getSaveFileName(this, tr("Save Scene"), QString(), tr("Scene Files (*.scene)"));
}

void MainWindow::sl_saveFile()
{
    if (currentFilePath.isEmpty()) {
        const QString path = askForSavePath();
        if (path.isEmpty())
            return;
        currentFilePath = path;
    }
    saveTo(currentFilePath);
}

void MainWindow::sl_saveAsFile()
{
    const QString path = askForSavePath();
    if (path.isEmpty())
        return;
    currentFilePath = path;
    saveTo(currentFilePath);
}

void MainWindow::saveTo(const QString &path)
{
    DurableFile file(path);
    if (!file.open()) {
        qWarning() << "Couldn't open file for writing.";
        return;
    }
    qInfo() << "Tabs to save" << views.size();
    if (const QString trouble = file.replaceBy(document()); !trouble.isEmpty())
        qWarning() << "Couldn't write the scene file:" << path << trouble;
}

/// The bytes of all tabs.
QByteArray MainWindow::document() const
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    DocumentStream stream(&buffer);
    stream << qint32(views.size());
    for (const NodegraphView *view : views)
        view->nodegraphScene()->saveSceneToFile(stream);
    return bytes;
}

void MainWindow::clearTabs()
{
    overviewerScene->sl_recieveNodes({});
    for (const NodegraphView *view : views) {
        hideStoryOf(view->nodegraphScene());
        view->nodegraphScene()->clear();
    }
    const TabsAside aside(ui->Nodegraph, ui->Nodegraph->count());
    while (ui->Nodegraph->count() > 0) {
        const int place = aside.nextToGo();
        QWidget *page = ui->Nodegraph->widget(place);
        ui->Nodegraph->removeTab(place);
        delete page;
    }
    views.clear();
    currentFilePath.clear();
}

void MainWindow::sl_loadFile()
{
    const QString path =
        QFileDialog::getOpenFileName(this, tr("Load Scene"), QString(), tr("Scene Files (*.scene)"));
    if (!path.isEmpty())
        loadFrom(path);
}

void MainWindow::loadFrom(const QString &path)
{
    QFile file(path);
    // A pipe would let the program wait for whoever writes into it.
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly)) {
        qWarning() << "Couldn't open file for reading.";
        return;
    }
    qInfo() << "Clearing tabs";
    clearTabs();
    readDocument(file);
    currentFilePath = path;
}

void MainWindow::readDocument(QFile &file)
{
    DocumentStream stream(&file);
    qint32 count = 0;
    stream >> count;
    qInfo() << "Tabs to open" << count;
    const qint64 mostTabs = mostTabsOf(file);
    if (count > mostTabs) {
        qWarning() << "Damaged scene file:" << file.fileName() << "cannot hold" << count << "tabs, opening"
                   << mostTabs;
        count = static_cast<qint32>(mostTabs);
    }
    TabsAside aside(ui->Nodegraph, count);
    for (qint32 i = 0; i < count; ++i) {
        qInfo() << "Adding tabs";
        addNodeGraphTab();
        aside.tabWasAdded();
    }
    const std::vector<NodegraphView *> opened = views;
    for (NodegraphView *view : opened) {
        hideStoryOf(view->nodegraphScene());
        view->nodegraphScene()->loadSceneFromFile(stream);
        showStoryOf(view->nodegraphScene());
        view->viewport()->update();
    }
    if (NodegraphView *view = currentView())
        view->nodegraphScene()->updateStory();
}

void MainWindow::closeTab(int index)
{
    if (ui->Nodegraph->count() == 1)
        return;
    const QPointer<NodegraphView> closing = viewAt(index);
    const auto answer = QMessageBox::question(
        this, tr("Save Changes"),
        tr("This tab has unsaved changes. Do you want to save them before closing?"), answers);
    if (answer == QMessageBox::Cancel)
        return;
    if (answer == QMessageBox::Yes)
        sl_saveFile();
    if (!closing)
        return;
    const bool wasCurrent = closing == ui->Nodegraph->currentWidget();
    // By the view, not by the number: tabs may have been dragged, and `views` keeps the order of creation.
    ui->Nodegraph->removeTab(ui->Nodegraph->indexOf(closing));
    std::erase(views, closing.data());
    closing->deleteLater(); // the close button that was pressed belongs to this tab
    if (NodegraphView *view = currentView()) {
        view->nodegraphScene()->updateStory();
        if (wasCurrent)
            view->setFocus(); // or the keyboard would be on whatever comes next in the window
    }
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    const auto answer = QMessageBox::question(
        this, tr("Save Changes"),
        tr("The file has unsaved changes. Do you want to save them before closing?"), answers);
    if (answer == QMessageBox::Yes)
        sl_saveFile();
    event->setAccepted(answer != QMessageBox::Cancel);
}

void MainWindow::autosave()
{
    const QString documents =
        QDir::toNativeSeparators(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
    const QString folder = QStringLiteral("Fablegrid/Autosavedir");
    const QDir parent(documents);
    if (!parent.exists(folder))
        parent.mkpath(folder);
    const QString stamp = QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd_hhmmss"));
    const QString path = documents + QLatin1Char('/') + folder + QDir::separator() +
                         QStringLiteral("Yarnsmith_") + stamp + QStringLiteral("_autosaveVersion.scene");

    DurableFile file(path);
    if (!file.open()) {
        qWarning() << "Failed to open autosave file for writing:" << path;
        return;
    }
    if (const QString trouble = file.replaceBy(document()); !trouble.isEmpty()) {
        qWarning() << "Failed to write autosave file:" << path << trouble;
        return;
    }
    qInfo() << "Autosaved scene to:" << path;
}
