// The table of languages, and their words. To add one, add a row here and a file of texts; its
// words can follow. Tests: tests/l10n/localizer_test.cpp; the words are seen in tests/shells/.

#include "l10n/languages.h"

#include <algorithm>

#include "l10n/ORVLocalizer.h"
#include "text/bytes.h"

namespace l10n {

constexpr ORVWords kEnglishWords = {
    .move = "Move",
    .choose = "Choose",
    .open = "Open",
    .back = "Back",
    .page = "Page",
    .ends = "First, last",
    .helpers = "Helpers",
    .keys = "Keys",
    .quit = "Quit",
    .id = "ID",
    .status = "STATUS",
    .age = "AGE",
    .folder = "FOLDER",
    .title = "TITLE",
    .model = "MODEL",
    .helperCount = "HELPERS",
    .answer = "answer",
    .answers = "answers",
    .compaction = "compaction",
    .compactions = "compactions",
    .resetsAt = "resets at %@",
    .asOf = "as of %@ ago",
    .tryCall = "Try: %@",
    .noTasks = "There is no task to list.",
    .noSessionFiles = "There is no session file. Run the agent once.",
};

constexpr ORVWords kSimplifiedChineseWords = {
    .move = "移动",
    .choose = "选择",
    .open = "打开",
    .back = "返回",
    .page = "翻页",
    .ends = "首、尾",
    .helpers = "子任务",
    .keys = "按键",
    .quit = "退出",
    .id = "标识",
    .status = "状态",
    .age = "时间",
    .folder = "文件夹",
    .title = "标题",
    .model = "模型",
    .helperCount = "子任务",
    .answer = "次回答",
    .answers = "次回答",
    .compaction = "次压缩",
    .compactions = "次压缩",
    .resetsAt = "%@ 重置",
    .asOf = "%@ 前的数据",
    .tryCall = "可运行：%@",
    .noTasks = "没有可列出的任务。",
    .noSessionFiles = "没有会话文件，请先运行一次 Codex。",
};

namespace {

/// A bare "zh", Taiwan and Hong Kong are not among them: their readers get English.
constexpr std::string_view kSimplifiedChineseTags[] = {"zh-hans", "zh-cn", "zh-sg"};

// The patterns are those of the Unicode locale data; the space before AM and PM is a narrow one
// that does not break, U+202F.
constexpr ORVLanguage kLanguages[] = {
    {ORVLanguageModeEnglish,
     "englishLanguageItem",
     "language_english",
     {},
     {"en_US", "%I:%M:%S\u202F%p"},
     ORVLocalizer::englishStrings,
     l10n::kEnglishWords},
    {ORVLanguageModeSimplifiedChinese,
     "chineseLanguageItem",
     "language_chinese",
     kSimplifiedChineseTags,
     {"zh_CN", "%H:%M:%S"},
     ORVLocalizer::simplifiedChineseStrings,
     l10n::kSimplifiedChineseWords},
};

}  // namespace

std::span<const ORVLanguage> languages() {
    return kLanguages;
}

const ORVLanguage& languageForTag(std::string_view tag) {
    const std::string lowerCased = text::lowerCasedASCII(tag);
    const auto* found =
        std::find_if(std::begin(kLanguages), std::end(kLanguages), [&](const ORVLanguage& each) {
            return std::any_of(each.tagPrefixes.begin(), each.tagPrefixes.end(),
                               [&](auto prefix) { return lowerCased.starts_with(prefix); });
        });
    return found == std::end(kLanguages) ? kLanguages[0] : *found;
}

/// Placeholders are filled by hand: printf with a format from a table would turn a mistake in a
/// text into a crash.
std::string filled(std::string_view text, std::initializer_list<std::string> values) {
    constexpr std::string_view kPlaceholders[] = {"%@", "%ld", "%.0f"};
    std::string result;
    const std::string* value = values.begin();
    while (!text.empty()) {
        std::size_t used = 1;
        if (text.starts_with("%%")) {
            used = 2;
            result += '%';
        } else {
            std::string_view piece = text.substr(0, 1);
            for (const std::string_view placeholder : kPlaceholders) {
                if (text.starts_with(placeholder) && value != values.end()) {
                    used = placeholder.size();
                    piece = *value++;
                    break;
                }
            }
            result += piece;
        }
        text.remove_prefix(used);
    }
    return result;
}

}  // namespace l10n
