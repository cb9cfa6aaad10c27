#pragma once

#include <QDataStream>

/// The stream of a scene document. The one place where its version is named, so that files stay readable
/// whichever Qt the program is built with.
class DocumentStream : public QDataStream
{
public:
    /// `device` must be open and outlive the stream.
    explicit DocumentStream(QIODevice *device);
};
