#pragma once

#include <string>

#include "vel/mi/Handle.hpp"
#include "velcg/CachedAnswer.hpp"
#include "velcg/Export.hpp"

namespace VelCG {

class CGModel;

// A data type as the modelling environment knows it, tied by index to the
// VelCGType that represents it in generated code. A base class: the
// modelling environment overrides the virtual queries with the answers of
// its own type table; the defaults below answer from the stored name.
//
// The model pointer is set by CGModel::addVelType and must be set before
// getName or getComplexName is called.
class VELCG_API VelType : public vel::mi::Handle {
public:
    static constexpr int kNoID = -10;

    VelType() = default;
    explicit VelType(std::string dtName) : dtName_(std::move(dtName)) {}
    VelType(const VelType&) = default;
    VelType& operator=(const VelType&) = default;
    ~VelType() override;

    const char* getFullyQualifiedKorbTypeName() const override;

    virtual const std::string& getDTName() const;
    virtual bool isShared() const;
    virtual bool isUserProvided() const;
    virtual std::string getDescription() const;
    virtual int getIdAliasedTo() const;
    virtual int getIdAliasedThruTo() const;
    // The stored data-type name; a derived class supplies the real header.
    virtual const std::string& getHeaderFile() const;
    virtual bool isEnumType() const;
    virtual bool isStructType() const;
    virtual bool isBus() const;

    // The data-type name answered by the default queries.
    void setDTName(const std::string& name) { dtName_ = name; }

    int getID() const { return id_; }
    void setID(int id) { id_ = id; }
    int getCGTypeIdx() const { return cgTypeIdx_; }
    void setCGTypeIdx(int index) { cgTypeIdx_ = index; }
    int getContainerCGTypeIdx() const { return containerCGTypeIdx_; }
    void setContainerCGTypeIdx(int index) { containerCGTypeIdx_ = index; }
    int getContainerVelTypeIdx() const { return containerVelTypeIdx_; }
    void setContainerVelTypeIdx(int index) { containerVelTypeIdx_ = index; }
    const CGModel* getCGModel() const { return model_; }
    void setCGModel(const CGModel* model) { model_ = model; }
    const std::string& getGroundVariableName() const { return groundVariableName_; }
    void setGroundVariableName(const std::string& name) { groundVariableName_ = name; }

    // True when the end of the alias chain (getIdAliasedThruTo) is another
    // type than this one.
    bool isAliasType() const;

    // The name of the representing VelCGType, cached on first success (a
    // name that is not empty) and never invalidated. Raises "VelCG:Type::InvalidCGType" for a negative
    // CGTypeIdx, and a "VelCG:Model:" diagnostic when no model is set or the
    // index is past the end of the model's type list.
    const std::string& getName() const;

    // "c" followed by getName(), cached. Raises "VelCG::Type::NoComplex"
    // when getDTName() names a type that cannot be complex ("boolean",
    // "fcn_call", "pointer", "integer", "action", "timer_uint32_pair").
    //
    // Both are safe on two threads at once (see CachedAnswer).
    const std::string& getComplexName() const;

private:
    std::string dtName_;
    int id_ = kNoID;
    int cgTypeIdx_ = 0;
    int containerCGTypeIdx_ = -1;
    int containerVelTypeIdx_ = -1;
    const CGModel* model_ = nullptr;
    CachedAnswer<std::string> complexName_;
    CachedAnswer<std::string> name_;
    std::string groundVariableName_;
};

} // namespace VelCG
