// Settings in the domain of the menu-bar program, which brimletctl shares.

#import "platform/foundation_string_apple.h"
#include "platform/user_defaults.h"

namespace platform {
namespace {

NSString* const kDomain = @"com.orvellan.brimlet";

class DomainDefaults final : public ORVUserDefaults {
public:
    DomainDefaults() {
        @autoreleasepool {
            // A program must not open its own domain by name.
            isOwnDomain_ = [[[NSBundle mainBundle] bundleIdentifier] isEqualToString:kDomain];
            defaults_ = isOwnDomain_ ? [[NSUserDefaults standardUserDefaults] retain]
                                     : [[NSUserDefaults alloc] initWithSuiteName:kDomain];
        }
    }
    ~DomainDefaults() override { [defaults_ release]; }
    DomainDefaults(const DomainDefaults&) = delete;
    DomainDefaults& operator=(const DomainDefaults&) = delete;

    std::optional<std::int64_t> integerForKey(std::string_view key) override {
        @autoreleasepool {
            NSString* name = foundationString(key);
            if (![defaults_ objectForKey:name]) {
                return std::nullopt;
            }
            return [defaults_ integerForKey:name];
        }
    }

    void setInteger(std::int64_t value, std::string_view key) override {
        @autoreleasepool {
            [defaults_ setInteger:static_cast<NSInteger>(value) forKey:foundationString(key)];
            if (!isOwnDomain_) {
                [defaults_ synchronize];  // Else a short-lived tool might end before it is stored.
            }
        }
    }

private:
    bool isOwnDomain_ = false;
    NSUserDefaults* defaults_ = nil;
};

}  // namespace

/// `cannotStore` is never called, because the system does not report such failures.
std::unique_ptr<ORVUserDefaults> standardUserDefaults(ORVStoringFailureHandler) {
    return std::make_unique<DomainDefaults>();
}

std::string placeOfUserDefaults() {
    return "the user defaults of com.orvellan.brimlet";
}

std::vector<std::string> foldersOfUserDefaults() {
    return {};
}

}  // namespace platform
