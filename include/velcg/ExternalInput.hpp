#pragma once

#include <cstdint>
#include <string>

#include "vel/mi/Handle.hpp"
#include "velcg/Export.hpp"

namespace coder {
class Repository;
namespace descriptor {
class ExternalInput;
} // namespace descriptor
} // namespace coder

namespace VelCG {

class CGModel;

// The code generator's storage class enumeration: a 32-bit value whose
// meaning belongs to the host; stored and returned unchanged.
using ssBriskStorageType = std::int32_t;

// One root-level input of the model as generated code sees it.
class VELCG_API ExternalInput : public vel::mi::Handle {
public:
    ExternalInput() = default;
    ExternalInput(const ExternalInput&) = default;
    ExternalInput& operator=(const ExternalInput&) = default;
    ~ExternalInput() override;

    const char* getFullyQualifiedKorbTypeName() const override;

    // Shared by all external inputs; -1 until set.
    static int getStructAlignment();
    static void setStructAlignment(int alignment);

    int getCGTypeIndex() const { return cgTypeIndex_; }
    void setCGTypeIndex(int value) { cgTypeIndex_ = value; }
    ssBriskStorageType getStorageClass() const { return storageClass_; }
    const std::string& getStorageClassString() const { return storageClassString_; }
    void setStorageClass(ssBriskStorageType value, const std::string& name) {
        storageClass_ = value;
        storageClassString_ = name;
    }
    bool getRequiresGlobalAccess() const { return requiresGlobalAccess_; }
    void setRequiresGlobalAccess(bool value) { requiresGlobalAccess_ = value; }
    const std::string& getIdentifier() const { return identifier_; }
    void setIdentifier(const std::string& value) { identifier_ = value; }
    const std::string& getSignalIdRecord() const { return signalIdRecord_; }
    void setSignalIdRecord(const std::string& value) { signalIdRecord_ = value; }
    int getVarGroupIndex() const { return varGroupIndex_; }
    void setVarGroupIndex(int value) { varGroupIndex_ = value; }
    int getVarGroupMemberIndex() const { return varGroupMemberIndex_; }
    void setVarGroupMemberIndex(int value) { varGroupMemberIndex_ = value; }
    bool getHasVarDims() const { return hasVarDims_; }
    void setHasVarDims(bool value) { hasVarDims_ = value; }
    int getCanonicalDimSizeDWorkIndex() const { return canonicalDimSizeDWorkIndex_; }
    void setCanonicalDimSizeDWorkIndex(int value) { canonicalDimSizeDWorkIndex_ = value; }
    bool hasCanonicalDimSizeDWorkIndex() const { return hasCanonicalDimSizeDWorkIndex_; }
    void setHasCanonicalDimSizeDWorkIndex(bool value) { hasCanonicalDimSizeDWorkIndex_ = value; }
    int getSizeVarGroupIndex() const { return sizeVarGroupIndex_; }
    void setSizeVarGroupIndex(int value) { sizeVarGroupIndex_ = value; }
    int getSizeVarGroupMemberIndex() const { return sizeVarGroupMemberIndex_; }
    void setSizeVarGroupMemberIndex(int value) { sizeVarGroupMemberIndex_ = value; }
    int getDimSizeDWork() const { return dimSizeDWork_; }
    void setDimSizeDWork(int value) { dimSizeDWork_ = value; }
    int getPadding() const { return padding_; }
    void setPadding(int value) { padding_ = value; }
    const CGModel* getCGModel() const { return model_; }
    void setCGModel(const CGModel* model) { model_ = model; }

    // The identifier under which generated code reaches the input: the
    // stored identifier when the input is in no variable group (or has no
    // model), else the name of member varGroupMemberIndex of the group's
    // type. A group, type or member position that does not exist raises
    // "VelCG:Model:IndexOutOfRange".
    std::string getRecordIdentifier() const;

    // Writes the input into the store, its identifier being the record
    // identifier. The storage class value, the signal identifier record and
    // the structure alignment are not written. REQUIRES: a transaction is
    // open on repository. Failures of getRecordIdentifier pass through.
    coder::descriptor::ExternalInput serialize(coder::Repository& repository) const;

private:
    int cgTypeIndex_ = -1;
    ssBriskStorageType storageClass_ = -1;
    std::string storageClassString_;
    bool requiresGlobalAccess_ = true;
    std::string identifier_;
    std::string signalIdRecord_;
    int varGroupIndex_ = -1;
    int varGroupMemberIndex_ = -1;
    bool hasVarDims_ = false;
    int canonicalDimSizeDWorkIndex_ = -1;
    bool hasCanonicalDimSizeDWorkIndex_ = false;
    int sizeVarGroupIndex_ = -1;
    int sizeVarGroupMemberIndex_ = -1;
    int dimSizeDWork_ = -1;
    int padding_ = 0;
    const CGModel* model_ = nullptr;

    static int structAlignment_;
};

} // namespace VelCG
