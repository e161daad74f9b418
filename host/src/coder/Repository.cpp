#include "coder/Repository.hpp"

#include "Store.hpp"

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

} // namespace coder
