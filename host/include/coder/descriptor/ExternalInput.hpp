#pragma once

#include <cstdint>

#include "coder/descriptor/Object.hpp"

namespace coder::descriptor {

// A root-level input of the model as generated code sees it.
class VELHOST_API ExternalInput : public Object {
public:
    static const RecordKind& kind();

    std::int32_t getCGTypeIndex() const;
    ustring getStorageClass() const;
    bool getRequiresGlobalAccess() const;
    ustring getIdentifier() const;
    std::int32_t getVarGroupIndex() const;
    std::int32_t getVarGroupMemberIndex() const;
    bool getHasVarDims() const;
    std::int32_t getCanonicalDimSizeDWorkIndex() const;
    bool getHasCanonicalDimSizeDWorkIndex() const;
    std::int32_t getSizeVarGroupIndex() const;
    std::int32_t getSizeVarGroupMemberIndex() const;
    std::int32_t getDimSizeDWork() const;
    std::int32_t getPadding() const;
};

class VELHOST_API ExternalInputCreator : public Creator {
public:
    explicit ExternalInputCreator(Repository& repository);

    void setCGTypeIndex(std::int32_t value);
    void setStorageClass(const ustring& value);
    void setRequiresGlobalAccess(bool value);
    void setIdentifier(const ustring& value);
    void setVarGroupIndex(std::int32_t value);
    void setVarGroupMemberIndex(std::int32_t value);
    void setHasVarDims(bool value);
    void setCanonicalDimSizeDWorkIndex(std::int32_t value);
    void setHasCanonicalDimSizeDWorkIndex(bool value);
    void setSizeVarGroupIndex(std::int32_t value);
    void setSizeVarGroupMemberIndex(std::int32_t value);
    void setDimSizeDWork(std::int32_t value);
    void setPadding(std::int32_t value);

    ExternalInput createExternalInput();
};

} // namespace coder::descriptor
