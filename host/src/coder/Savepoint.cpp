#include "coder/Savepoint.hpp"

#include "Store.hpp"
#include "coder/Messages.hpp"
#include "coder/Repository.hpp"
#include "vel/diag/Diagnostic.hpp"

namespace coder {

Savepoint::Savepoint(Repository& repository)
    : store_(repository.store()), transaction_(store_->transactionSerial()), mark_(store_->openSavepoint()) {}

Savepoint::~Savepoint() {
    if (!released_) store_->undoSavepoint(transaction_, mark_);
}

void Savepoint::release() {
    if (released_) vel::diag::throwError(coder::messages::Repository::NoTransaction, {store_->pathText()});
    released_ = true;
    store_->releaseSavepoint(transaction_);
}

} // namespace coder
