#pragma once

#include <QByteArrayView>
#include <QString>

class NodegraphScene;

/// Why the editor would save a tab otherwise than it stands in the file.
namespace TabDifference {

/// The first reason that is found in the tab's block of the file, without a full stop; empty if it is none of
/// those that are known. `graph` was read from there.
QString reason(QByteArrayView block, const NodegraphScene &graph);

} // namespace TabDifference
