#include "random/panelwatch.h"

#include "app/mainwindow.h"
#include "items/eventdata.h"
#include "items/node.h"
#include "items/nodedata.h"
#include "overviewer/overviewerscene.h"
#include "overviewer/ovnode.h"
#include "random/hands.h"
#include "scene/nodegraphscene.h"
#include "view/nodegraphview.h"

#include <QAbstractButton>
#include <QPainter>
#include <QPicture>
#include <QTabWidget>
#include <QVariant>

namespace {

// Notes of this file on what it has seen, kept in the objects themselves, whose addresses come and go.
constexpr char followedNote[] = "followed"; // of a tab's scene: its stories are heard of
constexpr char reportedNote[] = "reported"; // the text that the object last reported as changed
constexpr char seenNote[] = "seen";         // the text after the last step
constexpr char apartNote[] = "apart";       // of an entry: allowed to differ until it is refreshed

/// Whether the last step left a text that the object took for the one it had reported before. That happens
/// when the program has set another one in between, which is no report.
bool wentUnreported(const EventData *text)
{
    return text->property(seenNote).isValid() &&
           text->property(seenNote).toString() != text->getDescription() &&
           text->property(reportedNote).toString() == text->getDescription();
}

/// The entry keeps its own copy of the mark and shows it by what it paints.
bool isShownImportant(OvNode *entry)
{
    QPicture picture;
    QPainter painter(&picture);
    entry->paint(&painter, nullptr, nullptr);
    painter.end();
    return picture.boundingRect().isValid();
}

const NodegraphView *currentView(const MainWindow &window)
{
    const auto *tabs = window.findChild<QTabWidget *>(QStringLiteral("Nodegraph"));
    return dynamic_cast<const NodegraphView *>(tabs->currentWidget());
}

EventData *contentOf(OvNode *entry) { return dynamic_cast<EventData *>(entry->eventData()); }

} // namespace

/// Hears of stories, and of reported texts, from now on.
void PanelWatch::follow(const MainWindow &window, const Step &step)
{
    static const QString placeholder = QStringLiteral("Enter description");
    const bool mayBeLoaded = step.effects & Effect::documents;
    NodegraphScene *current = currentView(window) ? currentView(window)->nodegraphScene() : nullptr;
    for (const NodegraphView *view : window.views()) {
        NodegraphScene *scene = view->nodegraphScene();
        if (!scene->property(followedNote).isValid()) {
            scene->setProperty(followedNote, true);
            QObject::connect(scene, &NodegraphScene::s_updateStory, &context,
                             [this, scene] { published = scene; });
            // Opening ends with the story of the current tab, and so does the making of a first one.
            if (!published)
                published = current;
        }
        for (const Node *node : scene->nodes()) {
            EventData *content = node->payload()->eventContent();
            followText(content, mayBeLoaded ? content->getDescription() : placeholder);
        }
    }
    for (OvNode *entry : window.overviewerScene()->ovNodes())
        followText(contentOf(entry), placeholder);
    strayed = published != current && (strayed || step.effects & Effect::strays);
}

/// An object that is new holds `reported` as its last report.
void PanelWatch::followText(EventData *text, const QString &reported)
{
    if (text->property(reportedNote).isValid())
        return;
    text->setProperty(reportedNote, reported);
    QObject::connect(text, &EventData::s_isChanged, text,
                     [text] { text->setProperty(reportedNote, text->getDescription()); });
}

QString PanelWatch::fault(const MainWindow &window, const Step &step)
{
    follow(window, step);
    const NodegraphView *current = currentView(window);
    if (!strayed && published != (current ? current->nodegraphScene() : nullptr))
        return QStringLiteral("the panel is not told of the current tab");
    const bool filtered = window.findChild<QAbstractButton *>(QStringLiteral("F1_button"))->isChecked();
    std::vector<const Node *> listed;
    if (published) {
        for (const Node *node : published->story()) {
            if (!filtered || node->isImportant())
                listed.push_back(node);
        }
    }
    const std::vector<OvNode *> &entries = window.overviewerScene()->ovNodes();
    if (entries.size() != listed.size())
        return QStringLiteral("the panel lists %1 events of %2").arg(entries.size()).arg(listed.size());
    double y = 0;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        QString fault = faultOfEntry(entries[i], listed[i]);
        if (fault.isEmpty() && entries[i]->pos() != QPointF(0, y))
            fault = QStringLiteral("is not where the entry above ends");
        if (!fault.isEmpty())
            return QStringLiteral("entry %1 of event %2 %3").arg(i).arg(listed[i]->getIndex()).arg(fault);
        y = int(5 + entries[i]->boundingRect().height() + y);
    }
    for (const NodegraphView *view : window.views()) {
        for (const Node *node : view->nodegraphScene()->nodes()) {
            EventData *content = node->payload()->eventContent();
            content->setProperty(seenNote, content->getDescription());
        }
    }
    for (OvNode *entry : entries)
        contentOf(entry)->setProperty(seenNote, contentOf(entry)->getDescription());
    return {};
}

QString PanelWatch::faultOfEntry(OvNode *entry, const Node *node)
{
    if (entry->getIndex() != node->getIndex())
        return QStringLiteral("has the index %1").arg(entry->getIndex());
    if (isShownImportant(entry) != node->isImportant())
        return QStringLiteral("has the wrong importance");
    return faultOfText(node->payload()->eventContent(), contentOf(entry));
}

QString PanelWatch::faultOfText(const EventData *ofNode, EventData *ofEntry)
{
    if (ofNode->getDescription() == ofEntry->getDescription()) {
        ofEntry->setProperty(apartNote, false);
        return {};
    }
    if (wentUnreported(ofNode) || wentUnreported(ofEntry))
        ofEntry->setProperty(apartNote, true);
    if (ofEntry->property(apartNote).toBool())
        return {};
    return QStringLiteral("says '%1' instead of '%2'")
        .arg(ofEntry->getDescription(), ofNode->getDescription());
}
