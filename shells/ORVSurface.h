#pragma once

/// Where the status item and its menu appear. Called on the UI thread by ORVPosixApplication, which
/// runs the program with one surface.
class ORVSurface {
public:
    virtual ~ORVSurface() = default;

    /// Shows what changed; called at the end of every turn.
    virtual void show() = 0;

    /// Shows everything anew: a signal told that the terminal was resized, or taken up again after
    /// a stop.
    virtual void redraw() {}

    /// Leaves everything as it was found. Called once, when the program ends.
    virtual void close() = 0;
};
