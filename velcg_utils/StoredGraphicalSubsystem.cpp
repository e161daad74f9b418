#include "velcg/StoredGraphicalSubsystem.hpp"

namespace VelCG {

StoredGraphicalSubsystem::StoredGraphicalSubsystem(std::wstring name, GraphicalSubsystemType type)
    : name_(name), velName_(std::move(name)), type_(type) {}

StoredGraphicalSubsystem::~StoredGraphicalSubsystem() = default;

} // namespace VelCG
