#pragma once

#include <string>

#include "velcg/CGModel.hpp"
#include "velcg/Export.hpp"

namespace VelCG {

// A CGModel answering its name and versions from stored fields, for tools
// that build a model without a code generator of their own (a model read
// from a description, tests, examples).
//
// The fields are read by a background serialization pass (getName,
// getKordelVersion): like every part of the model they must not change
// while a pass runs. The destructor waits for such a pass first.
class VELCG_API StoredCGModel : public CGModel {
public:
    StoredCGModel() = default;
    explicit StoredCGModel(std::wstring name) : name_(std::move(name)) {}
    ~StoredCGModel() override;

    std::wstring getName() const override { return name_; }
    std::wstring getVersion() const override { return version_; }
    std::wstring getKordelCoderVersion() const override { return kordelCoderVersion_; }
    std::wstring getKordelVersion() const override { return kordelVersion_; }

    void setName(const std::wstring& value) { name_ = value; }
    void setVersion(const std::wstring& value) { version_ = value; }
    void setKordelCoderVersion(const std::wstring& value) { kordelCoderVersion_ = value; }
    void setKordelVersion(const std::wstring& value) { kordelVersion_ = value; }

private:
    std::wstring name_;
    std::wstring version_;
    std::wstring kordelCoderVersion_;
    std::wstring kordelVersion_;
};

} // namespace VelCG
