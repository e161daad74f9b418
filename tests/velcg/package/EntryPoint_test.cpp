#include "binding/EntryPoint.hpp"

#include <functional>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <vector>

#include "vel/diag/Diagnostic.hpp"
#include "velcg/ModelDiagnostics.hpp"

using namespace VelCG;

namespace {

// Collects "identifier: message" of every report while it lives.
class ReportLog {
public:
    ReportLog()
        : previous_(setDiagnosticReporter([this](const vel::diag::Diagnostic& d) {
              lines.push_back(d.identifier() + ": " + d.message());
          })) {}
    ~ReportLog() { setDiagnosticReporter(previous_); }
    ReportLog(const ReportLog&) = delete;
    ReportLog& operator=(const ReportLog&) = delete;

    std::vector<std::string> lines;

private:
    DiagnosticReporter previous_;
};

TEST(EntryPoint, FailuresAreReportedAndTheNextCallRunsAgainUntilOneSucceeds) {
    ReportLog log;
    bool done = false;
    int runs = 0;
    const struct {
        std::function<void()> step;
        bool doneAfter;
    } calls[] = {
        {[&] {
             ++runs;
             vel::diag::throwErrorText("Korb:DuplicatePackage", "the package is taken");
         },
         false},
        {[&] {
             ++runs;
             throw std::runtime_error("out of room");
         },
         false},
        {[&] {
             ++runs;
             throw 42;
         },
         false},
        {[&] { ++runs; }, true},
        {[&] { ++runs; }, true}, // not run: a call has succeeded
    };
    for (const auto& call : calls) {
        binding::runEntryPointOnce(done, "PlexoInitialize_velcg", call.step);
        EXPECT_EQ(call.doneAfter, done);
    }
    EXPECT_EQ(4, runs);
    EXPECT_EQ((std::vector<std::string>{
                  "Korb:DuplicatePackage: the package is taken",
                  "VelCG:Module:EntryPointFailed: PlexoInitialize_velcg failed: out of room",
                  "VelCG:Module:EntryPointFailed: PlexoInitialize_velcg failed: an exception that is not a "
                  "std::exception",
              }),
              log.lines);
}

} // namespace
