#pragma once

#include <QString>

class MainWindow;
class NodegraphScene;

// What holds between any two events of the user. Each function says what is wrong, or nothing.

namespace Invariants {

/// Events, sockets, lines, marks, story and memories of one tab agree with each other. `held`: the mouse
/// holds something of this tab, so that a drag may be under way.
QString faultOfScene(const NodegraphScene &scene, bool held);
/// The saved bytes say exactly what the tab shows.
QString faultOfBytes(NodegraphScene &scene);
/// Opened in another tab and saved there, the bytes say the same; opened and saved once more, they are the
/// same.
QString faultOfReload(NodegraphScene &scene);

} // namespace Invariants
