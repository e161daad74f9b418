#include "vel/diag/Diagnostic.hpp"

#include <algorithm>
#include <memory>
#include <mutex>

#include "vel/diag/MessageCatalog.hpp"

namespace vel::diag {

Diagnostic::Diagnostic(std::string identifier, std::vector<std::string> arguments, std::string message)
    : identifier_(std::move(identifier)), arguments_(std::move(arguments)), message_(std::move(message)) {}

Diagnostic Diagnostic::fromCatalog(std::string identifier, std::vector<std::string> arguments) {
    std::string message;
    if (std::optional<std::string> pattern = MessageCatalog::instance().lookup(identifier)) {
        message = MessageCatalog::format(*pattern, arguments);
    } else {
        // No text known: still say everything the caller gave.
        message = "Message " + identifier;
        for (std::size_t i = 0; i < arguments.size(); ++i) message += (i == 0 ? " (" : ", ") + arguments[i];
        if (!arguments.empty()) message += ")";
    }
    return Diagnostic(std::move(identifier), std::move(arguments), std::move(message));
}

Diagnostic Diagnostic::withText(std::string identifier, std::string text) {
    return Diagnostic(std::move(identifier), {}, std::move(text));
}

void Diagnostic::raise() const { throw Exception(*this); }

Exception::Exception(Diagnostic diagnostic)
    : diagnostic_(std::move(diagnostic)), what_(diagnostic_.identifier() + ": " + diagnostic_.message()) {}

void throwError(std::string identifier, std::vector<std::string> arguments) {
    Diagnostic::fromCatalog(std::move(identifier), std::move(arguments)).raise();
}

void throwErrorText(std::string identifier, std::string text) {
    Diagnostic::withText(std::move(identifier), std::move(text)).raise();
}

namespace {
// The collectors alive on this thread, oldest first.
std::vector<WarningCollector*>& threadCollectors() {
    thread_local std::vector<WarningCollector*> collectors;
    return collectors;
}

// The process-wide sink. Held by shared_ptr so that a delivery in progress
// keeps its sink alive while another thread replaces it; never destroyed,
// so that warnings raised during static destruction find it.
struct SinkSlot {
    std::mutex mutex;
    std::shared_ptr<const WarningSink> sink;
};
SinkSlot& sinkSlot() {
    static SinkSlot* slot = new SinkSlot;
    return *slot;
}

std::shared_ptr<const WarningSink> currentSink() {
    SinkSlot& slot = sinkSlot();
    std::lock_guard<std::mutex> lock(slot.mutex);
    return slot.sink;
}
} // namespace

void warn(std::string identifier, std::vector<std::string> arguments) noexcept {
    try {
        std::vector<WarningCollector*>& collectors = threadCollectors();
        if (!collectors.empty()) {
            const Diagnostic warning = Diagnostic::fromCatalog(std::move(identifier), std::move(arguments));
            for (WarningCollector* c : collectors) c->warnings_.push_back(warning);
            return;
        }
        // The sink is called without the lock held, so that it may itself
        // raise warnings or replace the sink.
        if (std::shared_ptr<const WarningSink> sink = currentSink())
            (*sink)(Diagnostic::fromCatalog(std::move(identifier), std::move(arguments)));
    } catch (...) {
        // A warning never changes the outcome of the code that raised it.
    }
}

WarningSink setWarningSink(WarningSink sink) {
    auto installed = sink ? std::make_shared<const WarningSink>(std::move(sink)) : nullptr;
    SinkSlot& slot = sinkSlot();
    std::shared_ptr<const WarningSink> previous;
    {
        std::lock_guard<std::mutex> lock(slot.mutex);
        previous.swap(slot.sink);
        slot.sink = std::move(installed);
    }
    return previous ? *previous : WarningSink();
}

ScopedWarningSink::ScopedWarningSink(WarningSink sink) : previous_(setWarningSink(std::move(sink))) {}

ScopedWarningSink::~ScopedWarningSink() { setWarningSink(std::move(previous_)); }

WarningCollector::WarningCollector() { threadCollectors().push_back(this); }

WarningCollector::~WarningCollector() {
    std::vector<WarningCollector*>& collectors = threadCollectors();
    collectors.erase(std::remove(collectors.begin(), collectors.end(), this), collectors.end());
}

} // namespace vel::diag
