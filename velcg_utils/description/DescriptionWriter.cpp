#include "description/DescriptionWriter.hpp"

#include <algorithm>
#include <cmath>

#include "description/Diagnostics.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "vel/i18n/Text.hpp"
#include "velcg/BlockHierarchyMap.hpp"
#include "velcg/CGModel.hpp"
#include "velcg/GraphicalBlock.hpp"
#include "velcg/GraphicalSubsystem.hpp"
#include "velcg/System.hpp"

namespace VelCG::description {

DescriptionWriter::DescriptionWriter(const CGModel& model) {
    const auto& subsystems = model.getBlockHierarchyMap()->getSubsystems();
    for (std::size_t s = 0; s < subsystems.size(); ++s) {
        subsystems_.emplace(subsystems[s], static_cast<int>(s));
        const auto& blocks = subsystems[s]->getBlocks();
        for (std::size_t b = 0; b < blocks.size(); ++b)
            blocks_.emplace(blocks[b], std::make_pair(static_cast<int>(s), static_cast<int>(b)));
    }
    const auto& parameters = model.getModelParameters();
    for (std::size_t i = 0; i < parameters.size(); ++i)
        modelParameters_.emplace(parameters[i], static_cast<int>(i));
    for (const auto& [name, system] : model.getFunctionSystems()) functions_[system].push_back(name);
    for (auto& entry : functions_) std::sort(entry.second.begin(), entry.second.end());
    // A function of a system outside the model's list is reported by the
    // model's own field, which knows where it would stand.
}

void DescriptionWriter::fail(const Place& place, const std::string& reason) const {
    raise(messages::ModelDescription::NotDescribable, {place.pointer(), reason});
}

Json DescriptionWriter::text(const std::string& value, const Place& place) const {
    try {
        vel::i18n::toUString(value);
    } catch (const vel::diag::Exception&) {
        fail(place, "the text is not valid UTF-8");
    }
    return value;
}

Json DescriptionWriter::wide(const std::wstring& value, const Place& place) const {
    try {
        return vel::i18n::toUtf8(value);
    } catch (const vel::diag::Exception&) {
        fail(place, "the text is not valid Unicode");
    }
}

Json DescriptionWriter::real(double value, const Place& place) const {
    if (!std::isfinite(value)) fail(place, "JSON has no number for " + std::to_string(value));
    return value;
}

Json DescriptionWriter::texts(const std::vector<std::string>& values, const Place& place) const {
    Json out = Json::array();
    for (std::size_t i = 0; i < values.size(); ++i) out.push_back(text(values[i], place / i));
    return out;
}

Json DescriptionWriter::wides(const std::vector<std::wstring>& values, const Place& place) const {
    Json out = Json::array();
    for (std::size_t i = 0; i < values.size(); ++i) out.push_back(wide(values[i], place / i));
    return out;
}

std::pair<int, int> DescriptionWriter::placeOf(const GraphicalBlock* block, const Place& place) const {
    auto it = blocks_.find(block);
    if (it == blocks_.end()) fail(place, "the block is not in the model's block hierarchy map");
    return it->second;
}

int DescriptionWriter::indexOf(const GraphicalSubsystem* subsystem, const Place& place) const {
    auto it = subsystems_.find(subsystem);
    if (it == subsystems_.end()) fail(place, "the subsystem is not in the model's block hierarchy map");
    return it->second;
}

int DescriptionWriter::indexOf(const ModelParameter* parameter, const Place& place) const {
    auto it = modelParameters_.find(parameter);
    if (it == modelParameters_.end()) fail(place, "the model parameter is not in the model's list");
    return it->second;
}

std::vector<std::string> DescriptionWriter::functionsOf(const System* system) const {
    auto it = functions_.find(system);
    return it == functions_.end() ? std::vector<std::string>{} : it->second;
}

} // namespace VelCG::description
