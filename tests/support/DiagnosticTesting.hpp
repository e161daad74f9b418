#pragma once

// Helpers for tests that check which diagnostic an operation raises.

#include <string>
#include <utility>
#include <vector>

#include "vel/diag/Diagnostic.hpp"

namespace testing_support {

// render(e) of the diagnostic e that f raises, or "no diagnostic". Other
// exceptions propagate and fail the test.
template <class F, class Render>
std::string renderedDiagnosticOf(F&& f, Render render) {
    try {
        std::forward<F>(f)();
    } catch (const vel::diag::Exception& e) {
        return render(e);
    }
    return "no diagnostic";
}

// The identifier of the diagnostic that f raises.
template <class F>
std::string diagnosticOf(F&& f) {
    return renderedDiagnosticOf(std::forward<F>(f),
                                [](const vel::diag::Exception& e) { return e.identifier(); });
}

// "identifier(arg1, arg2, ...)": identifier and argument order in one
// comparison.
template <class F>
std::string diagnosticWithArgumentsOf(F&& f) {
    return renderedDiagnosticOf(std::forward<F>(f), [](const vel::diag::Exception& e) {
        std::string out = e.identifier() + "(";
        for (std::size_t i = 0; i < e.arguments().size(); ++i) out += (i ? ", " : "") + e.arguments()[i];
        return out + ")";
    });
}

// What the diagnostic says, "identifier: message" as what() renders it.
template <class F>
std::string diagnosticTextOf(F&& f) {
    return renderedDiagnosticOf(std::forward<F>(f),
                                [](const vel::diag::Exception& e) { return std::string(e.what()); });
}

} // namespace testing_support
