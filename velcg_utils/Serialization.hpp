#pragma once

// Helpers shared by the serialize operations of the model classes, which
// write the model into the code descriptor store (coder/descriptor/*).

#include "CG/DataInterface.hpp"
#include "coder/descriptor/DataInterface.hpp"
#include "velcg/ModelDiagnostics.hpp"

namespace VelCG::detail {

// The element, or "VelCG:Model:NullArgument" naming `what` when it is null.
// Lists answered by derived classes are not checked when they are filled.
template <class T>
T& nonNull(T* element, const char* what) {
    if (!element) throwNullArgument(what);
    return *element;
}

// A data-interface container holding the code generator core's description.
// REQUIRES: a transaction is open on repository.
inline coder::descriptor::DataInterface serializeDataInterface(coder::Repository& repository,
                                                               const CG::DataInterface& dataInterface) {
    coder::descriptor::DataInterfaceCreator creator(repository);
    creator.setFrom(dataInterface);
    return creator.createDataInterface();
}

} // namespace VelCG::detail
