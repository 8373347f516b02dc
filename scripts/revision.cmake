# Writes the header that names the commit which is built, if this is a checkout. A header that would
# not change is left alone:
#
#     cmake -DSOURCE=FOLDER -DHEADER=FILE -P scripts/revision.cmake

# The first line of the answer is empty at the top of a checkout. If it is not, the sources may have
# been unpacked into the checkout of another project.
execute_process(COMMAND git -C ${SOURCE} rev-parse --show-prefix --short=7 HEAD
                OUTPUT_VARIABLE ANSWER ERROR_QUIET RESULT_VARIABLE FAILURE)
set(REVISION "")
if(FAILURE EQUAL 0 AND ANSWER MATCHES "^\n([0-9a-f]+)\n$")
    set(REVISION " (${CMAKE_MATCH_1})")
endif()
file(CONFIGURE OUTPUT ${HEADER} @ONLY CONTENT [[
#pragma once

/// The commit in parentheses, behind a space, or "". Written by the build.
#define BRIMLET_REVISION "@REVISION@"
]])
