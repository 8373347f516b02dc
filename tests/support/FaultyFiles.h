#pragma once

#include <cerrno>
#include <string>
#include <utility>

#include "platform/files.h"

/// Forwards to the real files, counts the calls and does what a disk does not do on demand. Counts
/// what is opened, so that a test can see that nothing was.
class FaultyFiles final : public ORVFiles {
public:
    enum class Fault {
        error,         ///< The call fails, whichever it is.
        unseenFolder,  ///< A walk cannot enter the folders in which the files are.
        largerSize,    ///< The file was cut after its size was told.
        smallerSize,   ///< It grew.
        noSize,
        noDate,
        noFileNumber,
        shortRead,  ///< A read gives a single byte.
        earlyEnd,   ///< A read meets the end of a file that is followed as it grows.
    };

    /// The n-th call from here on goes wrong, n from 1; 0 for none.
    int failingCall = 0;
    Fault fault = Fault::error;
    int failure = EIO;
    bool shortReads = false;       ///< Every read gives a single byte.
    bool givesFileNumbers = true;  ///< Some file systems have none.
    std::uint64_t extraSize = 0;   ///< Added to every size: the file was cut after it was told.
    int calls = 0;
    int faults = 0;  ///< That happened: not every fault can happen to every call.
    int opened = 0;

    bool walk(const std::string& root, const NameTest& wanted, const FileVisitor& visit,
              const ErrorHandler& failed) override {
        ++calls;
        if (happens(Fault::error)) {
            failed(platform::posixError(failure));
            return false;
        }
        if (happens(Fault::unseenFolder)) {
            failed(platform::posixError(failure));
            return files_->walk(
                root, wanted, [](ORVWalkedFile&&) {}, failed);
        }
        return files_->walk(root, wanted, visit, failed);
    }

    std::optional<ORVFileAttributes> attributesOfItem(const std::string& path,
                                                      ORVErrorSlot* error) override {
        ++calls;
        if (happens(Fault::error)) {
            storeError(error, platform::posixError(failure));
            return std::nullopt;
        }
        auto attributes = files_->attributesOfItem(path, error);
        if (attributes) {
            spoil(*attributes);
        }
        return attributes;
    }

    std::optional<ORVFileDate> contentModificationDate(const std::string& path) override {
        ++calls;
        return happens(Fault::error) ? std::nullopt : files_->contentModificationDate(path);
    }

    bool itemExists(const std::string& path) override {
        ++calls;
        return !happens(Fault::error) && files_->itemExists(path);
    }

    std::optional<std::string> realPath(const std::string& path) override {
        ++calls;
        return happens(Fault::error) ? std::nullopt : files_->realPath(path);
    }

    std::unique_ptr<ORVOpenFile> openForReading(const std::string& path,
                                                ORVErrorSlot* error) override {
        ++calls;
        if (happens(Fault::error)) {
            storeError(error, platform::posixError(failure));
            return nullptr;
        }
        auto file = files_->openForReading(path, error);
        opened += file ? 1 : 0;
        // What is read whole gets another date when it gets another end.
        const bool isFollowed = !path.ends_with("session_index.jsonl") && !path.ends_with(".plist");
        return file ? std::make_unique<FaultyFile>(*this, std::move(file), isFollowed) : nullptr;
    }

private:
    class FaultyFile final : public ORVOpenFile {
    public:
        FaultyFile(FaultyFiles& owner, std::unique_ptr<ORVOpenFile> file, bool isFollowed)
            : owner_(owner), file_(std::move(file)), isFollowed_(isFollowed) {}

        std::optional<std::size_t> readAt(std::uint64_t offset, char* buffer, std::size_t capacity,
                                          ORVErrorSlot* error) override {
            ++owner_.calls;
            if (owner_.happens(Fault::error)) {
                storeError(error, platform::posixError(owner_.failure));
                return std::nullopt;
            }
            if (isFollowed_ && owner_.happens(Fault::earlyEnd)) {
                return 0;
            }
            const bool isShort = owner_.happens(Fault::shortRead) || owner_.shortReads;
            return file_->readAt(offset, buffer, isShort ? 1 : capacity, error);
        }

    private:
        FaultyFiles& owner_;
        std::unique_ptr<ORVOpenFile> file_;
        const bool isFollowed_;
    };

    /// Whether this fault is to happen to the call under way.
    bool happens(Fault kind) {
        const bool isNow = calls == failingCall && fault == kind;
        faults += isNow ? 1 : 0;
        return isNow;
    }

    void spoil(ORVFileAttributes& attributes) {
        *attributes.size += extraSize + (happens(Fault::largerSize) ? 100 : 0);
        if (happens(Fault::smallerSize)) {
            *attributes.size /= 2;
        }
        if (happens(Fault::noSize)) {
            attributes.size.reset();
        }
        if (happens(Fault::noDate)) {
            attributes.modifiedAt.reset();
        }
        if (happens(Fault::noFileNumber) || !givesFileNumbers) {
            attributes.fileNumber.reset();
        }
    }

    std::unique_ptr<ORVFiles> files_ = platform::makeFiles();
};
