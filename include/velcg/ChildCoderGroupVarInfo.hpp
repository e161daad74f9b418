#pragma once

#include <string>
#include <utility>

#include "velcg/Export.hpp"

namespace VelCG {

// One variable through which the parent model passes a child model's coder
// data group to a model-reference block.
class VELCG_API ChildCoderGroupVarInfo {
public:
    ChildCoderGroupVarInfo() = default;
    ChildCoderGroupVarInfo(std::string typeName, std::string varName, int compiledModelBlockIndex)
        : typeName_(std::move(typeName)),
          varName_(std::move(varName)),
          compiledModelBlockIndex_(compiledModelBlockIndex) {}

    // The child group's root group type name.
    const std::string& getTypeName() const { return typeName_; }
    void setTypeName(const std::string& v) { typeName_ = v; }
    const std::string& getVarName() const { return varName_; }
    void setVarName(const std::string& v) { varName_ = v; }
    // Index of the model-reference block in the compiled model.
    int getCompiledModelBlockIndex() const { return compiledModelBlockIndex_; }
    void setCompiledModelBlockIndex(int v) { compiledModelBlockIndex_ = v; }

private:
    std::string typeName_;
    std::string varName_;
    int compiledModelBlockIndex_ = -1;
};

} // namespace VelCG
