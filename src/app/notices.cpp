#include "app/notices.h"

#include "app/noticestrip.h"

#include <QTabWidget>

#include <algorithm>

Notices::Notices(QTabWidget *canvasTabs) : canvas(canvasTabs)
{
    newsTimer.setSingleShot(true);
    newsTimer.setInterval(newsStay);
    QObject::connect(&newsTimer, &QTimer::timeout, &newsTimer, [this] {
        news.clear();
        showNext();
    });
}

Notices::~Notices()
{
    if (strip)
        strip->disconnect();
}

void Notices::fail(Subject subject, const QString &text)
{
    std::erase_if(failures, [subject](const Failure &failure) { return failure.subject == subject; });
    failures.push_back({subject, text});
    news.clear();
    newsTimer.stop();
    showNext();
}

void Notices::succeed(Subject subject)
{
    if (std::erase_if(failures, [subject](const Failure &failure) { return failure.subject == subject; }) > 0)
        showNext();
}

bool Notices::hasFailed(Subject subject) const
{
    return std::any_of(failures.begin(), failures.end(),
                       [subject](const Failure &failure) { return failure.subject == subject; });
}

void Notices::tell(const QString &text)
{
    news = text;
    newsTimer.start();
    showNext();
}

/// The news come first: they go soon, and what failed is seen again then.
void Notices::showNext()
{
    const bool isNews = !news.isEmpty();
    const QString text = isNews || failures.empty() ? news : failures.back().text;
    if (text.isEmpty()) {
        if (strip) {
            strip->hide();
            strip->deleteLater(); // its own button may have been pressed
            strip.clear();
        }
        return;
    }
    if (!strip) {
        strip = new NoticeStrip(canvas);
        QObject::connect(strip, &NoticeStrip::s_closed, &newsTimer, [this] { close(); });
    }
    strip->show(text, !isNews);
}

void Notices::close()
{
    if (!news.isEmpty()) {
        news.clear();
        newsTimer.stop();
    } else if (!failures.empty()) {
        failures.pop_back();
    }
    showNext();
}
