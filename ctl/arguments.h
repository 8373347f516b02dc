#pragma once

#include <string>
#include <string_view>

#include "ctl/commands.h"

/// What a command line of brimletctl asks for.
namespace ctl {

enum class Call { latest, task, focus, titles, query, watch, help, version, notUnderstood };

struct Arguments {
    Call call = Call::notUnderstood;
    Format format = Format::text;
    std::string threadID;   ///< Of `task`.
    std::string complaint;  ///< What was not understood; "" where getopt has said it already.
};

Arguments parseArguments(int count, char** arguments);

extern const std::string_view kUsage;

}  // namespace ctl
