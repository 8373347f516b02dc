// Runs the program itself, as a script would.

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>

#include "tests/support/TemporaryHome.h"
#include "tests/support/records.h"

namespace {

constexpr const char* kTask = "01a20e72-983b-7e83-81c7-e87b7b63d181";

/// A Mac has no such program.
constexpr const char* kTimeout = "command -v timeout >/dev/null || timeout() { shift; \"$@\"; }; ";

struct Outcome {
    int status;
    std::string output;
};

class BrimletctlTest : public testing::Test {
protected:
    /// Runs a shell command line in which "$b" is the program; both outputs together.
    Outcome run(const std::string& command) {
        const std::string line = "export HOME='" + home.root() +
                                 "' b='" BRIMLETCTL "'; cd; ulimit -f 100000; exec 2>&1; " +
                                 kTimeout + command;
        std::FILE* pipe = popen(line.c_str(), "r");
        Outcome outcome;
        for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) {
            outcome.output += static_cast<char>(c);
        }
        const int status = pclose(pipe);  // A variable: a Mac's macro takes its address.
        outcome.status = WEXITSTATUS(status);
        return outcome;
    }

    void makeTask() {
        home.append(file, records::compacted("w1") + records::tokenCount("128000"));
        home.setDate(file, 1'000'000'000.25);
        home.write(".codex/session_index.jsonl",
                   records::title(kTask, "Fix \\u001b[31mthe \\\"tests\\\""));
    }

    TemporaryHome home;
    const std::string file = ".codex/sessions/2026/" + std::string(kTask) + ".jsonl";
};

TEST_F(BrimletctlTest, AnswersAsText) {
    makeTask();
    EXPECT_EQ("C1 · 47%  Fix  [31mthe \"tests\"\n", run("$b latest").output);
    EXPECT_EQ("C1 · 47%  Fix  [31mthe \"tests\"\n", run("$b task " + std::string(kTask)).output);
    EXPECT_EQ(std::string(kTask) + "\tFix  [31mthe \"tests\"\n", run("$b titles").output);
    EXPECT_EQ(0, run("$b focus").status);
    EXPECT_EQ(1, run("$b task ''").status);
    EXPECT_EQ(1, run("$b task -- --json").status);
}

TEST_F(BrimletctlTest, AnswersAsJSON) {
    EXPECT_EQ(
        "brimletctl: there is no sessions folder " + home.path(".codex/sessions") +
            "\n"
            R"({"snapshot":null,"error":{"domain":"Orvellan","code":1,"description":"没有找到 Codex 会话目录"}})"
            "\n",
        run("$b latest --json").output);
    home.makeFolder(".codex/sessions");
    EXPECT_EQ("{\"snapshot\":null,\"error\":null}\n", run("$b latest --json 2>/dev/null").output);
    EXPECT_EQ(1, run("$b latest --json").status);
    makeTask();
    EXPECT_EQ(
        R"({"snapshot":{"title":"Fix \u001b[31mthe \"tests\"","threadID":")" + std::string(kTask) +
            R"(","file":")" + home.path(file) +
            R"(","compactionCount":1,"contextUsage":{"inputTokens":128000,"contextWindow":272000,)"
            R"("percentage":47.05882352941176},"contextStatus":0,"compactionStatus":0,)"
            R"("lastUpdated":"2001-09-09T01:46:40.250000000Z"},"error":null})"
            "\n",
        run("$b latest --json").output);
    home.append(".codex/sessions/\xFF.jsonl", "");
    if (!home.holds(".codex/sessions/\xFF.jsonl")) {
        return;  // A Mac's disk has names in UTF-8 only.
    }
    EXPECT_NE(std::string::npos,
              run("printf 'task \\377\\n' | $b query").output.find("\"threadID\":\"\uFFFD\""));
}

TEST_F(BrimletctlTest, AnswersQueriesUntilTheirEnd) {
    makeTask();
    const std::string unknown =
        R"({"error":{"domain":"brimletctl","code":2,"description":"unknown query"}})"
        "\n";
    EXPECT_EQ(unknown + unknown + unknown + unknown,
              run("printf '\\ntask\\ntitles\\r\\nLatest' | $b query").output);
    const Outcome outcome = run("printf 'refresh\\ntask \\ntitles' | $b query");
    EXPECT_EQ(0, outcome.status);
    EXPECT_EQ(
        R"({"focus":{"status":2,"threadID":null,"codexVersion":null,"message":"没有找到 Codex 桌面日志"},)"
        R"("snapshot":null,"error":{"domain":"posix","code":2,"description":"No such file or directory"}})"
        "\n"
        R"({"snapshot":null,"error":{"domain":"Orvellan","code":2,"description":"没有找到所选 Codex 任务的会话文件"}})"
        "\n"
        R"({"titles":{")" +
            std::string(kTask) +
            R"(":"Fix \u001b[31mthe \"tests\""}})"
            "\n",
        outcome.output);
    EXPECT_EQ("", run("$b query </dev/null").output);
}

#ifdef BRIMLET_SETTINGS_IN_HOME  // Else the language chosen would be that of whoever runs the
                                 // tests.

