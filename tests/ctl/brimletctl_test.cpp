// Runs the program itself as a script does.

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <limits>

#include "shells/lines/answers.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/records.h"
#include "tests/support/shown_texts.h"

namespace {

using records::kOther;
using records::kTask;

/// Shell code that replaces the program `timeout`, which a Mac lacks, by a function without a
/// limit.
constexpr const char* kTimeout = "command -v timeout >/dev/null || timeout() { shift; \"$@\"; }; ";

constexpr const char* kTitleInJSON = R"(Fix \u001b[31mthe \"tests\")";
constexpr const char* kLog = "Library/Logs/com.openai.codex/x.log";
const std::string kAnswer = "C1 · 47%  Fix  [31mthe \"tests\"\n";

std::string lines(std::initializer_list<std::string> texts) {
    std::string all;
    for (const std::string& text : texts) {
        all += text + '\n';
    }
    return all;
}

class BrimletctlTest : public testing::Test {
protected:
    BrimletctlTest() {
        setenv("HOME", home.root().c_str(), 1);
        setenv("LANGUAGE", "en", 1);
        unsetenv("XDG_CONFIG_HOME");
    }

    /// Runs a shell command line in which "$b" is the program. Returns its output and errors, and
    /// below them the status unless it is 0.
    std::string run(const std::string& command) {
        const std::string line = "export HOME='" + home.root() +
                                 "' b='" BRIMLETCTL "'; cd; ulimit -f 100000; exec 2>&1; " +
                                 kTimeout + command;
        std::FILE* pipe = popen(line.c_str(), "r");
        std::string output;
        for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) {
            output += static_cast<char>(c);
        }
        const int status = pclose(pipe);  // A variable: a Mac's macro takes its address.
        return status == 0 ? output : output + "status " + std::to_string(WEXITSTATUS(status));
    }

    void expectPart(const std::string& part, const std::string& command) {
        const std::string output = run(command);
        EXPECT_NE(std::string::npos, output.find(part)) << output;
    }

