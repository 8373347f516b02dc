#include <gtest/gtest.h>

#include "app/refresh_step.h"
#include "app/status_title.h"

namespace {

ORVSessionSnapshot snapshotWith(std::int64_t compactions, ORVCompactionStatus compactionStatus,
                                std::optional<ORVContextUsage> usage,
                                ORVContextStatus contextStatus) {
    return {"t", "id", "/x", compactions, usage, contextStatus, compactionStatus, {}};
}

TEST(StatusTitleTest, CompactionsThenTheShareInUse) {
    const auto valid = ORVCompactionStatusValid;
    const auto available = ORVContextStatusAvailable;
    const auto title = [](const ORVSessionSnapshot& snapshot) {
        return app::statusItemTitle(snapshot);
    };
    EXPECT_EQ("C3 · 47%",
              title(snapshotWith(3, valid, ORVContextUsage(128'000, 272'000), available)));
    EXPECT_EQ("C0 · 150%", title(snapshotWith(0, valid, ORVContextUsage(150, 100), available)));
    EXPECT_EQ("C0 · 0%", title(snapshotWith(0, valid, ORVContextUsage(5, 0), available)));
    EXPECT_EQ("C– · 5%", title(snapshotWith(3, ORVCompactionStatusIncompatible,
                                            ORVContextUsage(478, 10'000), available)));
    EXPECT_EQ("C3 · --%", title(snapshotWith(3, valid, std::nullopt, available)));
    EXPECT_EQ("C3 · --%",
              title(snapshotWith(3, valid, ORVContextUsage(1, 2), ORVContextStatusIncompatible)));
}

/// A session source that tells what it was asked and whether it leaves an error.
class RecordingSource final : public ORVAgentSessionSource {
public:
    std::string asked;
    bool fails = false;

    std::optional<ORVSessionSnapshot> latestSnapshotWithError(ORVErrorSlot*) override { return {}; }
    std::optional<ORVSessionSnapshot> snapshotForThreadID(std::string_view threadID,
                                                          ORVErrorSlot* error) override {
        asked = threadID;
        if (fails) {
            storeErrorIfEmpty(error, {"Orvellan", 2, ""});
            return {};
        }
        return snapshotWith(0, ORVCompactionStatusValid, {}, ORVContextStatusWaiting);
    }
    std::map<std::string, std::string> threadTitles() override { return {}; }
};

/// A log folder of one file whose content is given; a second folder in it may be unreadable.
class OneLog final : public ORVFiles {
public:
    std::string content;
    bool walkFails = false;

    bool walk(const std::string&, const NameTest&, const FileVisitor& visit,
              const ErrorHandler& failed) override {
        visit({"/logs/main.log", {}});
        if (walkFails) {
            failed({"posix", 13, ""});
        }
        return true;
    }
    std::optional<ORVFileAttributes> attributesOfItem(const std::string&, ORVErrorSlot*) override {
        return ORVFileAttributes{content.size(), 1, ORVFileDate{}};
    }
    std::optional<ORVFileDate> contentModificationDate(const std::string&) override { return {}; }
    bool itemExists(const std::string&) override { return false; }
    std::optional<std::string> realPath(const std::string&) override { return {}; }
    std::unique_ptr<ORVOpenFile> openForReading(const std::string& path, ORVErrorSlot*) override {
        return path == "/logs/main.log" ? std::make_unique<Content>(content) : nullptr;
    }

private:
    class Content final : public ORVOpenFile {
    public:
        explicit Content(const std::string& content) : content_(content) {}
        std::optional<std::size_t> readAt(std::uint64_t offset, char* buffer, std::size_t capacity,
                                          ORVErrorSlot*) override {
            return content_.copy(buffer, capacity, offset);
        }

    private:
        const std::string& content_;
    };
};

TEST(RefreshStepTest, ASnapshotIsAskedForOnlyWhileATaskIsInView) {
    const std::string task = "01a20e72-983b-7e83-81c7-e87b7b63d181";
    const std::string activity =
        " thread_stream_view_activity_changed active=true rendererWindowAppearance=primary "
        "rendererWindowFocused=true conversationId=";
    OneLog files;
    ORVCodexFocusLogSource focusSource(files, "/logs", "/Info.plist");
    RecordingSource source;
    files.walkFails = true;
    ORVRefreshResults results = app::refreshFromFiles(focusSource, source);
    EXPECT_EQ(ORVCodexFocusStatusNoFocusRecord, results.focusState.status());
    EXPECT_EQ("", source.asked);
    EXPECT_EQ(13, results.error->code);

    files.content = "1" + activity + task + "\n";
    results = app::refreshFromFiles(focusSource, source);
    EXPECT_EQ(task, source.asked);
    EXPECT_TRUE(results.snapshot);
    EXPECT_EQ(13, results.error->code) << "the focus source's error stands beside a snapshot";
    source.fails = true;
    results = app::refreshFromFiles(focusSource, source);
    EXPECT_FALSE(results.snapshot);
    EXPECT_EQ(13, results.error->code) << "and before a missing task";
    files.walkFails = false;
    results = app::refreshFromFiles(focusSource, source);
    EXPECT_EQ(2, results.error->code);

    source.asked.clear();
    files.content += "2" + activity + "client-new-thread:1\n";
    results = app::refreshFromFiles(focusSource, source);
    EXPECT_EQ("", source.asked);
    EXPECT_FALSE(results.snapshot);
    EXPECT_FALSE(results.error);
}

}  // namespace
