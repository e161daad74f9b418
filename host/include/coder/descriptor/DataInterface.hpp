#pragma once

#include <cstdint>

#include "coder/descriptor/Object.hpp"

namespace CG {
class DataInterface;
}

namespace coder::descriptor {

// A data-interface container: where a piece of model data lives in
// generated code, as the code generator core describes it.
class VELHOST_API DataInterface : public Object {
public:
    static const RecordKind& kind();

    ustring getIdentifier() const;
    ustring getImplementation() const;
    ustring getOwner() const;
    ustring getTypeName() const;
    ustring getGraphicalName() const;
};

class VELHOST_API DataInterfaceCreator : public Creator {
public:
    explicit DataInterfaceCreator(Repository& repository);
    // Sets every field from the code generator core's description.
    void setFrom(const CG::DataInterface& dataInterface);

    void setIdentifier(const ustring& value);
    void setImplementation(const ustring& value);
    void setOwner(const ustring& value);
    void setTypeName(const ustring& value);
    void setGraphicalName(const ustring& value);

    DataInterface createDataInterface();
};

} // namespace coder::descriptor