    void makeTask() {
        home.append(file, records::compacted("w1") + records::tokenCount("128000"));
        home.setDate(file, 1'000'000'000.25);
        home.write(".codex/session_index.jsonl", records::title(kTask, kTitleInJSON));
    }

    TemporaryHome home;
    const std::string file = ".codex/sessions/2026/" + kTask + ".jsonl";
};

TEST_F(BrimletctlTest, AnswersAsText) {
    makeTask();
    EXPECT_EQ(kAnswer, run("$b latest"));
    EXPECT_EQ(kAnswer, run("$b task " + kTask));
    EXPECT_EQ(kTask + "\tFix  [31mthe \"tests\"\n", run("$b titles"));
    const std::pair<const char*, std::string> kStories[] = {
        {"", "No task in view: the Codex desktop application has written no logs here\n"},
        {"1 nothing", "No task in view: none was opened in the Codex desktop application so far\n"},
        {"1 activity TASK", "Task in view: " + kTask + '\n'},
        {"2 activity client-new-thread:1", "No task in view: a new task is being set up\n"},
        {"3 activity Appearance=",
         "No task in view: the format of the Codex desktop logs changed\n"}};
    for (const auto& [story, text] : kStories) {
        if (*story != '\0') {
            home.append(kLog, records::log(story));
        }
        EXPECT_EQ(text, run("$b focus"));
    }
    EXPECT_EQ("status 2", run("$b task '' 2>/dev/null"));
    EXPECT_EQ("status 1", run("$b task -- --json 2>/dev/null"));
}

TEST_F(BrimletctlTest, TellsOfEveryPlaceAndOfLimits) {
    const std::string inNoTime =
        " | sed -E \"s|$HOME|~|; s/[0-9]+([dms]) (old|ago)/1\\1 \\2/; "
        "s/(plist: )version .*/\\1no version was found there/\"";
    EXPECT_EQ("brimletctl: there is no sessions folder " + home.path(".codex/sessions") +
                  "; try: brimletctl doctor\nstatus 1",
              run("$b limits"));
    home.append(file, records::record("event_msg",
                                      R"({"type":"token_count","rate_limits":{"primary":{)"
                                      R"("used_percent":1,"window_minutes":300,"resets_at":1}}})",
                                      "2001-09-09T01:46:40Z"));
    for (const char* other :
         {"sessions/x.zst", "sessions/x.gz", "sessions/2026/x.zip", "archived_sessions/y"}) {
        home.write(std::string(".codex/") + other, "");
    }
    home.append(kLog, records::log("1 nothing"));
    EXPECT_EQ(lines({"5h  0%", shownWord(&ORVWords::asOf, {"1d"})}),
              run("$b limits | sed -E 's/[0-9]+d/1d/'"));
    EXPECT_EQ(lines({R"({"rateLimits":[{"minutes":300,"usedPercent":1,"resetsAt":)"
                     R"("1970-01-01T00:00:01Z"}],"at":"2001-09-09T01:46:40Z"})"}),
              run("$b limits --json"));
    EXPECT_EQ(
        R"(Codex home     ~/.codex: in the home folder
Sessions       ~/.codex/sessions: 1 session file, the newest 1s old, 169 bytes; the largest: 63d181 169 bytes
Titles         ~/.codex/session_index.jsonl: missing
Not read       ~/.codex/archived_sessions: 3 compressed session files, 1 archived
Desktop logs   ~/Library/Logs/com.openai.codex: 1 log, the newest 1s old
In view        No task in view: none was opened in the Codex desktop application so far
Application    /Applications/Codex.app/Contents/Info.plist: no version was found there
Rate limits    5h 0%, told 1d ago
)",
        run("$b doctor | head -9 | tail -8" + inNoTime));
    EXPECT_EQ("3 compressed session files, 0 archived; cannot be read: Not a directory\n",
              run("cd $HOME/.codex && rm -r archived_sessions && touch archived_sessions && "
                  "$b doctor | sed -n 's/^Not read.*sessions: //p'"));
    const std::string asLines = "$b doctor --json | tr , '\\n' | grep -v text" + inNoTime;
    expectPart(lines({R"({"name":"titles")", R"("place":"~/.codex/session_index.jsonl")",
                      R"("state":"missing")"}),
               asLines);
    expectPart(lines({R"({"name":"confinement")", R"("place":null)"}), asLines);
    home.append(".codex/sessions/" + kOther + ".jsonl", "");
    EXPECT_EQ(
        "brimletctl: 2 tasks have an identifier with 01a20e7; give more of it. The newest:\n"
        "  7A4E02  0s  Codex\n  63d181  0s  Codex\n",
        run("$b task 01a20e7 2>&1 | sed 's/  [0-9]*s/  0s/'"));
}

TEST_F(BrimletctlTest, AnswersAsJSON) {
    EXPECT_EQ(
        lines(
            {"brimletctl: there is no sessions folder " + home.path(".codex/sessions") +
                 "; try: brimletctl doctor",
             R"({"snapshot":null,"error":{"domain":"Orvellan","code":1,"description":"没有找到 Codex 会话目录"},"agent":null})"}) +
            "status 1",
        run("$b latest --json"));
    home.makeFolder(".codex/sessions");
    EXPECT_EQ("{\"snapshot\":null,\"error\":null,\"agent\":null}\nstatus 1",
              run("$b latest --json 2>/dev/null"));
    makeTask();
    EXPECT_EQ(
        lines(
            {R"({"snapshot":{"title":")" + std::string(kTitleInJSON) + R"(","threadID":")" + kTask +
             R"(","file":")" + home.path(file) +
             R"(","compactionCount":1,"contextUsage":{"inputTokens":128000,"contextWindow":272000,)"
             R"("percentage":47.05882352941176},"contextStatus":0,"compactionStatus":0,)"
             R"("lastUpdated":"2001-09-09T01:46:40.250000000Z"},"error":null,"agent":{"model":null,)"
             R"("effort":null,"leftPercent":null,"totalTokens":null,"rateLimits":[]}})"}),
        run("$b latest --json"));
    home.append(".codex/sessions/\xFF.jsonl", "");
    if (home.holds(".codex/sessions/\xFF.jsonl")) {  // A Mac's file system wants names in UTF-8.
        expectPart("\"threadID\":\"\uFFFD\"", "printf 'task \\377\\n' | $b query");
    }
}

