#pragma once

// SQL names and SQLite helpers shared by the source files of Store.

#include <string>

#include "coder/descriptor/RecordKind.hpp"

namespace SQLite {
class Exception;
} // namespace SQLite

namespace coder::detail {

inline std::string quoted(const std::string& name) { return '"' + name + '"'; }

// Creates the table "UnfinishedRun" (StoreSchema.cpp).
extern const char* const kUnfinishedRunTable;

inline std::string sequenceTable(const descriptor::RecordKind& kind,
                                 const descriptor::SequenceInfo& sequence) {
    return std::string(kind.name) + "_" + sequence.name;
}

// SQLite's text for error, or its code when it has none (Store.cpp).
std::string describe(const SQLite::Exception& error);

// Why a connection could not roll back the transaction of a writer that
// stopped, from the failure of its first read (which is when SQLite rolls
// back); empty when the failure is another one (StoreValidation.cpp).
std::string rollbackFailure(const SQLite::Exception& error, const std::string& path);

} // namespace coder::detail
