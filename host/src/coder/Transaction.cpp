#include "coder/Transaction.hpp"

#include "coder/Messages.hpp"
#include "coder/Repository.hpp"
#include "vel/diag/Diagnostic.hpp"

namespace coder {

Transaction::Transaction(Repository& repository) : repository_(repository) { repository_.beginTransaction(); }

Transaction::~Transaction() {
    if (!committed_) repository_.rollbackTransaction();
}

void Transaction::commit() {
    if (committed_)
        vel::diag::throwError(coder::messages::Repository::NoTransaction, {repository_.getPath().u8string()});
    repository_.commitTransaction();
    committed_ = true;
}

} // namespace coder