TEST_F(BrimletctlTest, AnswersQueriesUntilTheirEnd) {
    makeTask();
    const std::string unknown =
        R"({"error":{"domain":"brimletctl","code":2,"description":"unknown query"}})";
    EXPECT_EQ(lines({unknown, unknown, unknown, unknown}),
              run("printf '\\ntask\\ntitles\\r\\nLatest' | $b query"));
    EXPECT_EQ(
        lines(
            {R"({"focus":{"status":2,"threadID":null,"codexVersion":null,"message":"没有找到 Codex 桌面日志"},)"
             R"("snapshot":null,"error":{"domain":"posix","code":2,"description":"No such file or directory"}})",
             R"({"snapshot":null,"error":{"domain":"Orvellan","code":2,"description":"没有找到所选 Codex 任务的会话文件"}})",
             R"({"titles":{")" + kTask + "\":\"" + kTitleInJSON + "\"}}"}),
        run("printf 'refresh\\ntask \\ntitles' | $b query"));
    EXPECT_EQ("", run("$b query </dev/null"));
    EXPECT_EQ(run("$b focus --json || true"), run("echo focus | $b query"));
}

#ifdef BRIMLET_SETTINGS_IN_HOME  // Else the test would change this user's language.

TEST_F(BrimletctlTest, WatchesAsJSONLines) {
    makeTask();
    const std::string commands = "printf 'choose chineseLanguageItem\\nkey x\\nkey q\\n'";
    const std::string w = "timeout 20 $b watch --json";
    const std::string loading = shownText("task_loading");  // Before another language is stored.
    const std::string output = run(commands + " | " + w + " 2>$HOME/complaints");
    EXPECT_TRUE(output.starts_with(R"({"title":"C– · --%","toolTip":"Brimlet","menu":[)"
                                   R"({"item":"titleItem","title":")" +
                                   loading))
        << output;
    EXPECT_NE(std::string::npos,
              output.find(R"({"item":"chineseLanguageItem","title":"简体中文","enabled":true,)"
                          R"("hidden":false,"tag":2,"state":true}]},{"item":"refreshItem",)"
                          R"("title":"重新检测")"))
        << output;
    EXPECT_TRUE(output.ends_with("}\n")) << output;
    EXPECT_EQ("brimletctl: unknown command: key x\n", run("cat $HOME/complaints"));
    EXPECT_EQ("{\"BrimletLanguageMode\":2}\n", run("cat $HOME/.config/brimlet/*"));
    EXPECT_EQ("0\n", run("exec 3>&1; { " + w + " </dev/null; echo $? >&3; } | head -2 >/dev/null"));
    EXPECT_EQ("status 1", run(w + " </dev/null >&- 2>/dev/null"));
    EXPECT_EQ("status 1", run("test -e /dev/full && " + w + " </dev/null >/dev/full 2>/dev/null"));
    EXPECT_EQ(
        "0\n",
        run("$b watch --json </dev/null >$HOME/out & p=$!; until [ -s $HOME/out ]; do :; done; "
            "kill $p; wait $p; echo $?"));
}

#endif

