#pragma once

#include <memory>
#include <string>
#include <vector>

#include "vel/mi/Handle.hpp"
#include "vel/tuvArray.hpp"
#include "velcg/Export.hpp"

namespace CG {
class DataInterface;
}

namespace coder {
class Repository;
namespace descriptor {
class ModelParameter;
} // namespace descriptor
} // namespace coder

namespace VelCG {

class GraphicalBlock;

// What the modelling environment knows about one model-level parameter.
class VELCG_API ModelParameterImpl {
public:
    ModelParameterImpl() = default;
    ModelParameterImpl(const ModelParameterImpl&) = default;
    ModelParameterImpl& operator=(const ModelParameterImpl&) = default;
    virtual ~ModelParameterImpl();

    virtual std::wstring getName() const = 0;
    virtual std::wstring getOriginalName() const = 0;
    virtual bool isAlias() const = 0;
    virtual std::wstring getWorkspaceVarName() const = 0;
    virtual bool isWorkspaceVar() const = 0;
    virtual bool isTunable() const = 0;
    virtual bool isPseudoWorkspaceVar() const = 0;
    // The block that defines the parameter, or null; not owned.
    virtual const GraphicalBlock* getGraphicalSource() const = 0;
    // The blocks that use the parameter; not owned.
    virtual const std::vector<GraphicalBlock*>& getGraphicalReferences() const = 0;
    // Null when the parameter has no data interface.
    virtual const CG::DataInterface* getDataInterface() const = 0;
};

// A model parameter: a facade over its implementation object, which it owns.
class VELCG_API ModelParameter {
public:
    // Takes ownership of impl; a null impl raises "VelCG:Model:NullArgument".
    explicit ModelParameter(ModelParameterImpl* impl);
    virtual ~ModelParameter();
    ModelParameter(const ModelParameter&) = delete;
    ModelParameter& operator=(const ModelParameter&) = delete;

    std::wstring getName() const { return impl_->getName(); }
    std::wstring getOriginalName() const { return impl_->getOriginalName(); }
    bool isAlias() const { return impl_->isAlias(); }
    std::wstring getWorkspaceVarName() const { return impl_->getWorkspaceVarName(); }
    bool isWorkspaceVar() const { return impl_->isWorkspaceVar(); }
    bool isTunable() const { return impl_->isTunable(); }
    bool isPseudoWorkspaceVar() const { return impl_->isPseudoWorkspaceVar(); }
    const GraphicalBlock* getGraphicalSource() const { return impl_->getGraphicalSource(); }
    const std::vector<GraphicalBlock*>& getGraphicalReferences() const {
        return impl_->getGraphicalReferences();
    }
    const CG::DataInterface* getDataInterface() const { return impl_->getDataInterface(); }
    // The data interface as a host value; empty when there is none.
    tuvArrayPtr getDataInterfaceAsTuvArray() const;

    // Writes the model parameter into the store: names and flags, the SID of
    // its graphical source when it has one, and the SIDs of the blocks that
    // use it, in order. isPseudoWorkspaceVar and the data interface are not
    // written. REQUIRES: a transaction is open on repository. A null
    // graphical reference raises "VelCG:Model:NullArgument".
    coder::descriptor::ModelParameter serialize(coder::Repository& repository) const;

    ModelParameterImpl* getImpl() { return impl_.get(); }
    const ModelParameterImpl* getImpl() const { return impl_.get(); }

private:
    std::unique_ptr<ModelParameterImpl> impl_;
};

// The script-visible model parameter, "VelCG.ModelParameter".
class VELCG_API ModelParameterKorb : public ModelParameter, public vel::mi::Handle {
public:
    explicit ModelParameterKorb(ModelParameterImpl* impl) : ModelParameter(impl) {}
    ~ModelParameterKorb() override;

    const char* getFullyQualifiedKorbTypeName() const override;
};

} // namespace VelCG
