#pragma once

// The library's message catalogue as a table: each message with its
// template and, for the messages a template script can meet, what its
// author does about it. MessageCatalog.cpp hands the templates to the host
// catalogue when the library is loaded; the template reference lists the
// advice. Internal to the library: not installed, not exported.

#include <vector>

namespace VelCG::messages_detail {

struct MessageEntry {
    const char* identifier; // "Catalog:Key"
    // The template, arguments as {1}, {2}, ...; null for a message of the
    // host's own catalogue, listed for its advice.
    const char* text;
    // What a template author does when the message appears; null for the
    // messages a template does not meet.
    const char* advice;
    bool warning;
};

// In catalogue order.
const std::vector<MessageEntry>& messageEntries();

} // namespace VelCG::messages_detail
