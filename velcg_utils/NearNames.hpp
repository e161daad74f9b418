#pragma once

// Suggestions for a mistyped name: the known names closest to it. Internal
// to the library: not installed, not exported.

#include <string>
#include <vector>

namespace VelCG::names_detail {

// The candidates nearest to name, in candidate order: those at the smallest
// edit distance (insertions, deletions, substitutions and swaps of
// neighbouring letters, letter case ignored) when that distance is at most a
// third of the shorter name's length (at least 1). Empty when none is that
// close.
std::vector<std::string> nearNames(const std::string& name, const std::vector<std::string>& candidates);

// The names in quotes (none for quote 0), joined as a reader lists them:
// "a", "a or b", "a, b or c" (with conjunction "and": "a, b and c").
std::string quotedList(const std::vector<std::string>& names, char quote, const char* conjunction = "or");

// " (did you mean 'Creator'?)" for the names near name, or "" when none is
// near: a suffix for a message that says name is unknown.
std::string didYouMean(const std::string& name, const std::vector<std::string>& candidates, char quote);

} // namespace VelCG::names_detail
