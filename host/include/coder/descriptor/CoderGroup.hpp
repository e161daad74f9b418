#pragma once

#include <cstdint>

#include "coder/descriptor/Object.hpp"

namespace coder::descriptor {

// A coder data group: its name, root type name, naming rules, group size
// and as-structure string.
class VELHOST_API CoderGroup : public Object {
public:
    static const RecordKind& kind();

    ustring getName() const;
    ustring getRootTypeName() const;
    ustring getStructureTypeNameRule() const;
    ustring getStructureInstanceNameRule() const;
    ustring getSelfStructureTypeNameRule() const;
    ustring getStructureReferenceNameRule() const;
    ustring getSelfStructureReferenceNameRule() const;
    ustring getStructureArgumentNameRule() const;
    ustring getSelfStructureArgumentNameRule() const;
    ustring getHeaderFileRule() const;
    ustring getSelfStructureInstanceNameRule() const;
    std::int32_t getGroupSize() const;
    ustring getAsStructure() const;
};

class VELHOST_API CoderGroupCreator : public Creator {
public:
    explicit CoderGroupCreator(Repository& repository);

    void setName(const ustring& value);
    void setRootTypeName(const ustring& value);
    void setStructureTypeNameRule(const ustring& value);
    void setStructureInstanceNameRule(const ustring& value);
    void setSelfStructureTypeNameRule(const ustring& value);
    void setStructureReferenceNameRule(const ustring& value);
    void setSelfStructureReferenceNameRule(const ustring& value);
    void setStructureArgumentNameRule(const ustring& value);
    void setSelfStructureArgumentNameRule(const ustring& value);
    void setHeaderFileRule(const ustring& value);
    void setSelfStructureInstanceNameRule(const ustring& value);
    void setGroupSize(std::int32_t value);
    void setAsStructure(const ustring& value);

    CoderGroup createCoderGroup();
};

} // namespace coder::descriptor
