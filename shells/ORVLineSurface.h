#pragma once

#include <functional>
#include <string>

#include "shells/ORVLineOutput.h"
#include "shells/ORVPosixApplication.h"

/// A surface that is one line on standard output, written whenever it changed: of text, of JSON, or
/// of whatever a status bar reads. Ends the application when its reader leaves.
class ORVLineSurface final : public ORVSurface {
public:
    /// `line` gives the line of this moment, without a line feed. `outputEnded` gets the errno of a
    /// write that failed, before the application ends with 1.
    ORVLineSurface(ORVPosixApplication& application, int descriptor,
                   std::function<std::string()> line, std::function<void(int)> outputEnded);

    void show() override { output_.show(line_()); }
    void close() override { output_.flush(); }

private:
    const std::function<std::string()> line_;
    ORVLineOutput output_;
};
