#pragma once

#include <functional>
#include <memory>

class QUndoCommand;

/// The way of an edit out of the scene, to whoever runs it. Where nobody does, the command is dropped.
using HandOut = std::function<void(std::unique_ptr<QUndoCommand>)>;
