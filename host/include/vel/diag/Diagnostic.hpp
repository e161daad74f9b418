#pragma once

#include <exception>
#include <string>
#include <vector>

#include "vel/HostExport.hpp"
#include "vel/diag/MessageCatalog.hpp"

namespace vel::diag {

// A diagnostic: an identifier such as "Brisk:codeGen:CustomContentSectionDoesNotExist"
// plus ordered string arguments and the readable message made from them.
//
// Identifiers are "Catalog:Key", where the catalog part may itself contain
// colons; the key is the text after the last colon. A diagnostic created from
// arguments takes its message template from the MessageCatalog; one created
// from a text carries that text and no arguments.
class VELHOST_API Diagnostic {
public:
    static Diagnostic fromCatalog(std::string identifier, std::vector<std::string> arguments);
    static Diagnostic withText(std::string identifier, std::string text);

    const std::string& identifier() const { return identifier_; }
    const std::vector<std::string>& arguments() const { return arguments_; }
    const std::string& message() const { return message_; }

    // Throws this diagnostic as the host exception.
    [[noreturn]] void raise() const;

private:
    Diagnostic(std::string identifier, std::vector<std::string> arguments, std::string message);

    std::string identifier_;
    std::vector<std::string> arguments_;
    std::string message_;
};

// The host exception. what() is "identifier: message".
class VELHOST_API Exception : public std::exception {
public:
    explicit Exception(Diagnostic diagnostic);
    const char* what() const noexcept override { return what_.c_str(); }
    const Diagnostic& diagnostic() const noexcept { return diagnostic_; }
    const std::string& identifier() const noexcept { return diagnostic_.identifier(); }
    const std::vector<std::string>& arguments() const noexcept { return diagnostic_.arguments(); }

private:
    Diagnostic diagnostic_;
    std::string what_;
};

// Shorthands for the common case of creating and throwing at once.
[[noreturn]] VELHOST_API void throwError(std::string identifier, std::vector<std::string> arguments);
[[noreturn]] VELHOST_API void throwErrorText(std::string identifier, std::string text);

} // namespace vel::diag
