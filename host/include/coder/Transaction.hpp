#pragma once

#include "vel/HostExport.hpp"

namespace coder {

class Repository;

// Begins a transaction on construction and rolls it back on destruction
// unless commit() was called. The destructor never throws.
class VELHOST_API Transaction {
public:
    explicit Transaction(Repository& repository);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    // REQUIRES: not yet committed.
    void commit();

private:
    Repository& repository_;
    bool committed_ = false;
};

} // namespace coder
