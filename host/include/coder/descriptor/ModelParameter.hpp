#pragma once

#include <cstdint>

#include "coder/descriptor/Object.hpp"

namespace coder::descriptor {

// A model-level parameter. GraphicalSourceSID is absent when the parameter
// has no graphical source.
class VELHOST_API ModelParameter : public Object {
public:
    static const RecordKind& kind();

    ustring getName() const;
    ustring getOriginalName() const;
    bool getAlias() const;
    bool getTunable() const;
    bool getWorkspaceVariable() const;
    ustring getWorkspaceVariableName() const;
    bool hasGraphicalSourceSID() const;
    // Empty when absent.
    ustring getGraphicalSourceSID() const;

    Sequence<StringListElement> getGraphicalReferencesSID() const;
};

class VELHOST_API ModelParameterCreator : public Creator {
public:
    explicit ModelParameterCreator(Repository& repository);

    void setName(const ustring& value);
    void setOriginalName(const ustring& value);
    void setAlias(bool value);
    void setTunable(bool value);
    void setWorkspaceVariable(bool value);
    void setWorkspaceVariableName(const ustring& value);
    void setGraphicalSourceSID(const ustring& value);

    ModelParameter createModelParameter();
};

} // namespace coder::descriptor
