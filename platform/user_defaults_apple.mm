// Settings in the domain of the menu-bar program, which brimletctl shares.
// Tests: tests/platform/apple_test.mm.

#import "platform/foundation_apple.h"

namespace platform {
namespace {

NSString* const kDomain = @"com.orvellan.brimlet";

class DomainDefaults final : public ORVUserDefaults {
public:
    explicit DomainDefaults(NSString* domain) : domain_([domain copy]) {
        @autoreleasepool {
            // A program must not open its own domain by name.
            defaults_ = [[[NSBundle mainBundle] bundleIdentifier] isEqualToString:domain]
                            ? [[NSUserDefaults standardUserDefaults] retain]
                            : [[NSUserDefaults alloc] initWithSuiteName:domain];
        }
    }
    ~DomainDefaults() override {
        [defaults_ release];
        [domain_ release];
    }
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
            // Else a short-lived tool might end before it is stored.
            CFPreferencesAppSynchronize((CFStringRef)domain_);
        }
    }

private:
    NSString* domain_;
    NSUserDefaults* defaults_ = nil;
};

}  // namespace

std::unique_ptr<ORVUserDefaults> userDefaultsInDomain(const std::string& domain) {
    return std::make_unique<DomainDefaults>(foundationString(domain));
}

/// `cannotStore` is never called, because the system does not report such failures. A bundle of
/// another name, such as a test's, has settings of its own.
std::unique_ptr<ORVUserDefaults> standardUserDefaults(ORVStoringFailureHandler) {
    @autoreleasepool {
        NSString* own = [[NSBundle mainBundle] bundleIdentifier];
        return std::make_unique<DomainDefaults>(own ? own : kDomain);
    }
}

std::string placeOfUserDefaults() {
    return "the user defaults of com.orvellan.brimlet";
}

std::vector<std::string> makeFoldersOfUserDefaults(std::string_view) {
    return {};
}

}  // namespace platform
