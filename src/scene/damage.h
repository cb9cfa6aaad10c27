#pragma once

/// What a damaged file did not give to a scene that was read from it.
struct Damage
{
    int incompleteEvents = 0; // whose records are cut, or not in the file at all
    int lostConnections = 0;  // that would close a cycle, or with an event that is not there

    bool isNone() const { return incompleteEvents == 0 && lostConnections == 0; }
};
