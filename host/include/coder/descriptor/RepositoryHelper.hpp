#pragma once

#include "vel/HostExport.hpp"

namespace coder {

class Repository;

namespace descriptor {

class Model;

class VELHOST_API RepositoryHelper {
public:
    // The model stored in the repository. A store without a model raises
    // "coder:descriptor:NoModel".
    static Model getModel(Repository& repository);
};

} // namespace descriptor
} // namespace coder