TEST_F(BrimletctlTest, AnswersAboutAllTasksAndTheOneOfAFolder) {
    EXPECT_EQ("{\"tasks\":[]}\nstatus 1", run("$b tasks --json 2>/dev/null"));
    home.makeFolder(".codex/sessions");
    EXPECT_EQ("", run("$b tasks 2>/dev/null")) << "no task is an answer";
    makeTask();
    const std::string second = ".codex/sessions/\x1b[31m.jsonl";
    home.write(second, records::sessionMeta("\"cwd\":\"" + home.path("work\\t/site") + '"') +
                           records::tokenCount("27200"));
    home.setDate(second, 1'000'000'100);
    const std::string kSecond = "C0 · 10%\t2001-09-09T01:48:20.000000000Z\t" +
                                home.path("work /site") + "\tCodex\t [31m.jsonl\n";
    const std::string kFirst =
        "C1 · 47%\t2001-09-09T01:46:40.250000000Z\t--\tFix  [31mthe \"tests\"\t" + kTask + '\n';
    EXPECT_EQ(kSecond + kFirst, run("$b tasks"));
    EXPECT_EQ(kSecond, run("$b tasks --limit 1"));
    EXPECT_EQ(" [31m.jsonl " + home.path("work /site") + '\n',
              run("$b task m.j --format '{shortid} {folder}'"));
    EXPECT_EQ("", run("$b tasks --since 1h"));
    EXPECT_EQ(kSecond + kFirst, run("$b tasks --since 999999999w"));
    EXPECT_EQ("10 27200\n47 128000\n", run("$b tasks --format '{percent} {used}'"));
    EXPECT_EQ(lines({R"("folder":null,"agent":{"model":null,"effort":null,"leftPercent":null,)"
                     R"("totalTokens":null,"rateLimits":[]},"parent":null,"helpers":0,)"
                     R"("changedAt":"2001-09-09T01:46:40.250000000Z"}]})"}),
              run("$b tasks --json | sed 's/.*\"folder\"/\"folder\"/'"));
    home.makeFolder("work\t/site/deep");
    EXPECT_EQ("C0 · 10%  Codex\n", run("cd work*/site/deep && $b here"));
    EXPECT_EQ("C0 · 10%  Codex\n", run("$b here --folder work*/site"));
    EXPECT_EQ("status 1", run("exec 9<$(echo work*/site); $b here --folder /dev/fd/9 2>/dev/null"))
        << "what a parent process left open is closed";
    EXPECT_EQ("brimletctl: no task works in " + home.root() + "; try: brimletctl tasks\nstatus 1",
              run("$b here"));
    EXPECT_EQ(
        "brimletctl: cannot enter the folder nowhere: No such file or directory; try: "
        "brimletctl tasks\nstatus 1",
        run("$b here --folder nowhere"));
    EXPECT_EQ(kFirst, run("CODEX_HOME=/nowhere $b --codex-home .codex/ tasks | tail -1"));
    EXPECT_EQ(kFirst, run("CODEX_HOME=relative $b tasks | tail -1"));
    EXPECT_EQ("1\n",
              run("CODEX_HOME=relative $b doctor | grep -c 'CODEX_HOME is no absolute path'"));
    EXPECT_EQ(
        "brimletctl: there is no sessions folder /nowhere/sessions; try: brimletctl doctor\n"
        "status 1",
        run("CODEX_HOME=/nowhere $b latest"));
    home.write(".codex/file", "");
    EXPECT_EQ("brimletctl: cannot read the sessions folder " + home.path(".codex/file/sessions") +
                  ": Not a directory; try: brimletctl doctor\nstatus 1",
              run("$b latest --codex-home .codex/file"));
    EXPECT_EQ("status 1", run("$b doctor --codex-home /nowhere >/dev/null"));
    EXPECT_EQ(
        "brimletctl watch shows no task: the session files cannot be read: Not a directory; make "
        "them readable, or name the agent's home with --codex-home.\n",
        run("$b doctor --codex-home .codex/file | tail -1"));
    EXPECT_EQ(
        "file\",\"state\":\"broken\n",
        run("$b doctor --codex-home .codex/file --json | grep -o 'file\",\"state\":\"[a-z]*'"));
    EXPECT_EQ(
        "brimletctl watch shows no task, since none is in view in the desktop application; "
        "brimletctl watch --latest shows: C0 · 10%  Codex\n",
        run("$b doctor | tail -1"));
}

TEST_F(BrimletctlTest, ATaskThatMayNotBeReadIsNamed) {
    if (run("setpriv --reuid 65534 true") != "") {
        GTEST_SKIP() << "only root on Linux can become a user who may not read";
    }
    makeTask();
    const std::string secret = ".codex/sessions/2026/" + kOther + ".jsonl";
    home.append(secret, records::tokenCount("27200"));
    home.setDate(secret, 2'000'000'000);
    const std::string as = "chmod 755 . && chmod 0 " + secret +
                           " && cp $b b && setpriv --reuid 65534 --clear-groups ./b ";
    const std::string named =
        "brimletctl: cannot read the task " + kOther + ": Permission denied\n";
    EXPECT_EQ(named + "128000\nstatus 1", run(as + "tasks --format '{used}'"));
    EXPECT_EQ("status 1", run(as + "tasks --limit 1 --json >/dev/null 2>&1"));
    EXPECT_EQ("1\n", run(as + "doctor | grep -c 'file cannot be read: .*/" + secret + "'"));
    home.setDate(secret, 1'000'000);
    for (const std::string filter : {"--limit 1", "--since 1d"}) {
        EXPECT_EQ("", run(as + "tasks --json " + filter + " >/dev/null 2>&1"))
            << "it would not be in the list";
    }
    const std::string helperID = "01a20e72-983b-7e83-81c7-e87b7b63d182";
    const std::string helper = ".codex/sessions/2026/" + helperID + ".jsonl";
    home.append(helper, records::helperMeta(kOther));
    EXPECT_EQ(named + helperID + "\nstatus 1", run(as + "tasks --limit 1 --format '{id}'"))
        << "its helper would bring it to the front";
    EXPECT_EQ("", run("rm " + helper));
    const std::string old = ".codex/sessions/2026/x-" + kTask + ".jsonl";
    home.append(old, "\n");
    home.setDate(old, 1'000'000);
    const std::string grep = " 2>&1 | grep -c '2 folders or f\\|newest task cannot be read: P'";
    EXPECT_EQ("1\n", run("chmod 0 " + old + " && " + as + "latest" + grep));
    EXPECT_EQ("2\n", run(as + "doctor" + grep));
}

TEST_F(BrimletctlTest, DrawsHistories) {
    makeTask();
    home.append(file, records::compacted("w2") + records::tokenCount("27200"));
    const std::string at = R"({"at":"2026-11-24T16:45:21.)";
    EXPECT_EQ(
        lines(
            {R"({"threadID":")" + kTask + R"(","title":")" + kTitleInJSON + R"(","points":[)" + at +
             R"(399Z","compaction":true},)" + at +
             R"(002Z","inputTokens":128000,"contextWindow":272000,"percentage":47.05882352941176},)" +
             at + R"(399Z","compaction":true},)" + at +
             R"(002Z","inputTokens":27200,"contextWindow":272000,"percentage":10}],"compactions":[)" +
             at + R"(399Z","before":null,"after":128000},)" + at +
             R"(399Z","before":128000,"after":27200}]})"}),
        run("$b history --json"));
    EXPECT_EQ("", run("$b history --svg | grep -q '</svg>'"));
    EXPECT_EQ("C2 · 10%  Fix  [31mthe \"tests\"\n",
              run("LC_ALL=C.UTF-8 $b history " + kTask + " | head -1"));
    EXPECT_EQ("{\"threadID\":null,\"title\":null,\"points\":[],\"compactions\":[]}\nstatus 1",
              run("$b history nobody --json 2>/dev/null"));
}

