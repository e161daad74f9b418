#include "velcg/Port.hpp"

#include <algorithm>
#include <string>
#include <unordered_set>

#include "OwnedList.hpp"
#include "Serialization.hpp"
#include "coder/descriptor/Port.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "vel/i18n/Text.hpp"
#include "velcg/BlockHierarchyMap.hpp"
#include "velcg/CGModel.hpp"
#include "velcg/Features.hpp"
#include "velcg/GraphicalBlock.hpp"
#include "velcg/GraphicalSubsystem.hpp"
#include "velcg/ModelDiagnostics.hpp"
#include "velcg/Region.hpp"

namespace VelCG {

Port::~Port() {
    endScriptAccess();
    detail::deleteAll(regions_);
}

const char* Port::getFullyQualifiedKorbTypeName() const { return "VelCG.Port"; }

std::wstring Port::getVelName() const { return {}; }
bool Port::getConnected() const { return false; }

const std::wstring& Port::getSignalLabel() const {
    static const std::wstring none;
    return signalLabel_ ? *signalLabel_ : none;
}

void Port::setSignalLabel(const std::wstring& label) {
    if (signalLabel_)
        *signalLabel_ = label;
    else if (!label.empty())
        signalLabel_ = std::make_unique<std::wstring>(label);
}

void Port::addRegion(std::unique_ptr<Region> region) {
    detail::appendOwned(regions_, std::move(region), "A region");
}

void Port::setGrSrcPortIdx(int subsystemIdx, int blockIdx, int portIdx) {
    srcSubsystemIdx_ = subsystemIdx;
    srcBlockIdx_ = blockIdx;
    srcPortIdx_ = portIdx;
}

const Port* Port::getGraphicalSource() const {
    if (const Port* cached = graphicalSource_.load(std::memory_order_acquire)) return cached;
    if (!model_ || srcSubsystemIdx_ == -1) return nullptr;

    const auto& subsystems = model_->getBlockHierarchyMap()->getSubsystems();
    if (srcSubsystemIdx_ < 0 || static_cast<std::size_t>(srcSubsystemIdx_) >= subsystems.size())
        throwIndexOutOfRange("the subsystems of the block hierarchy map", srcSubsystemIdx_,
                             subsystems.size());
    const auto& blocks = subsystems[static_cast<std::size_t>(srcSubsystemIdx_)]->getBlocks();
    if (srcBlockIdx_ < 0 || static_cast<std::size_t>(srcBlockIdx_) >= blocks.size())
        throwIndexOutOfRange("the blocks of subsystem " + std::to_string(srcSubsystemIdx_), srcBlockIdx_,
                             blocks.size());
    const auto& outputs = blocks[static_cast<std::size_t>(srcBlockIdx_)]->getDataOutputPorts();
    // An index past the outputs is no source (not cached, so a later call
    // retries once the block has its ports).
    if (srcPortIdx_ < 0 || srcPortIdx_ >= static_cast<int>(outputs.size())) return nullptr;
    const Port* source = outputs[static_cast<std::size_t>(srcPortIdx_)];
    graphicalSource_.store(source, std::memory_order_release);
    return source;
}

void Port::setConnected(bool) {}
void Port::setGraphicalSource(const Port*) {}
void Port::setRegions(const std::vector<Region*>&) {}
void Port::setVelName(const std::wstring&) {}

coder::descriptor::Port Port::createRecord(coder::Repository& repository) const {
    coder::descriptor::PortCreator creator(repository);
    creator.setGraphicalName(vel::i18n::toUString(getVelName()));
    creator.setSignalLabel(vel::i18n::toUString(getSignalLabel()));
    creator.setConnected(getConnected());
    creator.setTestPoint(testPoint_);
    return creator.createPort();
}

coder::descriptor::Port Port::serialize(coder::Repository& repository, bool withDataInterfaces) const {
    // The chain of sources is walked in a loop rather than by recursion, so
    // that neither a long chain nor a cyclic one (indices that lead back to a
    // port already on it) can exhaust the stack.
    std::vector<const Port*> chain{this};
    std::unordered_set<const Port*> onChain{this};
    for (const Port* source = getGraphicalSource(); source; source = source->getGraphicalSource()) {
        if (!onChain.insert(source).second) {
            const auto position = std::find(chain.begin(), chain.end(), source) - chain.begin();
            vel::diag::throwErrorText(
                messages::Model::CyclicSource,
                "The graphical sources of a port form a cycle: after " + std::to_string(chain.size()) +
                    " port(s) the chain returns to port " + std::to_string(position) + " of it.");
        }
        chain.push_back(source);
    }

    // The records are written in the order a recursive walk would write them:
    // every port first, then from the last source back, each port's source
    // and data interfaces.
    std::vector<coder::descriptor::Port> records;
    records.reserve(chain.size());
    for (const Port* port : chain) records.push_back(port->createRecord(repository));
    for (std::size_t i = chain.size(); i-- > 0;) {
        if (i + 1 < chain.size()) records[i].setGraphicalSource(records[i + 1]);
        if (VELFEAT_VelCGDirectEmitSerialize.value() >= 2 && withDataInterfaces) {
            const auto dataInterfaces = records[i].getDataInterfaces();
            for (const Region* region : chain[i]->regions_)
                if (const CG::DataInterface* dataInterface = region->getDataInterface())
                    dataInterfaces.append(detail::serializeDataInterface(repository, *dataInterface));
        }
    }
    return records.front();
}

} // namespace VelCG
