#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "vel/HostExport.hpp"

namespace vel::diag {

// The host's message catalog: message templates keyed by identifier
// ("Catalog:Key"; the catalog part may itself contain colons, the key is the
// text after the last colon). Templates place arguments by number: "{1}" is
// the first argument. A placeholder without an argument renders as "{n}";
// "{{" renders a single brace.
//
// Safe for concurrent use from multiple threads without external
// synchronization: texts are handed out as copies, so a catalog replaced
// while another thread formats a message never changes a text in use.
class VELHOST_API MessageCatalog {
public:
    // The process-wide catalog, holding the host's own catalogs. Never
    // destroyed, so that diagnostics can be raised during static destruction.
    static MessageCatalog& instance();

    ~MessageCatalog();
    MessageCatalog(const MessageCatalog&) = delete;
    MessageCatalog& operator=(const MessageCatalog&) = delete;

    // Adds the templates to one catalog, replacing those of the same keys;
    // other keys of the catalog keep their templates.
    void addCatalog(const std::string& catalog, const std::map<std::string, std::string>& templates);
    // The template for "Catalog:Key", or std::nullopt when none is known.
    std::optional<std::string> lookup(const std::string& identifier) const;

    static std::string format(const std::string& pattern, const std::vector<std::string>& arguments);

private:
    MessageCatalog();
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

} // namespace vel::diag
