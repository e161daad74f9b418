#pragma once

#include <optional>
#include <string>

#include "velcg/Export.hpp"
#include "velcg/VelType.hpp"

namespace VelCG {

// A VelType answering the queries that the modelling environment's type
// table answers (shared, user provided, description, alias targets, header
// file, enumeration, structure and bus kinds) from stored fields, for tools
// that build a model without a modelling environment.
//
// Until set, the description and the header file are what VelType answers
// (the data-type name), and the alias targets are kNoID.
class VELCG_API StoredVelType : public VelType {
public:
    StoredVelType() = default;
    explicit StoredVelType(std::string dtName) : VelType(std::move(dtName)) {}
    ~StoredVelType() override;

    bool isShared() const override { return isShared_; }
    bool isUserProvided() const override { return isUserProvided_; }
    std::string getDescription() const override;
    int getIdAliasedTo() const override { return idAliasedTo_; }
    int getIdAliasedThruTo() const override { return idAliasedThruTo_; }
    const std::string& getHeaderFile() const override;
    bool isEnumType() const override { return isEnumType_; }
    bool isStructType() const override { return isStructType_; }
    bool isBus() const override { return isBus_; }

    void setIsShared(bool value) { isShared_ = value; }
    void setIsUserProvided(bool value) { isUserProvided_ = value; }
    void setDescription(const std::string& value) { description_ = value; }
    void setIdAliasedTo(int id) { idAliasedTo_ = id; }
    void setIdAliasedThruTo(int id) { idAliasedThruTo_ = id; }
    void setHeaderFile(const std::string& value) { headerFile_ = value; }
    void setIsEnumType(bool value) { isEnumType_ = value; }
    void setIsStructType(bool value) { isStructType_ = value; }
    void setIsBus(bool value) { isBus_ = value; }

private:
    bool isShared_ = false;
    bool isUserProvided_ = false;
    std::optional<std::string> description_;
    int idAliasedTo_ = kNoID;
    int idAliasedThruTo_ = kNoID;
    std::optional<std::string> headerFile_;
    bool isEnumType_ = false;
    bool isStructType_ = false;
    bool isBus_ = false;
};

} // namespace VelCG
