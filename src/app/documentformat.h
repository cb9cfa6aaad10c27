#pragma once

#include "scene/damage.h"

#include <QByteArray>
#include <QString>

#include <functional>
#include <vector>

class DamageLog;
class NodegraphScene;
class QDataStream;

/// What came of opening a file.
struct Opening
{
    QString trouble; // why it could not be read, empty if it was
    Damage damage;   // of all tabs
    int missingTabs = 0;
    bool hasRest = false; // behind the last tab there is something else

    bool isWhole() const { return damage.isNone() && missingTabs == 0 && !hasRest; }
};

/// What stands in a document's bytes around the tabs, each of whose blocks is its scene's own. The one place
/// that knows it, for whoever keeps stories in tabs of a window or without one.
namespace DocumentFormat {

/// All tabs as a file holds them.
QByteArray bytes(const std::vector<NodegraphScene *> &tabs);

/// Makes so many empty tabs and returns their scenes.
using TabMaking = std::function<std::vector<NodegraphScene *>(int count)>;
/// Has the scene read its block, which the stream stands before, and returns what was wrong with it.
using TabFilling = std::function<Damage(NodegraphScene &scene, QDataStream &stream, DamageLog &log)>;

/// Told what part of the bytes is read, from 0 to 1.
using ReadingTold = std::function<void(double part)>;

/// Reads what a file of that name holds: all tabs are made first, and then filled one by one. Says in the
/// log, too, what of a damaged one is left out.
Opening read(const QString &file, const QByteArray &content, const TabMaking &make, const TabFilling &fill,
             const ReadingTold &tell = {});

} // namespace DocumentFormat
