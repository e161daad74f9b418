#include "coder/ReadTransaction.hpp"

#include "Store.hpp"
#include "coder/Repository.hpp"

namespace coder {

ReadTransaction::ReadTransaction(Repository& repository)
    : repository_(repository), active_(repository.store()->beginRead()) {}

ReadTransaction::~ReadTransaction() {
    if (active_) repository_.rollbackTransaction();
}

} // namespace coder
