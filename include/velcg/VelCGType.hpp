#pragma once

#include <memory>
#include <string>
#include <vector>

#include <boost/intrusive_ptr.hpp>

#include "CG/EmbeddedType.hpp"
#include "vel/mi/Handle.hpp"
#include "vel/tuvArray.hpp"
#include "velcg/Export.hpp"

namespace CG {
class Type;
}

namespace VelCG {

class CGModel;
class CGTypeMember;

// A data type as generated code sees it: a named C type or a type built
// from another ("matrix", "complex"), with width, dimensions, fixed-point
// scaling, structure members and the code generator's own type object.
//
// Owns its members and holds one reference to its embedded type object.
class VELCG_API VelCGType : public vel::mi::Handle {
public:
    VelCGType() = default;
    explicit VelCGType(std::string name) : name_(std::move(name)) {}
    ~VelCGType() override;
    VelCGType(const VelCGType&) = delete;
    VelCGType& operator=(const VelCGType&) = delete;

    const char* getFullyQualifiedKorbTypeName() const override;

    // Empty for an unnamed constructed type.
    const std::string& getName() const { return name_; }
    void setName(const std::string& name) { name_ = name; }
    // Index of the matching VelType in the model, -1 if none.
    int getVelTypeIndex() const { return velTypeIndex_; }
    void setVelTypeIndex(int index) { velTypeIndex_ = index; }
    int getWidth() const { return width_; }
    void setWidth(int width) { width_ = width; }
    const std::string& getSymbolicWidth() const { return symbolicWidth_; }
    void setSymbolicWidth(const std::string& width) { symbolicWidth_ = width; }
    // "matrix", "complex", another constructor name, or empty.
    const std::string& getConstructor() const { return constructor_; }
    void setConstructor(const std::string& constructor) { constructor_ = constructor; }
    // Index of the base (element) type of a constructed type.
    int getBaseIndex() const { return baseIndex_; }
    void setBaseIndex(int index) { baseIndex_ = index; }
    const std::vector<int>& getDimensions() const { return dimensions_; }
    void setDimensions(const std::vector<int>& dims) { dimensions_ = dims; }
    const std::vector<std::string>& getSymbolicDimensions() const { return symbolicDimensions_; }
    void setSymbolicDimensions(const std::vector<std::string>& dims) { symbolicDimensions_ = dims; }
    double getBias() const { return bias_; }
    void setBias(double bias) { bias_ = bias; }
    double getSlope() const { return slope_; }
    void setSlope(double slope) { slope_ = slope; }
    int getNBits() const { return nBits_; }
    void setNBits(int bits) { nBits_ = bits; }
    bool isSigned() const { return isSigned_; }
    void setIsSigned(bool value) { isSigned_ = value; }
    int getExponent() const { return exponent_; }
    void setExponent(int exponent) { exponent_ = exponent; }
    bool isLoweredMultiword() const { return isLoweredMultiword_; }
    void setIsLoweredMultiword(bool value) { isLoweredMultiword_ = value; }
    // -1 when unspecified.
    int getStructAlignment() const { return structAlignment_; }
    void setStructAlignment(int alignment) { structAlignment_ = alignment; }
    const CGModel* getCGModel() const { return model_; }
    void setCGModel(const CGModel* model) { model_ = model; }

    const std::vector<CGTypeMember*>& getMembers() const { return members_; }
    // Appends the member; the type owns it. A null member is refused.
    void addMember(std::unique_ptr<CGTypeMember> member);
    // Deletes every current member, then takes ownership of the given ones.
    // A list that contains a current member (which would be used after it
    // was deleted), a null or the same member twice is refused with a
    // diagnostic before anything changes.
    void setMembers(const std::vector<CGTypeMember*>& members);

    // Stores the type object, holding a reference of its own (the caller
    // keeps its reference). Null clears it.
    void setEmbeddedType(const CG::EmbeddedType* type);
    // Builds a type object from the IR type and holds the only reference.
    void setEmbeddedTypeFromCGType(const CG::Type& irType);
    const CG::EmbeddedType* getEmbeddedType() const { return embeddedType_.get(); }
    // The type object as a host value of class "embedded.type"; empty when null.
    tuvArrayPtr getEmbeddedTypeAsTuvArray() const;
    // Does nothing: the host property "EmbeddedType" accepts writes without
    // effect.
    void setEmbeddedTypeFromTuvArray(const tuvArray& value);

    // The name under which a value of this type is declared: the own name;
    // else, for "matrix", the container name of the base type; for
    // "complex", the complex name of the base type's VelType; otherwise the
    // name of the own VelType. Raises "VelCG::Type::InvalidVelType" when the
    // needed VelType index is negative, and a "VelCG:Model:" diagnostic for
    // a missing model, an index past the end or a cycle of matrix types.
    const std::string& getContainerTypeName() const;

private:
    std::string name_;
    int velTypeIndex_ = -1;
    int width_ = 1;
    std::string symbolicWidth_ = "1";
    std::string constructor_;
    int baseIndex_ = 0;
    std::vector<int> dimensions_;
    std::vector<std::string> symbolicDimensions_;
    double bias_ = 0.0;
    double slope_ = 0.0;
    int nBits_ = 0;
    bool isSigned_ = false;
    int exponent_ = 0;
    bool isLoweredMultiword_ = false;
    int structAlignment_ = -1;
    std::vector<CGTypeMember*> members_;
    const CGModel* model_ = nullptr;
    boost::intrusive_ptr<const CG::EmbeddedType> embeddedType_;
};

} // namespace VelCG
