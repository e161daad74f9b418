#pragma once

// The reference for template writers (docs/templates.md), written from the
// tables the library itself works from: the file kinds and their sections,
// the bridge's attributes and operations, the messages and their advice,
// and velcg-gen's globals.

#include <string>

namespace VelCG::inspect {

// The page as Markdown. Throws std::runtime_error when a table is
// inconsistent (a message without text).
std::string writeReference();

} // namespace VelCG::inspect
