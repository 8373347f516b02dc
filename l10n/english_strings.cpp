// Every text that can be seen, in English. Tests: tests/l10n/localizer_test.cpp.

#include "l10n/ORVLocalizer.h"

const ORVStringTable& ORVLocalizer::englishStrings() {
    // The layout of this table is kept by hand.
    // clang-format off
    static const ORVStringTable kStrings = {
        {"access_change", "Change Codex Data Access…"},
        {"access_choose", "Grant Current Folder"},
        {"access_codex_message",
         "The .codex folder is already open. Do not search for or select another item. Confirm "
         ".codex in the path bar, then grant read-only access to the current folder."},
        {"access_codex_title", "Select the .codex Folder"},
        {"access_continue", "Continue"},
        {"access_error_message", "Select the folder again and retry."},
        {"access_error_title", "Could Not Save Folder Access"},
        {"access_grant", "Grant Codex Data Access…"},
        {"access_intro_message",
         "Brimlet needs read-only access to two local Codex folders. The app only opens sessions, "
         "session_index.jsonl, and .log files in the desktop logs folder. It does not access "
         "auth.json or parse, store, display, or upload conversation content. macOS keeps the "
         "authorization on this Mac, so this is normally a one-time setup."},
        {"access_intro_title", "Allow Brimlet to Read Codex Data"},
        {"access_invalid_message", "Select the Codex folder specified in the instructions."},
        {"access_invalid_title", "Incorrect Folder Selected"},
        {"access_later", "Later"},
        {"access_logs_message",
         "The com.openai.codex folder is already open. Do not search for or select another item. "
         "Confirm the path, then grant read-only access to the current folder."},
        {"access_logs_title", "Select the Codex Logs Folder"},
        {"access_required", "Grant access to Codex local data"},
        {"compaction_format", "Compactions: %ld"},
        {"compaction_incompatible", "Compactions: Format changed; update Brimlet"},
        {"compaction_placeholder", "Compactions: --"},
        {"context_format", "Context usage: %@ / %@ (%.0f%%)"},
        {"context_incompatible", "Context usage: Format changed; update Brimlet"},
        {"context_placeholder", "Context usage: --"},
        {"context_waiting", "Context usage: Waiting for data"},
        {"focus_incompatible", "Task detection format changed; update Brimlet"},
        {"focus_logs_unavailable", "Codex local data was not found"},
        {"focus_new_task", "New task data is being created…"},
        {"focus_open_task", "Open a Codex task first"},
        {"focus_task_unavailable", "Current task data is temporarily unavailable"},
        {"language", "Language"},
        {"language_chinese", "简体中文"},
        {"language_english", "English"},
        {"language_system", "System Default"},
        {"privacy", "Read-only · On-device · No data upload"},
        {"quit", "Quit Brimlet"},
        {"refresh", "Detect Now"},
        {"refresh_access_required", "Grant Access First"},
        {"refresh_checking", "Checking…"},
        {"refresh_complete", "✓ Check Complete"},
        {"refresh_failed", "Check Failed"},
        {"source_codex", "Current source: Codex"},
        {"status_access_required", "C– · Access"},
        {"status_loading", "C– · --%"},
        {"status_update_needed", "C– · Update"},
        {"task_format", "Current task: %@"},
        {"task_loading", "Current task: Reading Codex data…"},
        {"task_unavailable", "Current task: Unavailable"},
        {"updated_format", "Last session update: %@"},
        {"updated_placeholder", "Last session update: --"},
        {"welcome_codex_description", "Reads the current task's session and context statistics"},
        {"welcome_codex_folder", ".codex"},
        {"welcome_connect", "Connect Codex"},
        {"welcome_description",
         "See context usage and total compactions in the menu bar to manage tasks more "
         "effectively."},
        {"welcome_folders_title", "To use Brimlet, grant read access to two local folders:"},
        {"welcome_logs_description", "Identifies the Codex task currently in view"},
        {"welcome_logs_folder", "com.openai.codex"},
        {"welcome_privacy", "Read-only · On-device processing · No data upload"},
        {"welcome_reconnect", "Reconnect Codex"},
        {"welcome_subtitle", "Understand the Context State of Your Current Codex Task"},
        {"welcome_title", "Brimlet"},
    };
    // clang-format on
    return kStrings;
}
