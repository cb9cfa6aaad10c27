#pragma once

#include <QMainWindow>
#include <QString>

#include <memory>
#include <vector>

class NodegraphScene;
class NodegraphView;
class Notices;
class OverViewerScene;
class SceneDocument;
class StoryTabs;
class WorkKeeper;

namespace Ui {
class MainWindow;
}

/// The program's window: the tabs, the panel they share, the document and the commands.
///
/// One document holds all tabs. There is no modified flag; the save questions are always asked.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit MainWindow(QWidget *parent = nullptr);
    ~MainWindow() override;

    void addNodeGraphTab();
    /// Asks whether to save, then closes the tab at that place of the tab bar. The last tab stays.
    void closeTab(int index);

    /// Writes all tabs to that path, whole or not at all; says in the log why a save did not succeed, and
    /// returns whether it did.
    bool saveTo(const QString &path);
    /// Replaces all tabs by those of the file, which becomes the document. A file that cannot be opened
    /// changes nothing; a damaged one gives what can be read of it. A copy of what was not saved is kept.
    void loadFrom(const QString &path);

    /// Keeps a copy of what is not saved: the program is about to be ended from outside.
    void keepForTheEnd();
    /// The same where nothing can be said of it: without a display, or without memory.
    void keepWithoutWords() const;

    /// The document's path, empty while it has none.
    QString currentFilePath() const;
    /// The tabs' views in the order of their creation, which is the order in which they are saved.
    const std::vector<NodegraphView *> &views() const;
    /// The panel; lives as long as this window.
    OverViewerScene *overviewerScene() const { return overviewerScene_; }

public slots:
    void addEventNode();
    void currentTabChanged(int index);
    void sl_saveFile();
    void sl_loadFile();
    void sl_saveAsFile();
    /// Discards all tabs without asking and forgets the document's path; a copy of what was not saved is
    /// kept.
    void clearTabs();
    void sl_undo();
    void sl_redo();
    void sl_copy();
    void sl_paste();
    void sl_cut();
    void sl_selectAll();
    void sl_deselectAll();
    void sl_setEndOfStory();
    void sl_setAsImportant();
    void sl_delete();
    void sl_frame();
    void zoomIn();
    void zoomOut();
    void zoom_50();
    void zoom_100();
    void zoom_200();
    void helpSupport();
    /// Writes all tabs into a new file in the autosave folder.
    void autosave();

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void setupOverviewer();
    void connectCommands();
    void startAutosave();
    QString askForSavePath();
    bool save();
    bool saveAs();
    void setZoom(double scale);

    OverViewerScene *overviewerScene_ = nullptr; // goes with the panel's view
    std::unique_ptr<Ui::MainWindow> ui;
    std::unique_ptr<StoryTabs> tabs;
    std::unique_ptr<SceneDocument> sceneDocument;
    std::unique_ptr<Notices> notices;
    std::unique_ptr<WorkKeeper> work;
    int autosaveInterval = 60000; // milliseconds
};
