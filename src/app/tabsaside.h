#pragma once

#include <QtGlobal>

class QTabWidget;

/// Keeps a tab widget out of sight during its own lifetime if many tabs come or go in it: Qt lays all tabs
/// out anew for each one, which takes minutes with a thousand. With few tabs it does nothing.
///
/// Close buttons are laid out anew as well, for each one that comes. Of many tabs that come together each
/// gets its own when it is brought to the front for the first time.
class TabsAside
{
public:
    /// `count` tabs are to come or go. `tabWidget` must outlive this object.
    TabsAside(QTabWidget *tabWidget, qint64 count);
    /// Shows the tabs again, and gives the current one the keyboard that was taken away by hiding it.
    ~TabsAside();
    TabsAside(const TabsAside &) = delete;
    TabsAside &operator=(const TabsAside &) = delete;

    /// To be told of each tab that was added behind the others.
    void tabWasAdded();
    /// Which tab is to go next when all go: of many not the current one, or another page would be brought up.
    int nextToGo() const;

    /// Gives the tab at that place its close button if it was kept back; -1 is no tab.
    static void bringCloseButton(QTabWidget &tabWidget, int place);

private:
    QTabWidget *tabs; // null if they are few
};
