#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace l10n {

/// Fills a text's placeholders (%@, %ld, %.0f) with these values in turn; "%%" is a percent sign.
std::string filled(std::string_view text, std::initializer_list<std::string> values);

}  // namespace l10n
