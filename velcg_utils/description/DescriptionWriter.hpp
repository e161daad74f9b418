#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "description/DescriptionReader.hpp"
#include "description/Json.hpp"

namespace VelCG {
class CGModel;
class GraphicalBlock;
class GraphicalSubsystem;
class ModelParameter;
class System;
} // namespace VelCG

namespace VelCG::description {

// The state of one writing of a model: where each object that others refer
// to stands in the description. Every conversion checks that the value can
// be written (text in UTF-8, finite numbers, named enumerators) and raises
// "VelCG:ModelDescription:NotDescribable" naming the place otherwise.
class DescriptionWriter {
public:
    explicit DescriptionWriter(const CGModel& model);

    [[noreturn]] void fail(const Place& place, const std::string& reason) const;

    Json text(const std::string& value, const Place& place) const;
    Json wide(const std::wstring& value, const Place& place) const;
    Json real(double value, const Place& place) const;
    Json texts(const std::vector<std::string>& values, const Place& place) const;
    Json wides(const std::vector<std::wstring>& values, const Place& place) const;

    template <class E>
    Json enumeration(E value, const Place& place, const Enumeration<E>& names) const {
        for (const auto& [name, enumerator] : names)
            if (enumerator == value) return name;
        fail(place, "the value " + std::to_string(static_cast<std::int64_t>(value)) + " has no name");
    }

    // Where the block stands in the block hierarchy map, as (subsystem,
    // block); NotDescribable for a block the map does not hold.
    std::pair<int, int> placeOf(const GraphicalBlock* block, const Place& place) const;
    int indexOf(const GraphicalSubsystem* subsystem, const Place& place) const;
    int indexOf(const ModelParameter* parameter, const Place& place) const;
    // The function names recorded for the system, sorted; empty for a
    // system that has none.
    std::vector<std::string> functionsOf(const System* system) const;

private:
    std::unordered_map<const GraphicalBlock*, std::pair<int, int>> blocks_;
    std::unordered_map<const GraphicalSubsystem*, int> subsystems_;
    std::unordered_map<const ModelParameter*, int> modelParameters_;
    std::unordered_map<const System*, std::vector<std::string>> functions_;
};

} // namespace VelCG::description