TEST_F(BrimletctlTest, FollowsATaskWithoutTheDesktopApplication) {
    const std::string w = "timeout 20 $b watch </dev/null ";
    EXPECT_EQ(lines({"C– · --%", "C– · --%  " + shownText("focus_logs_unavailable")}),
              run(w + "--latest | head -2"));
    home.makeFolder(".codex/sessions");
    EXPECT_EQ(lines({"C– · --%", "C– · --%  " + shownText("focus_task_unavailable")}),
              run(w + "--task nobody | head -2"));
    makeTask();
    EXPECT_EQ("C– · --%\n" + kAnswer, run(w + "--latest | head -2"));
    EXPECT_EQ("C– · --%\n" + kAnswer, run(w + "--task " + kTask + " | head -2"));
    EXPECT_EQ("-- --\n47 Fix  [31mthe \"tests\"\n",
              run(w + "--latest --format '{percent} {title}' | head -2"));
    EXPECT_EQ("status 1", run(w + "--here --folder nowhere 2>/dev/null"));
    EXPECT_EQ(
        lines({R"({"text":"C– · --%","tooltip":")" + shownText("task_loading") + "\\n" +
                   shownText("context_placeholder") + "\\n" + shownText("compaction_placeholder") +
                   "\\n" + shownText("updated_placeholder") +
                   R"(","class":"unknown","percentage":0})",
               R"({"text":"C1 · 47%","tooltip":")" +
                   shownText("task_format", {"Fix  [31mthe &quot;tests&quot;"}) + "\\n" +
                   shownText("context_format", {"128k", "272k", "47"}) + "\\n" +
                   shownText("compaction_format", {"1"}) + "\\n" +
                   shownText("updated_format", {shownTime({1'000'000'000, 0})}) +
                   R"(","class":"low","percentage":47})"}),
        run(w + "--latest --waybar | head -2"));
    home.append(kLog, records::log("1 activity TASK"));
    EXPECT_EQ("C– · --%\n" + kAnswer, run(w + "| head -2")) << "and one in view there";
}

