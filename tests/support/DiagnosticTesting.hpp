#pragma once

// Helpers for tests that check which diagnostic an operation raises.

#include <string>
#include <utility>
#include <vector>

#include "vel/diag/Diagnostic.hpp"

namespace testing_support {

// The identifier of the diagnostic that f raises, or "no diagnostic". Other
// exceptions propagate and fail the test.
template <class F>
std::string diagnosticOf(F&& f) {
    try {
        std::forward<F>(f)();
    } catch (const vel::diag::Exception& e) {
        return e.identifier();
    }
    return "no diagnostic";
}

// "identifier(arg1, arg2, ...)" of the diagnostic that f raises, or
// "no diagnostic": checks identifier and argument order in one comparison.
template <class F>
std::string diagnosticWithArgumentsOf(F&& f) {
    try {
        std::forward<F>(f)();
    } catch (const vel::diag::Exception& e) {
        std::string out = e.identifier() + "(";
        for (std::size_t i = 0; i < e.arguments().size(); ++i) out += (i ? ", " : "") + e.arguments()[i];
        return out + ")";
    }
    return "no diagnostic";
}

// What the diagnostic that f raises says, "identifier: message" as what()
// renders it, or "no diagnostic".
template <class F>
std::string diagnosticTextOf(F&& f) {
    try {
        std::forward<F>(f)();
    } catch (const vel::diag::Exception& e) {
        return e.what();
    }
    return "no diagnostic";
}

} // namespace testing_support
