#include "coder/Repository.hpp"

#include "Store.hpp"
#include "vel/diag/Diagnostic.hpp"

namespace coder {

Repository::Repository(const std::filesystem::path& path, RepositoryOptions options)
    : path_(path), store_(std::make_shared<detail::Store>(path, options)) {}

Repository::~Repository() { store_->close(); }

void Repository::beginTransaction() { store_->begin(); }

void Repository::commitTransaction() { store_->commit(); }

void Repository::rollbackTransaction() noexcept { store_->rollback(); }

bool Repository::inTransaction() const { return store_->inTransaction(); }

bool Repository::isReadOnly() const { return store_->isReadOnly(); }

int Repository::getFormatVersion() const { return store_->formatVersion(); }

std::string Repository::getUnfinishedRun() const { return store_->unfinishedRun(); }

void Repository::setUnfinishedRun(const std::string& token) { store_->setUnfinishedRun(token); }

std::vector<std::string> Repository::checkIntegrity() const { return store_->checkIntegrity(); }

Transaction::Transaction(Repository& repository) : repository_(repository) { repository_.beginTransaction(); }

Transaction::~Transaction() {
    if (!committed_) repository_.rollbackTransaction();
}

void Transaction::commit() {
    if (committed_)
        vel::diag::throwError("coder:Repository:NoTransaction", {repository_.getPath().u8string()});
    repository_.commitTransaction();
    committed_ = true;
}

ReadTransaction::ReadTransaction(Repository& repository)
    : repository_(repository), active_(repository.store()->beginRead()) {}

ReadTransaction::~ReadTransaction() {
    if (active_) repository_.rollbackTransaction();
}

} // namespace coder