TEST_F(BrimletctlTest, LongQueriesAreUnknownAndFilesMayBeFull) {
    makeTask();
    const std::string longLine = "head -c 3000000 /dev/zero | tr '\\0' x; echo; echo titles; } | ";
    EXPECT_EQ("", run("{ printf 'task '; " + longLine + "$b query | grep -q '\"unknown query\"'"));
    EXPECT_EQ("2\n", run("{ " + longLine + "$b query | wc -l | tr -d ' '"));
    expectPart("cannot write the output: File too large\nstatus 1",
               "(ulimit -f 1; for i in 1 2 3 4; do $b help; done >full)");
}

TEST(AnswersTest, DatesArePlain) {
    const std::pair<std::int64_t, const char*> kDates[] = {
        {0, "1970-01-01T00:00:00.000000007Z"},
        {-62167219201, "0000-01-01T00:00:00.000000007Z"},
        {253402300800, "9999-12-31T23:59:59.000000007Z"},
        {std::numeric_limits<std::int64_t>::min(), "0000-01-01T00:00:00.000000007Z"},
        {std::numeric_limits<std::int64_t>::max(), "9999-12-31T23:59:59.000000007Z"}};
    for (const auto& [seconds, text] : kDates) {
        EXPECT_EQ(text, json::utcText({seconds, 7}));
    }
}

TEST_F(BrimletctlTest, ExitStatuses) {
    for (const char* call : {"", "bogus", "latest x", "task", "task a b", "latest --json=1",
                             "query --json", "titles --bogus", "-x"}) {
        const std::string output = run("$b " + std::string(call) + " >/dev/null");
        EXPECT_TRUE(output.ends_with("status 2")) << call << output;
        EXPECT_NE(output.npos, output.find("\nTry: brimletctl help")) << call << output;
    }
    EXPECT_EQ("", run("$b --help 2>/dev/null | grep -q usage:"));
    EXPECT_EQ("", run("$b --version | "
                      "grep -qE '^brimletctl [0-9]+([.][0-9]+){2}( [(][0-9a-f]+[)])?$'"));
    EXPECT_EQ("0\n", run("exec 3>&1; { sleep 0.2; $b titles; echo $? >&3; } | true"));
    EXPECT_EQ(
        "0\n",
        run("exec 3>&1; { sleep 0.2; yes titles | head -1000 | $b query; echo $? >&3; } | true"));
    EXPECT_EQ("status 1", run("$b titles --json >&- 2>/dev/null"));
    EXPECT_EQ("status 1", run("test -e /dev/full && $b titles --json >/dev/full 2>/dev/null"));
}

#ifdef BRIMLET_IS_CONFINED  // The sanitizers need more memory than these tests leave.