TEST_F(BrimletctlTest, WatchesAsJSONLines) {
    makeTask();
    const std::string commands = "printf 'choose chineseLanguageItem\\nkey x\\nkey q\\n'";
    const std::string w = "LANGUAGE=en XDG_CONFIG_HOME= timeout 20 $b watch --json";
    const Outcome outcome = run(commands + " | " + w + " 2>$HOME/complaints");
    EXPECT_EQ(0, outcome.status);
    EXPECT_TRUE(
        outcome.output.starts_with(R"({"title":"C– · --%","toolTip":"Brimlet","menu":[)"
                                   R"({"item":"titleItem","title":"Current task: Reading )"))
        << outcome.output;
    EXPECT_NE(
        std::string::npos,
        outcome.output.find(R"({"item":"chineseLanguageItem","title":"简体中文","enabled":true,)"
                            R"("hidden":false,"tag":2,"state":true}]},{"item":"refreshItem",)"
                            R"("title":"重新检测")"));
    EXPECT_EQ("brimletctl: unknown command: key x\n", run("cat $HOME/complaints").output);
    EXPECT_EQ("{\"BrimletLanguageMode\":2}\n", run("cat $HOME/.config/brimlet/*").output);
    EXPECT_EQ("0\n",
              run("exec 3>&1; { " + w + " </dev/null; echo $? >&3; } | head -1 >/dev/null").output);
    EXPECT_EQ(1, run(w + " </dev/null >&-").status);
    EXPECT_EQ(1, run("test -e /dev/full || exit 1; " + w + " </dev/null >/dev/full").status);
    EXPECT_EQ(
        "0\n",
        run("$b watch --json </dev/null >$HOME/out & p=$!; until [ -s $HOME/out ]; do :; done; "
            "kill $p; wait $p; echo $?")
            .output);
}

#endif

TEST_F(BrimletctlTest, WatchesAsLinesWithoutATerminal) {
    makeTask();
    home.append(
        "Library/Logs/com.openai.codex/x.log",
        "1 thread_stream_view_activity_changed active=true rendererWindowAppearance=primary "
        "rendererWindowFocused=true conversationId=" +
            std::string(kTask) + "\n");
    EXPECT_EQ("C– · --%\nC1 · 47%  Fix  [31mthe \"tests\"\n",
              run("timeout 20 $b watch </dev/null | head -2").output);
}

TEST_F(BrimletctlTest, ExitStatuses) {
    for (const char* call : {"", "bogus", "latest x", "task", "task a b", "latest --json=1",
                             "query --json", "titles --bogus", "-x"}) {
        const Outcome outcome = run("$b " + std::string(call) + " >/dev/null");
        EXPECT_EQ(2, outcome.status) << call;
        EXPECT_NE(std::string::npos, outcome.output.find("\nTry: brimletctl help")) << call;
    }
    EXPECT_EQ(0, run("$b --help 2>/dev/null | grep -q usage:").status);
    EXPECT_EQ(0,
              run("$b --version | grep -qE '^brimletctl [0-9]+([.][0-9]+){2}( [(][0-9a-f]+[)])?$'")
                  .status);
    EXPECT_EQ("0\n", run("exec 3>&1; { sleep 0.2; $b titles; echo $? >&3; } | true").output);
    EXPECT_EQ(
        "0\n",
        run("exec 3>&1; { sleep 0.2; yes titles | head -1000 | $b query; echo $? >&3; } | true")
            .output);
    EXPECT_EQ(1, run("$b titles --json >&-").status);
    EXPECT_EQ(1, run("test -e /dev/full || exit 1; $b titles --json >/dev/full").status);
}

#ifdef BRIMLET_IS_CONFINED

TEST_F(BrimletctlTest, TellsThatNothingIsLeftToRunWith) {
    const Outcome outcome =
        run("exec 3>&- 4>&- 5>&- 6>&- 7>&- 8>&- 9>&-; "
            "prlimit --nofile=4 $b watch --json </dev/null");
    EXPECT_EQ("brimletctl: no file descriptors are left\n", outcome.output);
    EXPECT_EQ(1, outcome.status);
}

TEST_F(BrimletctlTest, GivesUpWhatItNeverNeeds) {
    const std::string confined = "grep -c '^Seccomp:.2$' /proc/$p/status";
    EXPECT_EQ("1\n",
              run("mkfifo in; $b query <in & p=$!; exec 3>in; sleep 0.2; " + confined).output);
    EXPECT_EQ("1\n2\n", run("$b watch --json <in >lines & p=$!; exec 3>in; sleep 0.3; " + confined +
                            "; grep -l '^Seccomp:.2$' /proc/$p/task/*/status | wc -l; kill $p")
                            .output);
    home.makeFolder(".config/brimlet");
    const Outcome outcome =
        run("$b watch --json <in >lines & exec 3>in; sleep 0.3; "
            "mv .config/brimlet moved; mkdir .config/brimlet; "
            "echo choose englishLanguageItem >&3; echo key q >&3; wait");
    EXPECT_NE(std::string::npos, outcome.output.find("cannot store the language"))
        << "the folder in the place of the one that it began with is another";
}

#endif

}  // namespace
