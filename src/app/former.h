#pragma once

#include "app/filestamp.h"

#include <QString>

#include <optional>

/// What is to become of what stands in a file's place when new content comes there.
struct Former
{
    QString name; // that it gets in its folder if it is put by; if empty it goes, whatever it is
    std::optional<FileStamp> known; // it goes if it is still that; if there is none it never goes

    bool mustStay() const { return !name.isEmpty() && !known; }
};
