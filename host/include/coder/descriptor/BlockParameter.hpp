#pragma once

#include <cstdint>

#include "coder/descriptor/ModelParameter.hpp"
#include "coder/descriptor/Object.hpp"

namespace coder::descriptor {

// A parameter of a block and the model parameters it refers to.
class VELHOST_API BlockParameter : public Object {
public:
    static const RecordKind& kind();

    ustring getName() const;

    Sequence<ModelParameter> getModelParameters() const;
};

class VELHOST_API BlockParameterCreator : public Creator {
public:
    explicit BlockParameterCreator(Repository& repository);

    void setName(const ustring& value);

    BlockParameter createBlockParameter();
};

} // namespace coder::descriptor
