#pragma once

// The prepared statements that Store keeps per record kind and sequence
// (StoreStatements.cpp), with what they remember about the positions of
// sequence elements.

#include <SQLiteCpp/Statement.h>
#include <cstdint>
#include <memory>
#include <vector>

#include "Store.hpp"

namespace coder::detail {

struct Store::SequenceStatements {
    std::unique_ptr<SQLite::Statement> insert;
    std::unique_ptr<SQLite::Statement> count;
    std::unique_ptr<SQLite::Statement> at;
    std::unique_ptr<SQLite::Statement> maxOwner;
    // Appends come in runs on one owner: remember its next position so that
    // a run costs one insert per element and no read.
    std::int64_t cachedOwner = 0;
    std::int64_t nextPosition = -1;
    // The highest owner with elements (-1: not read yet). Records get
    // increasing ids, so an owner above it has an empty list, and the first
    // append to a new record needs no read either.
    std::int64_t highestOwner = -1;
};

struct Store::KindStatements {
    std::unique_ptr<SQLite::Statement> insert;
    std::unique_ptr<SQLite::Statement> select;
    std::vector<std::unique_ptr<SQLite::Statement>> updateReference;
    std::vector<SequenceStatements> sequences;
};

} // namespace coder::detail
