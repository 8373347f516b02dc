// Every text that can be seen, in Simplified Chinese. Tests: tests/l10n/localizer_test.cpp.

#include "l10n/ORVLocalizer.h"

const ORVStringTable& ORVLocalizer::simplifiedChineseStrings() {
    // The layout of this table is kept by hand.
    // clang-format off
    static const ORVStringTable kStrings = {
        {"access_change", "重新授权 Codex 数据…"},
        {"access_choose", "授权当前文件夹"},
        {"access_codex_message",
         "已经定位到 .codex 文件夹，无需查找或选择其他项目。请确认顶部路径为 "
         ".codex，然后授权当前文件夹的只读访问。"},
        {"access_codex_title", "选择 .codex 文件夹"},
        {"access_continue", "继续"},
        {"access_error_message", "请重新选择目录并再试一次。"},
        {"access_error_title", "无法保存目录授权"},
        {"access_grant", "授权读取 Codex 数据…"},
        {"access_intro_message",
         "Brimlet 需要你授权两个本地 Codex 文件夹的只读访问。应用实际只打开 "
         "sessions、session_index.jsonl 和桌面日志中的 .log 文件，不访问 "
         "auth.json，不解析、保存、展示或上传对话正文。授权由 macOS "
         "保存在本机，通常只需完成一次。"},
        {"access_intro_title", "允许 Brimlet 读取 Codex 数据"},
        {"access_invalid_message", "请按照说明选择指定的 Codex 文件夹。"},
        {"access_invalid_title", "所选文件夹不正确"},
        {"access_later", "稍后"},
        {"access_logs_message",
         "已经定位到 com.openai.codex "
         "文件夹，无需查找或选择其他项目。请确认顶部路径，然后授权当前文件夹的只读访问。"},
        {"access_logs_title", "选择 Codex 日志文件夹"},
        {"access_required", "需要授权读取 Codex 本地数据"},
        {"compaction_format", "累计压缩：%ld 次"},
        {"compaction_incompatible", "累计压缩：格式已变化，需要更新 Brimlet"},
        {"compaction_placeholder", "累计压缩：--"},
        {"context_format", "上下文占用：%@ / %@（%.0f%%）"},
        {"context_incompatible", "上下文占用：格式已变化，需要更新 Brimlet"},
        {"context_placeholder", "上下文占用：--"},
        {"context_waiting", "上下文占用：等待统计"},
        {"focus_incompatible", "任务识别格式已变化，需要更新 Brimlet"},
        {"focus_logs_unavailable", "未找到 Codex 本地数据"},
        {"focus_new_task", "新任务数据正在生成…"},
        {"focus_open_task", "请先打开一个 Codex 任务"},
        {"focus_task_unavailable", "当前任务数据暂不可用"},
        {"language", "语言"},
        {"language_chinese", "简体中文"},
        {"language_english", "English"},
        {"language_system", "跟随系统"},
        {"privacy", "只读 · 本地处理 · 不上传数据"},
        {"quit", "退出 Brimlet"},
        {"refresh", "重新检测"},
        {"refresh_access_required", "需要先授权"},
        {"refresh_checking", "正在检测…"},
        {"refresh_complete", "✓ 检测完成"},
        {"refresh_failed", "检测失败"},
        {"source_codex", "当前数据源：Codex"},
        {"status_access_required", "C– · 待授权"},
        {"status_loading", "C– · --%"},
        {"status_update_needed", "C– · 待适配"},
        {"task_format", "当前任务：%@"},
        {"task_loading", "当前任务：正在读取 Codex 数据…"},
        {"task_unavailable", "当前任务：暂不可用"},
        {"updated_format", "最近会话更新：%@"},
        {"updated_placeholder", "最近会话更新：--"},
        {"welcome_codex_description", "读取当前任务的会话与上下文统计"},
        {"welcome_codex_folder", ".codex"},
        {"welcome_connect", "连接 Codex"},
        {"welcome_description", "在菜单栏实时查看上下文占用和累计压缩次数，更好地管理任务。"},
        {"welcome_folders_title", "使用 Brimlet，需要授权读取两个本地文件夹："},
        {"welcome_logs_description", "识别你当前正在查看的 Codex 任务"},
        {"welcome_logs_folder", "com.openai.codex"},
        {"welcome_privacy", "只读访问 · 本地处理 · 不上传数据"},
        {"welcome_reconnect", "重新连接 Codex"},
        {"welcome_subtitle", "掌握当前 Codex 任务的上下文状态"},
        {"welcome_title", "Brimlet"},
    };
    // clang-format on
    return kStrings;
}
