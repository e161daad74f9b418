#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "vel/mi/Handle.hpp"
#include "velcg/Export.hpp"

namespace VelCG {

// The category of a variable group or coder data group. Values 18 to 102
// are not assigned; the gap is part of the enumeration.
enum class VarGroupEnum : std::int32_t {
    ExternalInput = 0,
    ExternalOutput = 1,
    ExternalInputSize = 2,
    BlockIO = 3,
    ConstBlockIO = 4,
    DWork = 5,
    ExternalOutputSize = 6,
    Parameter = 7,
    ConstParameter = 8,
    ConstParameterWithInit = 9,
    ContStates = 10,
    ContStatesDisabled = 11,
    ContStatesDerivative = 12,
    ContStatesAbsoluteTolerance = 13,
    ZCSV = 14,
    ZCEvent = 15,
    MachineLocalData = 16,
    Self = 17,
    HierarchicalCoderData = 103,
};

// One group of variables in generated code (block I/O, work data,
// parameters, root inputs and outputs ...), for the model or one system.
// Groups refer to each other, to systems and to types by index into the
// model's lists; nothing checks that parent and child indices agree.
class VELCG_API VarGroup : public vel::mi::Handle {
public:
    VarGroup() = default;
    VarGroup(const VarGroup&) = default;
    VarGroup& operator=(const VarGroup&) = default;
    ~VarGroup() override;

    const char* getFullyQualifiedKorbTypeName() const override;

    // The category's name; the empty string for an unassigned value.
    static const char* getStringforCategory(VarGroupEnum category);
    const char* getCategoryString() const { return getStringforCategory(category_); }

    const std::string& getName() const { return name_; }
    void setName(const std::string& value) { name_ = value; }
    VarGroupEnum getCategory() const { return category_; }
    void setCategory(VarGroupEnum value) { category_ = value; }
    const std::string& getLocalName() const { return localName_; }
    void setLocalName(const std::string& value) { localName_ = value; }
    const std::string& getNonReusedName() const { return nonReusedName_; }
    void setNonReusedName(const std::string& value) { nonReusedName_ = value; }
    int getSystemIndex() const { return systemIndex_; }
    void setSystemIndex(int value) { systemIndex_ = value; }
    const std::string& getHasElement() const { return hasElement_; }
    void setHasElement(const std::string& value) { hasElement_ = value; }
    int getInstanceIndex() const { return instanceIndex_; }
    void setInstanceIndex(int value) { instanceIndex_ = value; }
    bool getIsPointer() const { return isPointer_; }
    void setIsPointer(bool value) { isPointer_ = value; }
    int getParentVarGroupIndex() const { return parentVarGroupIndex_; }
    void setParentVarGroupIndex(int value) { parentVarGroupIndex_ = value; }
    int getMemberIndexInParent() const { return memberIndexInParent_; }
    void setMemberIndexInParent(int value) { memberIndexInParent_ = value; }
    int getCGTypeIndex() const { return cgTypeIndex_; }
    void setCGTypeIndex(int value) { cgTypeIndex_ = value; }
    const std::string& getTypeTag() const { return typeTag_; }
    void setTypeTag(const std::string& value) { typeTag_ = value; }
    int getGlobalOffset() const { return globalOffset_; }
    void setGlobalOffset(int value) { globalOffset_ = value; }
    const std::vector<std::string>& getElements() const { return elements_; }
    void setElements(const std::vector<std::string>& value) { elements_ = value; }
    void addElement(const std::string& name) { elements_.push_back(name); }
    const std::vector<std::string>& getSubStructNames() const { return subStructNames_; }
    void setSubStructNames(const std::vector<std::string>& value) { subStructNames_ = value; }
    void addSubStructName(const std::string& name) { subStructNames_.push_back(name); }
    const std::vector<int>& getSubStructIndices() const { return subStructIndices_; }
    void setSubStructIndices(const std::vector<int>& value) { subStructIndices_ = value; }
    void addSubStructIndex(int index) { subStructIndices_.push_back(index); }
    int getCoderGroupIndex() const { return coderGroupIndex_; }
    void setCoderGroupIndex(int value) { coderGroupIndex_ = value; }

private:
    std::string name_;
    VarGroupEnum category_ = VarGroupEnum::BlockIO;
    std::string localName_ = "localB";
    std::string nonReusedName_;
    int systemIndex_ = -1;
    std::string hasElement_;
    int instanceIndex_ = 0;
    bool isPointer_ = false;
    int parentVarGroupIndex_ = -1;
    int memberIndexInParent_ = -1;
    int cgTypeIndex_ = -1;
    std::string typeTag_;
    int globalOffset_ = 0;
    std::vector<std::string> elements_;
    std::vector<std::string> subStructNames_;
    std::vector<int> subStructIndices_;
    int coderGroupIndex_ = -1;
};

// Splits a system-qualified name such as "<S1>/Gain" into {"S1", "Gain"}.
// Always two strings, system part then name part. The first '<', '>' and
// '/' of the whole input are used: a '<' without '>' gives two empty
// strings; the system part is the text between '<' and '>' when they are at
// least two characters apart; the name part is everything after the first
// '/', and is only taken when both a '>' and a '/' exist.
VELCG_API std::vector<std::string> getSysName(const std::string& qualifiedName);

} // namespace VelCG
