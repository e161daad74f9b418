#pragma once

#include "vel/HostExport.hpp"

namespace coder {

class Repository;

// A consistent view of the store for reading: the reads made while it lives
// see one committed state and take the file lock once instead of once per
// read, which makes walking a large store several times faster. Works on
// read-only repositories; does nothing when a transaction is already open.
class VELHOST_API ReadTransaction {
public:
    explicit ReadTransaction(Repository& repository);
    ~ReadTransaction();
    ReadTransaction(const ReadTransaction&) = delete;
    ReadTransaction& operator=(const ReadTransaction&) = delete;

private:
    Repository& repository_;
    bool active_;
};

} // namespace coder
