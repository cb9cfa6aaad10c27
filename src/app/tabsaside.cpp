#include "app/tabsaside.h"

#include <QTabBar>
#include <QTabWidget>

namespace {
constexpr qint64 many = 100;
} // namespace

TabsAside::TabsAside(QTabWidget *tabWidget, qint64 count) : tabs(count > many ? tabWidget : nullptr)
{
    if (!tabs)
        return;
    tabs->hide();
    for (int i = 0; i < tabs->count(); ++i)
        tabs->setTabVisible(i, i == tabs->currentIndex());
}

TabsAside::~TabsAside()
{
    if (!tabs)
        return;
    for (int i = 0; i < tabs->count(); ++i)
        tabs->setTabVisible(i, true);
    tabs->show();
    if (QWidget *page = tabs->currentWidget())
        page->setFocus();
}

// Even a hidden bar looks for the place of each new tab, and takes the sizes of all that are not hidden by
// themselves. The first one stays: without a tab to be seen none would be current.
void TabsAside::tabWasAdded()
{
    if (tabs && tabs->count() > 1)
        tabs->setTabVisible(tabs->count() - 1, false);
}

int TabsAside::nextToGo() const
{
    if (!tabs)
        return 0;
    const int last = tabs->count() - 1;
    return last > 0 && last == tabs->currentIndex() ? last - 1 : last;
}
