#pragma once

#include <string>
#include <vector>

#include <boost/intrusive_ptr.hpp>

#include "CG/DataInterface.hpp"
#include "velcg/Export.hpp"
#include "velcg/ModelParameter.hpp"

namespace VelCG {

// A ModelParameterImpl answering from stored fields. The graphical source
// and references are not owned; the data interface is held by reference
// count (one reference of its own, released on replacement and destruction).
class VELCG_API StoredModelParameter : public ModelParameterImpl {
public:
    StoredModelParameter() = default;
    explicit StoredModelParameter(std::wstring name) : name_(std::move(name)) {}
    ~StoredModelParameter() override;

    std::wstring getName() const override { return name_; }
    std::wstring getOriginalName() const override { return originalName_; }
    bool isAlias() const override { return isAlias_; }
    std::wstring getWorkspaceVarName() const override { return workspaceVarName_; }
    bool isWorkspaceVar() const override { return isWorkspaceVar_; }
    bool isTunable() const override { return isTunable_; }
    bool isPseudoWorkspaceVar() const override { return isPseudoWorkspaceVar_; }
    const GraphicalBlock* getGraphicalSource() const override { return graphicalSource_; }
    const std::vector<GraphicalBlock*>& getGraphicalReferences() const override {
        return graphicalReferences_;
    }
    const CG::DataInterface* getDataInterface() const override { return dataInterface_.get(); }

    void setName(const std::wstring& value) { name_ = value; }
    void setOriginalName(const std::wstring& value) { originalName_ = value; }
    void setIsAlias(bool value) { isAlias_ = value; }
    void setWorkspaceVarName(const std::wstring& value) { workspaceVarName_ = value; }
    void setIsWorkspaceVar(bool value) { isWorkspaceVar_ = value; }
    void setIsTunable(bool value) { isTunable_ = value; }
    void setIsPseudoWorkspaceVar(bool value) { isPseudoWorkspaceVar_ = value; }
    void setGraphicalSource(const GraphicalBlock* block) { graphicalSource_ = block; }
    void setGraphicalReferences(const std::vector<GraphicalBlock*>& blocks) { graphicalReferences_ = blocks; }
    void addGraphicalReference(GraphicalBlock* block) { graphicalReferences_.push_back(block); }
    // Holds a reference of its own; the caller keeps its reference.
    void setDataInterface(const CG::DataInterface* dataInterface) { dataInterface_.reset(dataInterface); }

private:
    std::wstring name_;
    std::wstring originalName_;
    bool isAlias_ = false;
    std::wstring workspaceVarName_;
    bool isWorkspaceVar_ = false;
    bool isTunable_ = false;
    bool isPseudoWorkspaceVar_ = false;
    const GraphicalBlock* graphicalSource_ = nullptr;
    std::vector<GraphicalBlock*> graphicalReferences_;
    boost::intrusive_ptr<const CG::DataInterface> dataInterface_;
};

} // namespace VelCG
