#pragma once

#include <functional>
#include <string>

#include "shells/ORVLineOutput.h"
#include "shells/ORVPosixApplication.h"

/// A surface that writes one line, of text or of JSON, whenever that line has changed. It ends the
/// application when the reader closes its end.
class ORVLineSurface final : public ORVSurface {
public:
    /// `line` returns the line to show at this moment, without a line feed. When a write fails,
    /// `outputEnded` is called with the errno, and the application ends with status 1.
    ORVLineSurface(ORVPosixApplication& application, int descriptor,
                   std::function<std::string()> line, std::function<void(int)> outputEnded);

    void show() override { output_.show(line_()); }
    void close() override { output_.flush(); }

private:
    const std::function<std::string()> line_;
    ORVLineOutput output_;
};
