#include "vel/diag/MessageCatalog.hpp"

#include <mutex>
#include <shared_mutex>
#include <unordered_map>
#include <utility>

#include "brisk/Messages.hpp"
#include "coder/Messages.hpp"
#include "korb/Messages.hpp"
#include "tuv/Messages.hpp"

namespace vel::diag {

namespace {
// The host's own message texts, from the message lists of its catalogues.
// Libraries may add catalogs of their own.
struct Entry {
    const char* identifier;
    const char* text;
};

#define VEL_BRISK_ENTRY(key, text) {brisk::messages::key, text},
#define VEL_KORB_ENTRY(key, text) {korb::messages::key, text},
#define VEL_TUV_ENTRY(key, text) {tuv::messages::key, text},
#define VEL_CODER_REPOSITORY_ENTRY(key, text) {coder::messages::Repository::key, text},
#define VEL_CODER_DESCRIPTOR_ENTRY(key, text) {coder::messages::descriptor::key, text},
// clang-format off
constexpr Entry kHostEntries[] = {
    VEL_BRISK_CODEGEN_MESSAGES(VEL_BRISK_ENTRY)
    VEL_KORB_MESSAGES(VEL_KORB_ENTRY)
    VEL_TUV_MESSAGES(VEL_TUV_ENTRY)
    VEL_CODER_REPOSITORY_MESSAGES(VEL_CODER_REPOSITORY_ENTRY)
    VEL_CODER_DESCRIPTOR_MESSAGES(VEL_CODER_DESCRIPTOR_ENTRY)
};
// clang-format on
#undef VEL_BRISK_ENTRY
#undef VEL_KORB_ENTRY
#undef VEL_TUV_ENTRY
#undef VEL_CODER_REPOSITORY_ENTRY
#undef VEL_CODER_DESCRIPTOR_ENTRY

std::pair<std::string, std::string> splitIdentifier(const std::string& id) {
    auto pos = id.rfind(':');
    if (pos == std::string::npos) return {std::string(), id};
    return {id.substr(0, pos), id.substr(pos + 1)};
}
} // namespace

struct MessageCatalog::Impl {
    mutable std::shared_mutex mutex;
    std::unordered_map<std::string, std::map<std::string, std::string>> catalogs;
};

MessageCatalog::MessageCatalog() : impl_(std::make_unique<Impl>()) {
    for (const Entry& entry : kHostEntries) {
        auto [catalog, key] = splitIdentifier(entry.identifier);
        impl_->catalogs[catalog][key] = entry.text;
    }
}

MessageCatalog::~MessageCatalog() = default;

MessageCatalog& MessageCatalog::instance() {
    // Never destroyed: diagnostics may be raised during static destruction.
    static MessageCatalog* catalog = new MessageCatalog;
    return *catalog;
}

void MessageCatalog::addCatalog(const std::string& catalog,
                                const std::map<std::string, std::string>& templates) {
    std::unique_lock lock(impl_->mutex);
    auto& entries = impl_->catalogs[catalog];
    for (const auto& [key, text] : templates) entries[key] = text;
}

std::optional<std::string> MessageCatalog::lookup(const std::string& identifier) const {
    auto [catalog, key] = splitIdentifier(identifier);
    // The text is copied under the lock: addCatalog may replace it the moment
    // the lock is released.
    std::shared_lock lock(impl_->mutex);
    auto c = impl_->catalogs.find(catalog);
    if (c == impl_->catalogs.end()) return std::nullopt;
    auto m = c->second.find(key);
    if (m == c->second.end()) return std::nullopt;
    return m->second;
}

std::string MessageCatalog::format(const std::string& pattern, const std::vector<std::string>& arguments) {
    std::string out;
    out.reserve(pattern.size());
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        char c = pattern[i];
        if (c == '{' && i + 1 < pattern.size() && pattern[i + 1] == '{') {
            out += '{';
            ++i;
            continue;
        }
        if (c == '{') {
            std::size_t close = pattern.find('}', i);
            std::size_t n = 0;
            bool numeric = close != std::string::npos && close > i + 1;
            for (std::size_t j = i + 1; numeric && j < close; ++j) {
                if (pattern[j] < '0' || pattern[j] > '9' || n > 1000)
                    numeric = false;
                else
                    n = n * 10 + static_cast<std::size_t>(pattern[j] - '0');
            }
            if (numeric && n >= 1 && n <= arguments.size()) {
                out += arguments[n - 1];
                i = close;
                continue;
            }
        }
        out += c;
    }
    return out;
}

} // namespace vel::diag
