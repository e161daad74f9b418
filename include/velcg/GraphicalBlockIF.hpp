#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "velcg/Export.hpp"

namespace VelCG {

class CGModel;
class DataInterfaceRecord;
class Parameter;
class Port;
class State;

// Whether a block exists in generated code.
enum class BlockVirtuality : std::int32_t {
    NonVirtual = 0,
    Virtual = 1,
    PostCompileVirtual = 2,
};

// What the modelling environment knows about one block. GraphicalBlock is
// a facade over an object of this interface; StoredGraphicalBlock answers
// from stored fields.
class VELCG_API GraphicalBlockIF {
public:
    GraphicalBlockIF() = default;
    GraphicalBlockIF(const GraphicalBlockIF&) = default;
    GraphicalBlockIF& operator=(const GraphicalBlockIF&) = default;
    virtual ~GraphicalBlockIF();

    // Name as used in generated code.
    virtual std::wstring getName() = 0;
    // Name in the modelling environment.
    virtual std::wstring getVelName() = 0;
    virtual std::wstring getSID() const = 0;
    virtual std::wstring getCompactSID() const = 0;
    virtual std::wstring getBlockPath() = 0;
    virtual std::wstring getType() const = 0;
    virtual std::wstring getDescription() const = 0;
    virtual std::wstring getReferencedModelName() const = 0;
    virtual bool getIsProtectedModelBlock() const = 0;
    virtual BlockVirtuality getVirtual() = 0;
    virtual const std::vector<Port*>& getDataInputPorts() const = 0;
    virtual const std::vector<Port*>& getDataOutputPorts() const = 0;
    virtual const std::vector<Port*>& getControlInputPorts() const = 0;
    virtual int getNumFcnCallOutputPorts() const = 0;
    virtual const std::vector<Parameter*>& getParameters() const = 0;
    virtual const std::vector<State*>& getContinuousStates() const = 0;
    virtual const std::vector<State*>& getDerivatives() const = 0;
    virtual const std::vector<DataInterfaceRecord*>& getDiscreteStates() const = 0;
    virtual const std::vector<DataInterfaceRecord*>& getDWorks() const = 0;
    virtual bool isReduced() const = 0;
    virtual void initializeCodegenInfo() = 0;
    // Name used in comments for a reusable library subsystem.
    virtual std::string getRLSCommentName() const = 0;
    virtual int getNumDataOutputPorts() const = 0;
    virtual bool isInport() const = 0;
    virtual bool isOutport() const = 0;
    virtual bool isSubsystem() const = 0;
    virtual bool isDataStoreMemory() const = 0;
    virtual const CGModel* getCGModel() const = 0;
};

} // namespace VelCG
