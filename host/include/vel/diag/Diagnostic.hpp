#pragma once

#include <exception>
#include <functional>
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

// Warnings: diagnostics about text or values the library drops by design,
// or about a repair it made on the way (a store rolled back on opening),
// raised without changing what the raising code does.
//
// A warning goes to every WarningCollector alive on the raising thread;
// when none is, to the process-wide sink; when no sink is installed (the
// default), it is discarded. The sink may be called from several threads
// at once and must not throw.
using WarningSink = std::function<void(const Diagnostic&)>;

// Creates the warning from the catalog and delivers it. Never throws: a
// warning that cannot be created or delivered is dropped.
VELHOST_API void warn(std::string identifier, std::vector<std::string> arguments) noexcept;

// Installs the process-wide sink (an empty function discards warnings) and
// returns the one it replaces.
VELHOST_API WarningSink setWarningSink(WarningSink sink);

// Installs a process-wide sink for its lifetime, then puts back the sink it
// replaced.
class VELHOST_API ScopedWarningSink {
public:
    explicit ScopedWarningSink(WarningSink sink);
    ~ScopedWarningSink();
    ScopedWarningSink(const ScopedWarningSink&) = delete;
    ScopedWarningSink& operator=(const ScopedWarningSink&) = delete;

private:
    WarningSink previous_;
};

// Records every warning raised on the thread that created it, while it is
// alive; the sink does not see them. Collectors nest: each one alive
// records the warning. Must be destroyed on the thread that created it.
class VELHOST_API WarningCollector {
public:
    WarningCollector();
    ~WarningCollector();
    WarningCollector(const WarningCollector&) = delete;
    WarningCollector& operator=(const WarningCollector&) = delete;

    // In the order raised.
    const std::vector<Diagnostic>& warnings() const { return warnings_; }
    void clear() { warnings_.clear(); }

private:
    friend void warn(std::string, std::vector<std::string>) noexcept;
    std::vector<Diagnostic> warnings_;
};

} // namespace vel::diag
