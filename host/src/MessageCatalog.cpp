#include "vel/diag/MessageCatalog.hpp"

#include <mutex>
#include <shared_mutex>
#include <unordered_map>
#include <utility>

namespace vel::diag {

namespace {
// The host's own message texts. Libraries may add catalogs of their own.
const std::map<std::string, std::string> kBriskCodeGen = {
    {"CustomContentPreviousAssociation",
     "Custom section '{1}' cannot be associated with section '{2}': it is already associated with "
     "section '{3}'."},
    {"CustomContentSectionDoesNotExist",
     "Cannot add content to custom section '{2}' of file '{1}': the section has not been declared."},
    {"CustomContentSectionAlreadyRetrieved",
     "The content of custom section '{1}' was already retrieved and cannot be retrieved again in "
     "{2}. Each custom section can be placed only once; mark '{3}' as in use or remove the second "
     "placement."},
    {"CustomContentInvalidBuiltin",
     "Custom section '{1}' cannot be declared: '{2}' is not the name of a built-in file section."},
};

const std::map<std::string, std::string> kKorb = {
    {"InvalidHandle", "Invalid or deleted object."},
    {"UnknownClass", "No class '{1}' is registered with the object system."},
    {"UnknownProperty", "No property '{1}' for class '{2}'."},
    {"UnknownMethod", "No method '{1}' for class '{2}'."},
    {"ReadOnlyProperty", "Property '{1}' of class '{2}' is read-only."},
    {"ObjectLocked", "Cannot set property '{1}': the object of class '{2}' is locked."},
    {"InvalidPropertyValue", "Invalid value for property '{1}' of class '{2}': {3}"},
    {"InvalidArgument", "Argument {1} is invalid: {2}"},
    {"InvalidMethodArgument", "Invalid argument {3} for method '{1}' of class '{2}': {4}"},
    {"TypeMismatch", "Expected a value of type '{1}', but got {2}."},
    {"WrongNumberOfArguments", "Expected {1} argument(s), but got {2}."},
    {"WrongClass", "An object of class '{1}' cannot be used as '{2}'."},
    {"NotAHandle", "A native object of type '{1}' is not a handle object and cannot be given to scripts."},
    {"DuplicatePackage", "A package named '{1}' is already registered."},
    {"DuplicateClass", "A class named '{1}' is already registered."},
    {"DuplicateMember", "Class '{2}' already has a member named '{1}'."},
    {"UnknownSuperclass", "Class '{1}' names the superclass '{2}', which is not registered."},
    {"NotRegistering", "Class '{1}' can only be registered while its package is being added."},
};

const std::map<std::string, std::string> kTuv = {
    {"WrongClass", "Expected a {1} array, but the array is of class {2}."},
    {"NotScalar", "Expected a scalar, but the array is {1}-by-{2}."},
    {"IndexOutOfRange", "Index {1} is out of range for an array of {2} element(s)."},
};

const std::map<std::string, std::string> kCoderRepository = {
    {"CannotOpen", "Cannot open the code descriptor '{1}': {2}"},
    {"NotAStore", "'{1}' is not a code descriptor store; it was left unchanged."},
    {"NewerFormat",
     "The code descriptor '{1}' has format version {2}, newer than version {3} that this program reads; it "
     "was left unchanged."},
    {"Corrupt", "The code descriptor '{1}' is damaged: {2}"},
    {"ReadOnly", "Cannot write the code descriptor '{1}': {2}"},
    {"LeftMidWrite",
     "The code descriptor '{1}' was left by a writer that stopped in the middle of a transaction, which "
     "must be rolled back before the file can be read, and here it cannot be: {2}. Nothing committed is "
     "lost: run 'velcg-descriptor check {1}' as a user that may write the file and its directory, or open "
     "the file once for writing."},
    {"RolledBack",
     "The code descriptor '{1}' was left by a writer that stopped; its unfinished transaction was rolled "
     "back."},
    {"Busy", "The code descriptor '{1}' is locked by another writer: {2}"},
    {"Full", "The code descriptor '{1}' cannot grow: {2}. The transaction was rolled back."},
    {"Failed", "The code descriptor '{1}' failed: {2}"},
    {"TransactionActive", "A transaction is already open on the code descriptor '{1}'."},
    {"NoTransaction",
     "No transaction is open on the code descriptor '{1}'; records are written only inside one."},
};

const std::map<std::string, std::string> kCoderDescriptor = {
    {"Closed", "The code descriptor '{1}' was closed; its descriptor objects can no longer be used."},
    {"NullObject", "The descriptor object was released or never created."},
    {"NoModel", "The code descriptor '{1}' holds no model."},
    {"MissingRecord", "The code descriptor '{1}' has no {2} record {3}."},
    {"WrongType", "The code descriptor '{1}' holds a value of the wrong type in {2}.{3}."},
    {"WrongKind", "Expected a {1} record, but got {2}."},
    {"WrongRepository", "{1}.{2} can only hold records of its own code descriptor."},
    {"IndexOutOfRange", "Position {1} is out of range for {3}, which has {2} element(s)."},
    {"OutOfRange", "The value {3} does not fit {1}.{2}."},
    {"TooDeep", "The records nest more than {1} levels deep."},
    {"BrokenSequence",
     "The code descriptor '{1}' is damaged: the positions of {2}.{3} of record {4} are not 0, 1, 2, ..."},
};

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
    impl_->catalogs["Brisk:codeGen"] = kBriskCodeGen;
    impl_->catalogs["Korb"] = kKorb;
    impl_->catalogs["tuv"] = kTuv;
    impl_->catalogs["coder:Repository"] = kCoderRepository;
    impl_->catalogs["coder:descriptor"] = kCoderDescriptor;
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
