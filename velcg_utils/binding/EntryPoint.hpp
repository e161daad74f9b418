#pragma once

// The guard around the module entry points, which the host calls through C
// linkage: nothing may be thrown across them.

#include <exception>
#include <string>

#include "Messages.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "velcg/ModelDiagnostics.hpp"

namespace VelCG::binding {

// Reports "<entryPoint> failed: <cause>" as messages::Module::EntryPointFailed.
inline void reportEntryPointFailure(const char* entryPoint, const char* cause) noexcept {
    try {
        reportDiagnostic(vel::diag::Diagnostic::withText(messages::Module::EntryPointFailed,
                                                         std::string(entryPoint) + " failed: " + cause));
    } catch (...) {
        // Out of memory while describing the failure: nothing more to do.
    }
}

// Runs step unless a run has already succeeded (done), and sets done only
// once step returns, so that the host may call a failed entry point again.
// A failure never leaves: a diagnostic is reported through reportDiagnostic
// as it is, any other exception as messages::Module::EntryPointFailed naming entryPoint.
// REQUIRES: the host calls the entry points one at a time.
template <class Step>
void runEntryPointOnce(bool& done, const char* entryPoint, Step&& step) noexcept {
    if (done) return;
    try {
        step();
        done = true;
    } catch (const vel::diag::Exception& e) {
        reportDiagnostic(e.diagnostic());
    } catch (const std::exception& e) {
        reportEntryPointFailure(entryPoint, e.what());
    } catch (...) {
        reportEntryPointFailure(entryPoint, "an exception that is not a std::exception");
    }
}

} // namespace VelCG::binding
