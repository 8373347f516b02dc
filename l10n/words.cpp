// The words of the terminal in every language. Tests: tests/shells/terminal_test.cpp.

#include "l10n/words.h"

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
    .resetsAt = "resets at %@",
    .asOf = "as of %@ ago",
    .tryCall = "Try: %@",
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
    .resetsAt = "%@ 重置",
    .asOf = "%@ 前的数据",
    .tryCall = "可运行：%@",
    .noSessionFiles = "没有会话文件，请先运行一次 Codex。",
};

}  // namespace l10n
