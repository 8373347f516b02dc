#pragma once

#include <cerrno>
#include <string>
#include <utility>

#include "platform/files.h"

/// Forwards to the real files, counts the calls and does what a disk does not do on demand. Counts
/// what is opened, so that a test can see that nothing was.
class FaultyFiles final : public ORVFiles {
public:
    /// The n-th call from here on fails, n from 1; 0 for none.
    int failingCall = 0;
    int failure = EIO;
    bool shortReads = false;       ///< A read gives a single byte.
    bool givesFileNumbers = true;  ///< Some file systems have none.
    std::uint64_t extraSize = 0;   ///< Added to every size: the file was cut after it was told.
    int calls = 0;
    int opened = 0;

    bool walk(const std::string& root, const NameTest& wanted, const FileVisitor& visit,
              const ErrorHandler& failed) override {
        if (fails()) {
            failed(platform::posixError(failure));
            return false;
        }
        return files_->walk(root, wanted, visit, failed);
    }

    std::optional<ORVFileAttributes> attributesOfItem(const std::string& path,
                                                      ORVErrorSlot* error) override {
        if (fails()) {
            storeError(error, platform::posixError(failure));
            return std::nullopt;
        }
        auto attributes = files_->attributesOfItem(path, error);
        if (attributes) {
            *attributes->size += extraSize;
            attributes->fileNumber = givesFileNumbers ? attributes->fileNumber : std::nullopt;
        }
        return attributes;
    }

    std::optional<ORVFileDate> contentModificationDate(const std::string& path) override {
        return fails() ? std::nullopt : files_->contentModificationDate(path);
    }

    bool itemExists(const std::string& path) override {
        return !fails() && files_->itemExists(path);
    }

    std::unique_ptr<ORVOpenFile> openForReading(const std::string& path,
                                                ORVErrorSlot* error) override {
        if (fails()) {
            storeError(error, platform::posixError(failure));
            return nullptr;
        }
        auto file = files_->openForReading(path, error);
        opened += file ? 1 : 0;
        return file ? std::make_unique<FaultyFile>(*this, std::move(file)) : nullptr;
    }

private:
    class FaultyFile final : public ORVOpenFile {
    public:
        FaultyFile(FaultyFiles& owner, std::unique_ptr<ORVOpenFile> file)
            : owner_(owner), file_(std::move(file)) {}

        std::optional<std::size_t> readAt(std::uint64_t offset, char* buffer, std::size_t capacity,
                                          ORVErrorSlot* error) override {
            if (owner_.fails()) {
                storeError(error, platform::posixError(owner_.failure));
                return std::nullopt;
            }
            return file_->readAt(offset, buffer, owner_.shortReads ? 1 : capacity, error);
        }

    private:
        FaultyFiles& owner_;
        std::unique_ptr<ORVOpenFile> file_;
    };

    bool fails() { return ++calls == failingCall; }

    std::unique_ptr<ORVFiles> files_ = platform::makeFiles();
};
