#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace l10n {

/// Returns the text with these values in the place of its placeholders (%@, %ld, %.0f), in turn;
/// "%%" becomes a percent sign.
std::string filled(std::string_view text, std::initializer_list<std::string> values);

}  // namespace l10n
