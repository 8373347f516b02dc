// Connects an output of lines with the application. Tests: tests/ctl/brimletctl_test.cpp.

#include "shells/ORVLineSurface.h"

#include <cstdlib>

ORVLineSurface::ORVLineSurface(ORVPosixApplication& application, int descriptor,
                               std::function<std::string()> line,
                               std::function<void(int)> outputEnded)
    : line_(std::move(line)),
      output_(application.runLoop(), descriptor,
              [&application, outputEnded = std::move(outputEnded)](int failure) {
                  if (failure != 0) {
                      outputEnded(failure);
                  }
                  application.runLoop().stop(failure == 0 ? EXIT_SUCCESS : EXIT_FAILURE);
              }) {}
