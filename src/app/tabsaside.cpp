#include "app/tabsaside.h"

#include <QStyle>
#include <QTabBar>
#include <QTabWidget>
#include <QVariant>

namespace {
constexpr qint64 many = 100;

QTabBar::ButtonPosition closeSide(const QTabBar &bar)
{
    return QTabBar::ButtonPosition(
        bar.style()->styleHint(QStyle::SH_TabBar_CloseButtonPosition, nullptr, &bar));
}

/// Until then it belongs to the tab's page, and goes with it.
void keepCloseButtonBack(QTabWidget &tabWidget, int place)
{
    QTabBar *bar = tabWidget.tabBar();
    QWidget *button = bar->tabButton(place, closeSide(*bar));
    if (!button)
        return;
    bar->setTabButton(place, closeSide(*bar), nullptr);
    button->setParent(tabWidget.widget(place));
    bar->setTabData(place, QVariant::fromValue(button));
}

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
    if (!tabs || tabs->count() < 2)
        return;
    const int added = tabs->count() - 1;
    keepCloseButtonBack(*tabs, added);
    tabs->setTabVisible(added, false);
}

int TabsAside::nextToGo() const
{
    if (!tabs)
        return 0;
    const int last = tabs->count() - 1;
    return last > 0 && last == tabs->currentIndex() ? last - 1 : last;
}

void TabsAside::bringCloseButton(QTabWidget &tabWidget, int place)
{
    QTabBar *bar = tabWidget.tabBar();
    auto *button = bar->tabData(place).value<QWidget *>();
    if (!button)
        return;
    bar->setTabData(place, {});
    bar->setTabButton(place, closeSide(*bar), button);
}
