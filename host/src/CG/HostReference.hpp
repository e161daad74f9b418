#pragma once

#include <memory>

namespace CG::detail {

// A payload for a host value that holds one reference to a counted object
// (EmbeddedType, DataInterface) for as long as the host value lives.
template <class T>
std::shared_ptr<const void> holdReference(const T* object) {
    object->addRef();
    return std::shared_ptr<const void>(object, [](const void* p) { static_cast<const T*>(p)->release(); });
}

} // namespace CG::detail
