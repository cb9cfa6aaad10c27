#pragma once

/// How much of an event is shown on the canvas.
struct NodeDetail
{
    enum class Parts {
        all,
        handles, // the sockets, and a picture of the rest in which each line of a text is a bar
        none     // that picture only: a socket would have less than a pixel
    };

    Parts parts = Parts::all;
    /// How much of the light ground behind a pictured description is seen, from 0 to 1. Where that ground has
    /// but a few pixels, it would hide the colour that tells the event's state.
    double ground = 1.0;

    bool operator==(const NodeDetail &other) const = default;
};
