#include "vel/diag/Diagnostic.hpp"

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

} // namespace vel::diag
