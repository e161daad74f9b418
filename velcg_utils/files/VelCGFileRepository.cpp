#include "velcg/VelCGFileRepository.hpp"

#include "OwnedList.hpp"
#include "velcg/FileRepScrivBridge.hpp"
#include "velcg/VelCGDataTypesFile.hpp"
#include "velcg/VelCGGenericFile.hpp"
#include "velcg/VelCGModuleFile.hpp"

namespace VelCG {

namespace {
VelCGModuleFile* lookup(const boost::unordered_map<std::int32_t, VelCGModuleFile*>& map, std::int32_t index) {
    auto it = map.find(index);
    return it == map.end() ? nullptr : it->second;
}
} // namespace

VelCGFileRepository::VelCGFileRepository() : bridge_(std::make_unique<FileRepScrivBridge>(*this)) {}

VelCGFileRepository::~VelCGFileRepository() {
    endScriptAccess();
    detail::deleteAll(files_);
    bridge_.reset();
}

const char* VelCGFileRepository::getFullyQualifiedKorbTypeName() const { return "VelCG.VelCGFileRepository"; }

template <class File>
File& VelCGFileRepository::appendFile(std::unique_ptr<File> file) {
    File& added = *file;
    // Ownership moves only once the push has succeeded.
    files_.push_back(file.get());
    file.release();
    // A repeated name now finds the newest file.
    nameIndex_[added.getNameAscii()] = static_cast<std::int32_t>(files_.size() - 1);
    return added;
}

VelCGModuleFile& VelCGFileRepository::createModuleHeaderFile(const std::string& name,
                                                             const std::vector<std::int32_t>& indices) {
    VelCGModuleFile& file = appendFile(std::make_unique<VelCGModuleFile>(name));
    for (std::int32_t index : indices) headerFiles_[index] = &file;
    return file;
}

VelCGModuleFile& VelCGFileRepository::createModuleSourceFile(const std::string& name,
                                                             const std::vector<std::int32_t>& indices) {
    VelCGModuleFile& file = appendFile(std::make_unique<VelCGModuleFile>(name));
    for (std::int32_t index : indices) sourceFiles_[index] = &file;
    return file;
}

VelCGGenericFile& VelCGFileRepository::createGenericFile(const std::string& name) {
    return appendFile(std::make_unique<VelCGGenericFile>(name));
}

VelCGDataTypesFile& VelCGFileRepository::createDataTypesFile(const std::string& name) {
    return appendFile(std::make_unique<VelCGDataTypesFile>(name));
}

VelCGFile* VelCGFileRepository::findFileByName(const std::string& name) const {
    std::int32_t index = findFileIndexByName(name);
    return index < 0 ? nullptr : files_[index];
}

std::int32_t VelCGFileRepository::findFileIndexByName(const std::string& name) const {
    auto it = nameIndex_.find(name);
    return it == nameIndex_.end() ? -1 : it->second;
}

VelCGModuleFile* VelCGFileRepository::getModuleHeaderFileByIndex(std::int32_t index) const {
    return lookup(headerFiles_, index);
}

VelCGModuleFile* VelCGFileRepository::getModuleSourceFileByIndex(std::int32_t index) const {
    return lookup(sourceFiles_, index);
}

} // namespace VelCG
