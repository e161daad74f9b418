// Two repositories on one file, each on its own thread: the writers take
// turns on the file's write lock and every commit survives whole.
#include <atomic>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

#include "DescriptorModels.hpp"
#include "StartLatch.hpp"
#include "TempDir.hpp"
#include "coder/descriptor/Descriptors.hpp"

namespace {

using namespace coder::descriptor;

TEST(RepositoryThreads, WritersOnOneFileTakeTurns) {
    testing_support::TempDir dir;
    const auto path = dir / "codedescriptor.strata";
    { coder::Repository create(path); } // creates the schema once
    constexpr int kWriters = 3, kPasses = 5, kBlocks = 50;
    testing_support::StartLatch start(kWriters);
    std::atomic<int> failures{0};
    std::vector<std::thread> writers;
    for (int w = 0; w < kWriters; ++w) {
        writers.emplace_back([&, w] {
            try {
                coder::RepositoryOptions patient;
                patient.busyTimeoutMs = 60000;
                coder::Repository repository(path, patient);
                // Start together so that the transactions really contend.
                start.arriveAndWait();
                for (int pass = 0; pass < kPasses; ++pass) {
                    coder::Transaction transaction(repository);
                    testing_support::writeModel(repository,
                                                u"writer" + vel::i18n::toUString(std::to_string(w)), kBlocks);
                    transaction.commit();
                }
            } catch (...) {
                ++failures;
            }
        });
    }
    for (auto& writer : writers) writer.join();
    EXPECT_EQ(0, failures.load());

    coder::Repository repository(path, {coder::RepositoryOptions::Access::ReadOnly});
    EXPECT_TRUE(repository.checkIntegrity().empty());
    Model model = RepositoryHelper::getModel(repository);
    const auto systems = model.getBlockHierarchyMap().getGraphicalSystems();
    ASSERT_EQ(1u, systems.size());
    EXPECT_EQ(static_cast<std::size_t>(kBlocks), systems.at(0).getGraphicalBlocks().size());
}

} // namespace
