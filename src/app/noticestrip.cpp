#include "app/noticestrip.h"

#include <QAbstractScrollArea>
#include <QAccessible>
#include <QAccessibleWidget>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QTabWidget>
#include <QToolButton>

namespace {

const QColor failureGround(112, 32, 32);
const QColor newsGround(30, 70, 50);
const QColor letters(255, 255, 255);
constexpr int buttonSize = 28;
constexpr int margin = 4;

QString styleFor(const QColor &ground)
{
    // The form's sheets colour whatever stands in the tab widget, so each part is named.
    return QStringLiteral("NoticeStrip { background-color: %1; border: none; }"
                          "NoticeStrip QLabel { background: transparent; color: %2; }")
        .arg(ground.name(), letters.name());
}

QString styleOfTheButton()
{
    return QStringLiteral("QToolButton { background: transparent; color: %1; border: 1px solid transparent; "
                          "font-size: 16px; }"
                          "QToolButton:hover { border-color: %1; }")
        .arg(letters.name());
}

/// A path has no spaces at which a line could end.
QString breakable(const QString &text)
{
    constexpr QChar mayBreak(0x200B);
    QString broken = text;
    return broken.replace(QLatin1Char('/'), QStringLiteral("/") + mayBreak);
}

/// An alert is read out as soon as it comes up.
QAccessibleInterface *alertFor(const QString &className, QObject *object)
{
    auto *strip = qobject_cast<NoticeStrip *>(object);
    return strip && className == QLatin1String(NoticeStrip::staticMetaObject.className())
               ? new QAccessibleWidget(strip, QAccessible::AlertMessage)
               : nullptr;
}

} // namespace

NoticeStrip::NoticeStrip(QTabWidget *canvas)
    : QFrame(canvas), tabs(canvas), label(new QLabel(this)), button(new QToolButton(canvas))
{
    QAccessible::installFactory(alertFor); // Qt leaves out one that it has
    setObjectName(QStringLiteral("Notice"));
    setAutoFillBackground(true);
    label->setWordWrap(true);
    label->setTextFormat(Qt::PlainText); // a file may have any name
    button->setText(QString(QChar(0x00D7)));
    button->setAccessibleName(tr("Close this notice"));
    button->setToolTip(tr("Close this notice"));
    button->setFocusPolicy(Qt::NoFocus);
    button->setFixedSize(buttonSize, buttonSize);
    button->setStyleSheet(styleOfTheButton());
    button->hide();
    setAttribute(Qt::WA_TransparentForMouseEvents);
    label->setMinimumHeight(buttonSize);
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(12, margin, 2 * margin + buttonSize, margin);
    row->addWidget(label);
    connect(button, &QAbstractButton::clicked, this, &NoticeStrip::s_closed);
    tabs->installEventFilter(this);
    connect(tabs, &QTabWidget::currentChanged, this, &NoticeStrip::place);
}

NoticeStrip::~NoticeStrip() { delete button; }

void NoticeStrip::show(const QString &text, bool isFailure)
{
    setStyleSheet(styleFor(isFailure ? failureGround : newsGround));
    label->setText(breakable(text));
    setAccessibleName(text);
    place();
    QFrame::show();
    raise();
    button->raise();
    QAccessibleEvent alert(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

void NoticeStrip::showEvent(QShowEvent *event)
{
    button->show();
    QFrame::showEvent(event);
}

void NoticeStrip::hideEvent(QHideEvent *event)
{
    if (button)
        button->hide();
    QFrame::hideEvent(event);
}

bool NoticeStrip::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Resize || event->type() == QEvent::LayoutRequest)
        place();
    return QFrame::eventFilter(watched, event);
}

/// Above the scroll bars, which go on working.
void NoticeStrip::place()
{
    const auto *page = qobject_cast<QAbstractScrollArea *>(tabs->currentWidget());
    if (page)
        page->viewport()->installEventFilter(this); // it gets its size after the tab widget
    const QRect canvas = page ? QRect(page->viewport()->mapTo(tabs, QPoint()), page->viewport()->size())
                              : tabs->contentsRect();
    const int height = qMin(layout()->heightForWidth(canvas.width()), canvas.height());
    setGeometry(canvas.left(), canvas.bottom() + 1 - height, canvas.width(), height);
    button->move(geometry().right() + 1 - margin - buttonSize, geometry().top() + margin);
}
