#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

#include "l10n/ORVLocalizer.h"
#include "l10n/languages.h"
#include "platform/locale.h"

/// Returns a text in the language that brimletctl shows to whom it runs for. On a Mac no test can
/// set that language, or may change it. On Linux the test's own environment sets it.
inline std::string shownText(std::string_view key, std::initializer_list<std::string> values = {}) {
    const auto defaults = platform::standardUserDefaults([](const ORVStoringFailure&) {});
    return l10n::filled(ORVLocalizer(*defaults).stringForKey(key), values);
}

inline std::string shownWord(std::string_view ORVWords::*word,
                             std::initializer_list<std::string> values = {}) {
    const auto defaults = platform::standardUserDefaults([](const ORVStoringFailure&) {});
    return l10n::filled(ORVLocalizer(*defaults).words().*word, values);
}

inline std::string shownTime(ORVFileDate date) {
    const auto defaults = platform::standardUserDefaults([](const ORVStoringFailure&) {});
    return platform::mediumTimeOfDay(date, ORVLocalizer(*defaults).timeFormat());
}
