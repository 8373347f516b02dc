#pragma once

/// The place where the status item and its menu appear. ORVPosixApplication runs the program with
/// one surface and calls it on the UI thread.
class ORVSurface {
public:
    virtual ~ORVSurface() = default;

    /// Shows what has changed. Called at the end of every turn of the loop.
    virtual void show() = 0;

    /// Shows everything anew. Called when the terminal was resized, and when the process goes on
    /// after it was stopped.
    virtual void redraw() {}

    /// Puts everything back into the state in which it was found. Called once, when the program
    /// ends.
    virtual void close() = 0;
};
