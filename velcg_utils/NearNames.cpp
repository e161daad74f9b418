#include "NearNames.hpp"

#include <algorithm>
#include <cctype>

namespace VelCG::names_detail {

namespace {

char folded(char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); }

// The optimal string alignment distance: a swap of two neighbouring letters
// ("Fucntions") costs one edit, as people mistype.
std::size_t editDistance(const std::string& a, const std::string& b) {
    const std::size_t n = a.size(), m = b.size();
    // Three rows: the one before the previous, the previous and the current.
    std::vector<std::size_t> before(m + 1), previous(m + 1), current(m + 1);
    for (std::size_t j = 0; j <= m; ++j) previous[j] = j;
    for (std::size_t i = 1; i <= n; ++i) {
        current[0] = i;
        for (std::size_t j = 1; j <= m; ++j) {
            const bool same = folded(a[i - 1]) == folded(b[j - 1]);
            current[j] = std::min({previous[j] + 1, current[j - 1] + 1, previous[j - 1] + (same ? 0 : 1)});
            if (i > 1 && j > 1 && folded(a[i - 1]) == folded(b[j - 2]) &&
                folded(a[i - 2]) == folded(b[j - 1]))
                current[j] = std::min(current[j], before[j - 2] + 1);
        }
        before.swap(previous);
        previous.swap(current);
    }
    return previous[m];
}

} // namespace

std::vector<std::string> nearNames(const std::string& name, const std::vector<std::string>& candidates) {
    std::vector<std::string> nearest;
    std::size_t best = 0;
    for (const std::string& candidate : candidates) {
        if (candidate == name || std::find(nearest.begin(), nearest.end(), candidate) != nearest.end())
            continue;
        const std::size_t limit = std::max<std::size_t>(1, std::min(name.size(), candidate.size()) / 3);
        const std::size_t distance = editDistance(name, candidate);
        if (distance > limit || (!nearest.empty() && distance > best)) continue;
        if (nearest.empty() || distance < best) nearest.clear();
        best = distance;
        nearest.push_back(candidate);
    }
    return nearest;
}

std::string quotedList(const std::vector<std::string>& names, char quote, const char* conjunction) {
    std::string out;
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (i > 0) out += i + 1 == names.size() ? std::string(" ") + conjunction + " " : ", ";
        out += quote ? quote + names[i] + quote : names[i];
    }
    return out;
}

std::string didYouMean(const std::string& name, const std::vector<std::string>& candidates, char quote) {
    const std::vector<std::string> near = nearNames(name, candidates);
    return near.empty() ? std::string() : " (did you mean " + quotedList(near, quote) + "?)";
}

} // namespace VelCG::names_detail
