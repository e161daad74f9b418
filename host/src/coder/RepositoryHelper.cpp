#include "coder/descriptor/RepositoryHelper.hpp"

#include "Store.hpp"
#include "coder/Messages.hpp"
#include "coder/Repository.hpp"
#include "coder/descriptor/Model.hpp"
#include "vel/diag/Diagnostic.hpp"

namespace coder::descriptor {

Model RepositoryHelper::getModel(Repository& repository) {
    const std::int64_t id = repository.store()->firstModelId();
    if (id == 0)
        vel::diag::throwError(coder::messages::descriptor::NoModel, {repository.store()->pathText()});
    return objectAs<Model>(repository.store()->object(Model::kind(), id));
}

} // namespace coder::descriptor
