#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <boost/unordered_map.hpp>

#include "vel/mi/Handle.hpp"
#include "velcg/Export.hpp"

namespace VelCG {

class FileRepScrivBridge;
class VelCGDataTypesFile;
class VelCGFile;
class VelCGGenericFile;
class VelCGModuleFile;

// Every source file a code-generation run produces, in creation order. A
// file's index is its position in the list, from 0. Files are never removed;
// the repository owns them and its script bridge, and deletes the files in
// list order, then the bridge.
//
// Names are compared exactly (case and extension included). Files of equal
// names may coexist; a name finds the file last created under it. Lookups
// of missing entries answer null (or -1) and never raise.
class VELCG_API VelCGFileRepository : public vel::mi::Handle {
public:
    VelCGFileRepository();
    VelCGFileRepository(const VelCGFileRepository&) = delete;
    VelCGFileRepository& operator=(const VelCGFileRepository&) = delete;
    ~VelCGFileRepository() override;

    // "VelCG.VelCGFileRepository".
    const char* getFullyQualifiedKorbTypeName() const override;

    // Create a module file and enter it under each of indices (in order, a
    // later file replacing an earlier one under the same integer) in the
    // header, respectively source, map.
    VelCGModuleFile& createModuleHeaderFile(const std::string& name,
                                            const std::vector<std::int32_t>& indices);
    VelCGModuleFile& createModuleSourceFile(const std::string& name,
                                            const std::vector<std::int32_t>& indices);
    VelCGGenericFile& createGenericFile(const std::string& name);
    VelCGDataTypesFile& createDataTypesFile(const std::string& name);

    // The file last created under exactly this name, or null.
    VelCGFile* findFileByName(const std::string& name) const;
    // Its position in the file list, or -1.
    std::int32_t findFileIndexByName(const std::string& name) const;

    // The module file entered under index, or null.
    VelCGModuleFile* getModuleHeaderFileByIndex(std::int32_t index) const;
    VelCGModuleFile* getModuleSourceFileByIndex(std::int32_t index) const;

    // The live list, by reference.
    const std::vector<VelCGFile*>& getFileList() const { return files_; }
    // A copy of the list, for host scripts.
    std::vector<VelCGFile*> getFileList_korb() const { return files_; }

    FileRepScrivBridge& scrivBridge() { return *bridge_; }

private:
    template <class File>
    File& appendFile(std::unique_ptr<File> file);

    std::vector<VelCGFile*> files_; // owning
    boost::unordered_map<std::string, std::int32_t> nameIndex_;
    boost::unordered_map<std::int32_t, VelCGModuleFile*> headerFiles_;
    boost::unordered_map<std::int32_t, VelCGModuleFile*> sourceFiles_;
    std::unique_ptr<FileRepScrivBridge> bridge_;
};

} // namespace VelCG
