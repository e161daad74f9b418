#pragma once

#include <string>
#include <utility>
#include <vector>

#include "velcg/Export.hpp"
#include "velcg/Parameter.hpp"

namespace VelCG {

// A ParameterImpl answering from stored fields. The model parameters it
// lists are not owned.
class VELCG_API StoredParameter : public ParameterImpl {
public:
    StoredParameter() = default;
    explicit StoredParameter(std::wstring name, std::vector<ModelParameter*> modelParameters = {})
        : name_(std::move(name)), modelParameters_(std::move(modelParameters)) {}
    ~StoredParameter() override;

    std::wstring getName() const override { return name_; }
    const std::vector<ModelParameter*>& getModelParameters() const override { return modelParameters_; }

    void setName(const std::wstring& name) { name_ = name; }
    void setModelParameters(const std::vector<ModelParameter*>& parameters) { modelParameters_ = parameters; }
    void addModelParameter(ModelParameter* parameter) { modelParameters_.push_back(parameter); }

private:
    std::wstring name_;
    std::vector<ModelParameter*> modelParameters_;
};

} // namespace VelCG
