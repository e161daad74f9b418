#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "vel/HostExport.hpp"

namespace coder {

class Repository;

namespace detail {
class Store;
}

// A point inside the open transaction that the work done after it can be
// undone to, alone: destroying the savepoint without release() deletes the
// records created and the sequence elements appended since it was made. The
// transaction stays open and keeps the work done before the savepoint.
// Savepoints nest; releasing an inner one leaves its work to the outer one.
//
// Undoing costs little while the work succeeds: the store notes what it
// creates and appends, and forgets it at the outermost release. Where the
// work cannot be undone record by record (a new model replaced the store's
// content, the unfinished run was set, a reference was set on a record made
// before the savepoint, or the undo itself failed), the destructor rolls
// back the whole transaction instead. The destructor never throws.
class VELHOST_API Savepoint {
public:
    // REQUIRES: a transaction is open ("coder:Repository:NoTransaction").
    explicit Savepoint(Repository& repository);
    ~Savepoint();
    Savepoint(const Savepoint&) = delete;
    Savepoint& operator=(const Savepoint&) = delete;

    // Keeps the work done since the savepoint was made. REQUIRES: not yet
    // released.
    void release();

private:
    std::shared_ptr<detail::Store> store_;
    // The transaction it belongs to, and where its notes start.
    std::uint64_t transaction_;
    std::size_t mark_;
    bool released_ = false;
};

} // namespace coder
