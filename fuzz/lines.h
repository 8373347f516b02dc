#pragma once

#include <string>

#include "fuzz/Input.h"

/// Lines as the agent and the desktop application write them, and nearly as they do, chosen by an
/// input's bytes. Their values come from short lists, so that they often meet one another.
namespace fuzz {

inline constexpr const char* kThreadIDs[] = {"01a20e72-983b-7e83-81c7-e87b7b63d181",
                                             "01A20E72-983B-7E83-81C7-E87B7B63D181",
                                             "01a20e72-a408-7c60-a888-3804d9c9faff"};

/// Without line feeds at their ends.
std::string sessionLine(Input& input);
std::string logLine(Input& input);
std::string indexLine(Input& input);

/// An application's property list, whole or not.
struct PropertyList {
    std::string bytes;
    std::string version;  ///< What it tells; "" for nothing.
};
PropertyList propertyList(Input& input);

}  // namespace fuzz