TEST_F(BrimletctlTest, MemoryThatRunsOutIsAnAnswer) {
    makeTask();
    const std::string large = ".codex/sessions/large.jsonl";
    home.write(large, std::string(60'000'000, 'x'));
    const std::string limit = "ulimit -v 60000; ";
    EXPECT_EQ(
        "brimletctl: cannot read the session file: Cannot allocate memory; try: brimletctl "
        "doctor\nstatus 1",
        run(limit + "$b latest"));
    const std::string unread = R"({"snapshot":null,"error":{"domain":"posix","code":12,"des)";
    EXPECT_EQ(
        lines({unread, R"({"snapshot":{"title":"Fix \u001b[31mthe \"tests\"","threa)", unread}),
        run(limit + "printf 'latest\ntask " + kTask + "\nlatest\n' | $b query | cut -c 1-57"));
    const std::string all = run(limit + "$b tasks");
    EXPECT_TRUE(all.ends_with("status 1")) << all;
    EXPECT_EQ(0U,
              all.find("brimletctl: cannot read the task large.jsonl: Cannot allocate memory\n"));
    home.truncate(".codex/session_index.jsonl", 60'000'000);
    EXPECT_EQ("brimletctl: there is not enough memory\nstatus 1", run(limit + "$b tasks"));
    home.write(".codex/session_index.jsonl", "");
    // A line that is too long is passed over, even when there is not enough memory to hold it.
    home.truncate(large, 1'000'000'000);
    home.append(large, "\n" + records::tokenCount("136000"));
    EXPECT_EQ("C0 · 50%  Codex\n", run("ulimit -v 300000; $b latest"));
    home.write(kLog, "");
    home.truncate(kLog, 1'000'000'000);
    home.append(kLog, "\n" + records::log("1 activity TASK"));
    EXPECT_EQ("Task in view: " + kTask + "\n", run("ulimit -v 300000; $b focus"));
}

#ifdef BRIMLET_FAILING_MEMORY

/// Queries and the menu may go on with an answer that says so, and what doctor tells ages.
TEST_F(BrimletctlTest, WhateverAllocationFailsTheAnswerIsRightOrThereIsNone) {
    makeTask();
    home.append(kLog, records::log("1 activity TASK"));
    for (const std::string call : {"latest --json", "tasks", "history --svg", "limits", "focus",
                                   "nothing", "doctor", "watch --json", "query"}) {
        const bool mayDiffer = call == "doctor" || call == "watch --json" || call == "query";
        EXPECT_EQ("", run("echo key q >in; ask() { $b " + call +
                          " <in >$1 2>err; }; ask all; right=$?\n"
                          "for on in '' 1; do for n in $(seq 1 37 900); do\n"
                          "  export FAILS_AT=$n FAILS_ON=$on\n"
                          "  LD_PRELOAD=" BRIMLET_FAILING_MEMORY " ask out; s=$?\n"
                          "  [ $s = 1 ] && grep -q brimletctl: err && continue\n"
                          "  [ $s = $right ] && " +
                          (mayDiffer ? "[ -s out ]" : "cmp -s all out") +
                          " || { echo $n $on: $s; cat out err; }\ndone; done; true"))
            << call;
    }
}

#endif

TEST_F(BrimletctlTest, GivesUpWhatItNeverNeeds) {
    const std::string confined = "grep -c '^Seccomp:.2$' /proc/$p/status";
    EXPECT_EQ("1\n", run("mkfifo in; $b query <in & p=$!; exec 3>in; sleep 0.2; " + confined));
    EXPECT_EQ("1\n2\n", run("$b watch --json <in >lines & p=$!; exec 3>in; sleep 0.3; " + confined +
                            "; grep -l '^Seccomp:.2$' /proc/$p/task/*/status | wc -l; kill $p"));
    home.makeFolder(".config/brimlet");
    // The folder in the place of the one that it began with is another.
    expectPart("cannot store the language",
               "$b watch --json <in >lines & exec 3>in; sleep 0.3; "
               "mv .config/brimlet moved; mkdir .config/brimlet; "
               "echo choose englishLanguageItem >&3; echo key q >&3; wait");
}

#endif

}  // namespace
