#pragma once

#include <string>
#include <vector>

#include "vel/mi/Handle.hpp"
#include "velcg/Export.hpp"

namespace coder {
class Repository;
namespace descriptor {
class System;
} // namespace descriptor
} // namespace coder

namespace VelCG {

class CGModel;
class GraphicalBlock;

// One generated system: a unit of generated code with its entry functions.
// A base class: the identity queries answer neutral defaults here and are
// overridden by the code generator's own system class.
//
// The call-site blocks are not owned; they belong to the graphical model.
// The model pointer is not owned either: CGModel::addSystem sets it to the
// model that takes the system.
class VELCG_API System : public vel::mi::Handle {
public:
    System() = default;
    System(const System&) = default;
    System& operator=(const System&) = default;
    ~System() override;

    const char* getFullyQualifiedKorbTypeName() const override;

    virtual std::string getSystemType() const;
    virtual bool isRootSystem() const;
    virtual bool isAtomic() const;
    virtual std::string getName() const;
    virtual bool isCalledByBlock() const;
    virtual bool isReusableLibrarySubsystem() const;

    const std::string& getIdentifier() const { return identifier_; }
    void setIdentifier(const std::string& value) { identifier_ = value; }
    const std::string& getStartFcn() const { return startFcn_; }
    void setStartFcn(const std::string& value) { startFcn_ = value; }
    const std::string& getOutputFcn() const { return outputFcn_; }
    void setOutputFcn(const std::string& value) { outputFcn_ = value; }
    const std::string& getUpdateFcn() const { return updateFcn_; }
    void setUpdateFcn(const std::string& value) { updateFcn_ = value; }
    const std::string& getOutputUpdateFcn() const { return outputUpdateFcn_; }
    void setOutputUpdateFcn(const std::string& value) { outputUpdateFcn_ = value; }
    bool isModelReferenceBaseSystem() const { return isModelReferenceBaseSystem_; }
    void setIsModelReferenceBaseSystem(bool value) { isModelReferenceBaseSystem_ = value; }

    // The model that owns the system; null until a model takes it.
    const CGModel* getCGModel() const { return model_; }
    void setCGModel(const CGModel* model) { model_ = model; }

    // REQUIRES: each call site outlives every read of it (serialize). Host
    // scripts, which cannot ensure that, may set only blocks that the
    // system's own model owns ("VelCG:Model:InvalidOwnership" otherwise).
    const std::vector<GraphicalBlock*>& getGraphicalCallsites() const { return graphicalCallsites_; }
    void setGraphicalCallsites(const std::vector<GraphicalBlock*>& blocks) { graphicalCallsites_ = blocks; }
    void addGraphicalCallsite(GraphicalBlock* block) { graphicalCallsites_.push_back(block); }

    // 0 inlined, 1 non-reusable function, 2 reusable function; any other
    // value (3 until set) answers false to all three queries.
    void setBriskSystemCode(unsigned int code) { systemCode_ = code; }
    bool isInlined() const { return systemCode_ == 0; }
    bool isNonReusable() const { return systemCode_ == 1; }
    bool isReusable() const { return systemCode_ == 2; }

    // Writes the system (identifier, name) and then each call-site block, in
    // order, into the store and returns the descriptor system. REQUIRES: a
    // transaction is open on repository. A null call site raises
    // "VelCG:Model:NullArgument".
    coder::descriptor::System serialize(coder::Repository& repository) const;

private:
    std::string identifier_;
    std::string startFcn_;
    std::string outputFcn_;
    std::string updateFcn_;
    std::string outputUpdateFcn_;
    unsigned int systemCode_ = 3;
    bool isModelReferenceBaseSystem_ = false;
    std::vector<GraphicalBlock*> graphicalCallsites_;
    const CGModel* model_ = nullptr;
};

} // namespace VelCG
