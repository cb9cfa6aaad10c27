#pragma once

#include <QPointer>
#include <QString>
#include <QTimer>

#include <vector>

class NoticeStrip;
class QTabWidget;

/// What the user is to know and nobody has asked about, one thing at a time, at the lower edge of the canvas.
///
/// What failed stays until the same thing succeeds or the user closes it; good news goes by itself. The strip
/// is there only as long as it has something to say.
class Notices
{
public:
    enum class Subject { save, autosave, opening, damage, keeping, pasting };

    static constexpr int newsStay = 4000; // milliseconds

    /// `canvas` must outlive this object's last call.
    explicit Notices(QTabWidget *canvas);
    ~Notices();
    Notices(const Notices &) = delete;
    Notices &operator=(const Notices &) = delete;

    void fail(Subject subject, const QString &text);
    /// Takes away what was said of a failure.
    void succeed(Subject subject);
    /// Whether a failure of that is still to be told.
    bool hasFailed(Subject subject) const;
    void tell(const QString &news);

private:
    struct Failure
    {
        Subject subject;
        QString text;
    };

    void showNext();
    void close();

    QTabWidget *canvas;
    QPointer<NoticeStrip> strip;   // owned by the canvas
    std::vector<Failure> failures; // the newest last
    QString news;
    QTimer newsTimer;
};
