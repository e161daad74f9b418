#pragma once

#include <memory>
#include <string>
#include <vector>

#include "vel/mi/Handle.hpp"
#include "velcg/Export.hpp"

namespace coder {
class Repository;
namespace descriptor {
class BlockParameter;
} // namespace descriptor
} // namespace coder

namespace VelCG {

class ModelParameter;

// What the modelling environment knows about one block parameter.
class VELCG_API ParameterImpl {
public:
    ParameterImpl() = default;
    ParameterImpl(const ParameterImpl&) = default;
    ParameterImpl& operator=(const ParameterImpl&) = default;
    virtual ~ParameterImpl();

    virtual std::wstring getName() const = 0;
    // The model parameters the block parameter refers to; not owned (the
    // model owns its model parameters).
    virtual const std::vector<ModelParameter*>& getModelParameters() const = 0;
};

// A block parameter: a facade over its implementation object, which it owns.
class VELCG_API Parameter {
public:
    // Takes ownership of impl; a null impl raises "VelCG:Model:NullArgument".
    explicit Parameter(ParameterImpl* impl);
    virtual ~Parameter();
    Parameter(const Parameter&) = delete;
    Parameter& operator=(const Parameter&) = delete;

    std::wstring getName() const { return impl_->getName(); }
    const std::vector<ModelParameter*>& getModelParameters() const { return impl_->getModelParameters(); }

    // Writes the block parameter (its name) into the store; when the
    // VelCGDirectEmitSerialize level is at least 2, also each model
    // parameter it refers to, in order. REQUIRES: a transaction is open on
    // repository. A null model parameter raises "VelCG:Model:NullArgument".
    coder::descriptor::BlockParameter serialize(coder::Repository& repository) const;

    ParameterImpl* getImpl() { return impl_.get(); }
    const ParameterImpl* getImpl() const { return impl_.get(); }

private:
    std::unique_ptr<ParameterImpl> impl_;
};

// The script-visible block parameter, "VelCG.Parameter".
class VELCG_API ParameterKorb : public Parameter, public vel::mi::Handle {
public:
    explicit ParameterKorb(ParameterImpl* impl) : Parameter(impl) {}
    ~ParameterKorb() override;

    const char* getFullyQualifiedKorbTypeName() const override;
};

} // namespace VelCG
