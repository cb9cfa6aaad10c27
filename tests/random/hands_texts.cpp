#include "random/hands.h"

#include "app/windowsupport.h"
#include "items/stnodename.h"

namespace {

/// What a writer's keyboard gives, unit by unit where it does not fit into one.
const std::vector<QString> &pieces()
{
    static const std::vector<QString> all{
        QStringLiteral("a"),
        QStringLiteral("Z"),
        QStringLiteral(" "),
        QStringLiteral("<b>"),
        QStringLiteral("and then, "),
        QString(QChar(0x00e9)),
        QString::fromUtf8("\xf0\x9f\x90\x89"), // a dragon
        QString::fromUtf8("\xd7\xa9\xd7\x9c"), // from right to left
        QStringLiteral("e") + QChar(0x0301),   // a combining mark
        QString(QChar(0xd800)),                // half a character
        QStringLiteral("Enter description"),   // what a new event says
        QStringLiteral("wordwithoutend").repeated(8),
    };
    return all;
}

struct Key
{
    Qt::Key key;
    Qt::KeyboardModifiers modifiers;
};

const std::vector<Key> &editingKeys()
{
    static const std::vector<Key> all{
        {Qt::Key_Backspace, Qt::NoModifier}, {Qt::Key_Delete, Qt::NoModifier},
        {Qt::Key_Return, Qt::NoModifier},    {Qt::Key_Left, Qt::ShiftModifier},
        {Qt::Key_Home, Qt::NoModifier},      {Qt::Key_End, Qt::ShiftModifier},
        {Qt::Key_Z, Qt::ControlModifier},    {Qt::Key_Z, Qt::ControlModifier},
        {Qt::Key_Y, Qt::ControlModifier},    {Qt::Key_A, Qt::ControlModifier},
        {Qt::Key_C, Qt::ControlModifier},    {Qt::Key_X, Qt::ControlModifier},
        {Qt::Key_V, Qt::ControlModifier},    {Qt::Key_Backspace, Qt::ControlModifier},
    };
    return all;
}

} // namespace

QString Hands::anyText()
{
    QString text;
    for (int i = choices.below(6); i > 0; --i)
        text += choices.anyOf(pieces()) + (choices.oneIn(4) ? QStringLiteral("\n") : QString());
    return choices.oneIn(8) ? QStringLiteral("Enter description") : text;
}

void Hands::typeTitle()
{
    if (const Node *node = anyNode())
        typeInto(node->nameItem(), view());
}

void Hands::typeDescription()
{
    if (const Node *node = anyNode())
        typeInto(descriptionOf(node), view());
}

void Hands::typeOnPanel()
{
    OverViewerScene *panel = window.overviewerScene();
    if (!panel->ovNodes().empty())
        typeInto(descriptionOf(choices.anyOf(panel->ovNodes())), panel->views().constFirst());
}

/// Goes on in whichever text was being edited.
void Hands::typeOn()
{
    for (QGraphicsView *shownBy :
         {static_cast<QGraphicsView *>(view()), window.overviewerScene()->views().constFirst()}) {
        if (shownBy && shownBy->hasFocus())
            useKeys(shownBy, 1 + choices.below(5));
    }
}

void Hands::typeInto(QGraphicsTextItem *item, QGraphicsView *shownBy)
{
    step.effects = Effect::types;
    shownBy->setFocus(Qt::MouseFocusReason);
    if (held || choices.oneIn(2)) {
        item->setFocus();
    } else {
        // Another item may lie above the text and take the click.
        step.effects |= Effect::connects;
        mousePos = inSight(shownBy, item->mapToScene(item->boundingRect().center()));
        send(shownBy, QEvent::MouseButtonPress, mousePos, Qt::LeftButton, Qt::LeftButton);
        send(shownBy, QEvent::MouseButtonRelease, mousePos, Qt::LeftButton, Qt::NoButton);
    }
    useKeys(shownBy, 1 + choices.below(8));
}

void Hands::useKeys(QGraphicsView *shownBy, int count)
{
    const auto textInFocus = [shownBy] {
        return dynamic_cast<QGraphicsTextItem *>(shownBy->scene()->focusItem());
    };
    for (int i = 0; i < count && textInFocus(); ++i) {
        step.effects |= Effect::types;
        if (choices.oneIn(3)) {
            const Key key = choices.anyOf(editingKeys());
            QTest::keyClick(shownBy, key.key, key.modifiers);
        } else {
            QTest::sendKeyEvent(QTest::Click, shownBy, Qt::Key_unknown, choices.anyOf(pieces()),
                                Qt::NoModifier);
        }
        autosavePerhaps();
    }
}

/// All of a text at once, without a focus, as an input method or a drop does it.
void Hands::replaceText()
{
    const Node *node = anyNode();
    if (!node)
        return;
    step.effects = Effect::types;
    const QGraphicsTextItem *item =
        choices.oneIn(2) ? static_cast<QGraphicsTextItem *>(node->nameItem()) : descriptionOf(node);
    ::typeInto(item, anyText());
}
