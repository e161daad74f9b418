#include "velcg/ModelDiagnostics.hpp"

#include <cstdio>
#include <mutex>

#include "vel/diag/Diagnostic.hpp"

namespace VelCG {

namespace {

std::mutex reporterMutex;
DiagnosticReporter currentReporter;

void reportToStandardError(const vel::diag::Diagnostic& diagnostic) {
    std::fprintf(stderr, "warning: %s: %s\n", diagnostic.identifier().c_str(), diagnostic.message().c_str());
}

} // namespace

void throwIndexOutOfRange(const std::string& what, std::int64_t index, std::size_t size) {
    vel::diag::throwErrorText(messages::Model::IndexOutOfRange, "Index " + std::to_string(index) +
                                                                    " is out of range for " + what + " (" +
                                                                    std::to_string(size) + " elements).");
}

void throwNoModel(const std::string& what) {
    vel::diag::throwErrorText(messages::Model::NoModel, what + " does not belong to a model.");
}

void throwNullArgument(const std::string& what) {
    vel::diag::throwErrorText(messages::Model::NullArgument, what + " must not be null.");
}

void throwInvalidOwnership(const std::string& text) {
    vel::diag::throwErrorText(messages::Model::InvalidOwnership, text);
}

DiagnosticReporter setDiagnosticReporter(DiagnosticReporter reporter) {
    std::lock_guard<std::mutex> lock(reporterMutex);
    currentReporter.swap(reporter);
    return reporter;
}

void reportDiagnostic(const vel::diag::Diagnostic& diagnostic) noexcept {
    try {
        DiagnosticReporter reporter;
        {
            std::lock_guard<std::mutex> lock(reporterMutex);
            reporter = currentReporter;
        }
        if (reporter)
            reporter(diagnostic);
        else
            reportToStandardError(diagnostic);
    } catch (...) {
        // A report must never take down the caller, typically a destructor.
    }
}

} // namespace VelCG
