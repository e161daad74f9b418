#include "velcg/Generation.hpp"

#include <memory>
#include <string>

#include "Messages.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "vel/feature/Feature.hpp"
#include "vel/i18n/Text.hpp"
#include "velcg/BlockHierarchyMap.hpp"
#include "velcg/CGModel.hpp"
#include "velcg/Features.hpp"
#include "velcg/FileRepScrivBridge.hpp"
#include "velcg/GraphicalSubsystem.hpp"
#include "velcg/VelCGFile.hpp"
#include "velcg/VelCGFileRepository.hpp"
#include "velcg/WholeFile.hpp"

namespace VelCG {

namespace fs = std::filesystem;

namespace {

std::wstring wide(const fs::path& path) { return vel::i18n::toWide(path.string()); }

std::size_t blockCount(const CGModel& model) {
    std::size_t n = 0;
    for (const GraphicalSubsystem* s : model.getBlockHierarchyMap()->getSubsystems())
        n += s->getBlocks().size();
    return n;
}

} // namespace

Generation::Generation(ModelDescription description, Settings settings)
    : settings_(std::move(settings)), description_(std::move(description)) {
    if (!description_.model)
        vel::diag::throwErrorText(messages::Generation::NoModel, "The description holds no model.");
    // A mistyped switch is refused before anything is written.
    VELFEAT_VelCGDirectEmitSerialize.checkOverride();
    output_ = std::make_unique<OutputDirectory>(settings_.outputDirectory, settings_.wait, settings_.onWait,
                                                !settings_.check);
    // The model is complete: its first pass runs while the templates do (on
    // a background thread at the switch's default).
    description_.model->serializeModel(wide(output_->staging()));
    repository_ = std::make_unique<VelCGFileRepository>();
    description_.createFiles(*repository_);
}

Generation::~Generation() = default;

namespace {
[[noreturn]] void released() {
    vel::diag::throwErrorText(messages::Generation::Completed,
                              "The generation has released its model already.");
}
} // namespace

CGModel& Generation::model() {
    if (!description_.model) released();
    return *description_.model;
}

VelCGFileRepository& Generation::repository() {
    if (!repository_) released();
    return *repository_;
}
const fs::path& Generation::outputDirectory() const { return output_->path(); }
const fs::path& Generation::stagingDirectory() const { return output_->staging(); }

void Generation::complete() {
    if (stage_ != Stage::Running)
        vel::diag::throwErrorText(messages::Generation::Completed, "The generation has completed already.");
    stage_ = Stage::Completed;
    using Clock = std::chrono::steady_clock;
    const Clock::time_point start = Clock::now();
    writeUnwrittenFiles(*repository_, output_->staging(), output_->path());
    const Clock::time_point written = Clock::now();
    CGModel& model = *description_.model;
    model.serializeModelAfterScriv(wide(output_->staging()));
    model.finishSerialization();
    writing_ = written - start;
    serializing_ = Clock::now() - written;
}

Generation::Result Generation::commit() {
    if (stage_ != Stage::Completed)
        vel::diag::throwErrorText(messages::Generation::NotCompleted,
                                  stage_ == Stage::Running ? "The generation has not completed yet."
                                                           : "The generation has been committed already.");
    stage_ = Stage::Committed;
    Result result;
    result.blocks = blockCount(*description_.model);
    result.level = VELFEAT_VelCGDirectEmitSerialize.peek();
    result.writing = writing_;
    result.serializing = serializing_;
    result.changes = settings_.check ? output_->compare() : output_->commit();
    return result;
}

ModelDescription Generation::releaseDescription() {
    if (stage_ != Stage::Committed)
        vel::diag::throwErrorText(messages::Generation::NotCompleted,
                                  "The generation has not been committed yet.");
    if (!description_.model) released();
    // The files may refer to the model: they go first, as in the destructor.
    repository_.reset();
    return std::move(description_);
}

Generation::Result Generation::finish() {
    complete();
    return commit();
}

void Generation::writeUnwrittenFiles(VelCGFileRepository& repository, const fs::path& directory,
                                     const fs::path& shownDirectory) {
    FileRepScrivBridge& bridge = repository.scrivBridge();
    const auto count = static_cast<std::int32_t>(repository.getFileList().size());
    for (std::int32_t i = 0; i < count; ++i) {
        const VelCGFile& file = *repository.getFileList()[static_cast<std::size_t>(i)];
        if (file.isWrittenToDisk() || file.getFiltered()) continue;
        try {
            writeWholeFile(bridge, i, directory);
        } catch (const vel::diag::Exception& e) {
            // Messages name the file where it was going, not where it was staged.
            std::string message = e.diagnostic().message();
            const std::string staged = directory.u8string(), shown = shownDirectory.u8string();
            for (std::size_t at; (at = message.find(staged)) != std::string::npos;)
                message.replace(at, staged.size(), shown);
            if (message.find(shown) == std::string::npos)
                message = (shownDirectory / fs::u8path(file.getNameAscii())).u8string() + ": " + message;
            vel::diag::throwErrorText(e.identifier(), message);
        }
    }
}

} // namespace VelCG
