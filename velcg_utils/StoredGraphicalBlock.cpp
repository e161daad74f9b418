#include "velcg/StoredGraphicalBlock.hpp"

#include "OwnedList.hpp"
#include "velcg/DataInterfaceRecord.hpp"
#include "velcg/Parameter.hpp"
#include "velcg/Port.hpp"
#include "velcg/State.hpp"

namespace VelCG {

StoredGraphicalBlock::StoredGraphicalBlock(std::wstring name) : name_(name), velName_(std::move(name)) {}

StoredGraphicalBlock::~StoredGraphicalBlock() {
    detail::deleteAll(dataInputPorts_);
    detail::deleteAll(dataOutputPorts_);
    detail::deleteAll(controlInputPorts_);
    detail::deleteAll(parameters_);
    detail::deleteAll(continuousStates_);
    detail::deleteAll(derivatives_);
    detail::deleteAll(discreteStates_);
    detail::deleteAll(dWorks_);
}

Port* StoredGraphicalBlock::addDataInputPort(std::unique_ptr<Port> port) {
    return detail::appendOwned(dataInputPorts_, std::move(port), "A data input port");
}
Port* StoredGraphicalBlock::addDataOutputPort(std::unique_ptr<Port> port) {
    return detail::appendOwned(dataOutputPorts_, std::move(port), "A data output port");
}
Port* StoredGraphicalBlock::addControlInputPort(std::unique_ptr<Port> port) {
    return detail::appendOwned(controlInputPorts_, std::move(port), "A control input port");
}
Parameter* StoredGraphicalBlock::addParameter(std::unique_ptr<Parameter> parameter) {
    return detail::appendOwned(parameters_, std::move(parameter), "A block parameter");
}
State* StoredGraphicalBlock::addContinuousState(std::unique_ptr<State> state) {
    return detail::appendOwned(continuousStates_, std::move(state), "A continuous state");
}
State* StoredGraphicalBlock::addDerivative(std::unique_ptr<State> state) {
    return detail::appendOwned(derivatives_, std::move(state), "A derivative");
}
DataInterfaceRecord* StoredGraphicalBlock::addDiscreteState(std::unique_ptr<DataInterfaceRecord> record) {
    return detail::appendOwned(discreteStates_, std::move(record), "A discrete state");
}
DataInterfaceRecord* StoredGraphicalBlock::addDWork(std::unique_ptr<DataInterfaceRecord> record) {
    return detail::appendOwned(dWorks_, std::move(record), "A work vector");
}

} // namespace VelCG
