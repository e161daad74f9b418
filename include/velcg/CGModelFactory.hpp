#pragma once

#include "velcg/Export.hpp"

namespace VelCG {

class DataInterfaceRecord;
class DataInterfaceRecordImpl;
class ModelParameter;
class ModelParameterImpl;
class Parameter;
class ParameterImpl;

// Decides which element class wraps an implementation object supplied by
// the code generator. Stateless. Each creation takes ownership of the
// implementation object (the element deletes it); the caller owns the
// returned element.
class VELCG_API CGModelFactory {
public:
    CGModelFactory() = default;
    CGModelFactory(const CGModelFactory&) = default;
    CGModelFactory& operator=(const CGModelFactory&) = default;
    virtual ~CGModelFactory();

    virtual Parameter* createParameter(ParameterImpl* impl) = 0;
    virtual ModelParameter* createModelParameter(ModelParameterImpl* impl) = 0;
    virtual DataInterfaceRecord* createDataInterfaceRecord(DataInterfaceRecordImpl* impl) = 0;
};

// Creates the script-visible variants (ParameterKorb, ModelParameterKorb,
// DataInterfaceRecordKorb).
class VELCG_API CGModelKorbFactory : public CGModelFactory {
public:
    CGModelKorbFactory() = default;
    CGModelKorbFactory(const CGModelKorbFactory&) = default;
    CGModelKorbFactory& operator=(const CGModelKorbFactory&) = default;
    ~CGModelKorbFactory() override;

    Parameter* createParameter(ParameterImpl* impl) override;
    ModelParameter* createModelParameter(ModelParameterImpl* impl) override;
    DataInterfaceRecord* createDataInterfaceRecord(DataInterfaceRecordImpl* impl) override;
};

// A new CGModelKorbFactory on every call; the caller deletes it.
VELCG_API CGModelFactory* GetCGModelFactory();

} // namespace VelCG
