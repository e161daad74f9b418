#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include <boost/shared_ptr.hpp>

#include "vel/i18n/Text.hpp"
#include "vel/mi/Handle.hpp"
#include "velcg/CGModelCPPConfig.hpp"
#include "velcg/ChildCoderGroupMgr.hpp"
#include "velcg/Export.hpp"
#include "velcg/FPCIOMap.hpp"
#include "velcg/FilePackagingFormat.hpp"

namespace CG {
class Type;
}

namespace boost {
class thread;
}

namespace VelCG {

class BlockHierarchyMap;
class CoderDataGroup;
class DataInterfaceRecord;
class ExternalInput;
class ModelParameter;
class System;
class ToAsyncQueueBlock;
class VarGroup;
class VelCGType;
class VelType;

// The root of everything modelled for one compilation of one model. Owns
// every element added to it and deletes them all when destroyed; elements
// are addressed by their position in the model's lists, which never changes
// once added. A base class: the name, version and "should" queries answer
// neutral defaults here.
//
// Built and read on one thread; not synchronized. The only other thread is a
// background serialization pass (see serializeModel), which reads the model.
class VELCG_API CGModel : public vel::mi::Handle {
public:
    using StringMap = std::vector<std::pair<std::string, std::string>>;

    CGModel();
    ~CGModel() override;
    CGModel(const CGModel&) = delete;
    CGModel& operator=(const CGModel&) = delete;

    const char* getFullyQualifiedKorbTypeName() const override;

    virtual std::wstring getName() const;
    virtual std::wstring getVersion() const;
    virtual std::wstring getKordelCoderVersion() const;
    virtual std::wstring getKordelVersion() const;
    virtual void initializeCompiledInfo();
    virtual void initializeCodegenInfo();
    // Forwarded to the owned FPCIOMap.
    virtual int getOverwritableOutputPort(int inputPort) const;
    virtual std::string getHeaderFileForDataType(const CG::Type& type) const;
    virtual void setOverwritableIOPair(int inputPort, int outputPort);
    // A hook for the code generator's model class; does nothing here (use
    // appendCoderDataGroup to place a group in the model).
    virtual void addCoderDataGroup(CoderDataGroup* group);
    virtual bool shouldSuppressSelf() const;
    virtual bool useGlobalSelfInstanceForChildModel(vel::i18n::ustring childModel) const;
    // Whether blockPath (exact, case-sensitive) is an actual signal source
    // of an async-queue block; false until serialization records them.
    virtual bool isTAQBlockActualSrc(const std::wstring& blockPath) const;

    // Each add takes ownership and appends. Systems, types and inputs are
    // first pointed at this model. A null element raises "VelCG:Model:NullArgument".
    void addSystem(std::unique_ptr<System> system);
    void addVelCGType(std::unique_ptr<VelCGType> type);
    void addVelType(std::unique_ptr<VelType> type);
    void addVarGroup(std::unique_ptr<VarGroup> group);
    void addExternalInput(std::unique_ptr<ExternalInput> input);
    void addModelParameter(std::unique_ptr<ModelParameter> parameter);
    void addTAQBlock(std::unique_ptr<ToAsyncQueueBlock> block);
    void addGlobalBlockOutput(std::unique_ptr<DataInterfaceRecord> record);
    void addConstantBlockOutput(std::unique_ptr<DataInterfaceRecord> record);
    void addExternalBlockOutput(std::unique_ptr<DataInterfaceRecord> record);
    void addDWork(std::unique_ptr<DataInterfaceRecord> record);
    void addExternalInputDataInterface(std::unique_ptr<DataInterfaceRecord> record);
    void addExternalOutputDataInterface(std::unique_ptr<DataInterfaceRecord> record);

    // Places a coder data group: appends it, records its name and position
    // and sets its group index. Returns the position. A null group or a name
    // already placed raises a diagnostic and leaves the model unchanged.
    std::size_t appendCoderDataGroup(std::unique_ptr<CoderDataGroup> group);

    // Records that the generated function belongs to the system (not owned);
    // a name given again keeps the last system.
    void addFunctionForSystem(const std::string& functionName, System* system);
    // Null for an unknown name.
    System* getSystemForFunction(const std::string& functionName) const;
    // Every recorded function name with its system, in no particular order.
    const std::unordered_map<std::string, System*>& getFunctionSystems() const {
        return functionSystemIndex_;
    }

    const std::vector<System*>& getSystems() const { return systems_; }
    const std::vector<VelCGType*>& getVelCGTypes() const { return velCGTypes_; }
    const std::vector<VelType*>& getVelTypes() const { return velTypes_; }
    const std::vector<VarGroup*>& getVarGroups() const { return varGroups_; }
    const std::vector<ToAsyncQueueBlock*>& getTAQBlocks() const { return taqBlocks_; }
    const std::vector<ModelParameter*>& getModelParameters() const { return modelParameters_; }
    const std::vector<DataInterfaceRecord*>& getGlobalBlockOutputs() const { return globalBlockOutputs_; }
    const std::vector<DataInterfaceRecord*>& getConstantBlockOutputs() const { return constantBlockOutputs_; }
    const std::vector<ExternalInput*>& getExternalInputs() const { return externalInputs_; }
    std::vector<ExternalInput*>& getExternalInputs() { return externalInputs_; }
    const std::vector<ExternalInput*>& getExternalInputs_korb() const { return externalInputs_; }
    const std::vector<DataInterfaceRecord*>& getExternalBlockOutputs() const { return externalBlockOutputs_; }
    std::vector<DataInterfaceRecord*>& getExternalBlockOutputs() { return externalBlockOutputs_; }
    const std::vector<DataInterfaceRecord*>& getDWorks() const { return dWorks_; }
    std::vector<DataInterfaceRecord*>& getDWorks() { return dWorks_; }
    const std::vector<DataInterfaceRecord*>& getExternalInputInterfaces() const {
        return externalInputInterfaces_;
    }
    std::vector<DataInterfaceRecord*>& getExternalInputInterfaces() { return externalInputInterfaces_; }
    const std::vector<DataInterfaceRecord*>& getExternalOutputInterfaces() const {
        return externalOutputInterfaces_;
    }
    std::vector<DataInterfaceRecord*>& getExternalOutputInterfaces() { return externalOutputInterfaces_; }

    // Index lookups: null at or past the end, never throw.
    const VelCGType* getVelCGType(unsigned int index) const;
    const VarGroup* getVarGroup(unsigned int index) const;
    const ModelParameter* getModelParameter(unsigned int index) const;
    const DataInterfaceRecord* getExternalInputDataInterface(unsigned int index) const;
    const DataInterfaceRecord* getExternalOutputDataInterface(unsigned int index) const;
    const ExternalInput* getExternalInput(unsigned int index) const;
    ExternalInput* getExternalInput(unsigned int index);
    const DataInterfaceRecord* getGlobalBlockOutput(unsigned int index) const;
    DataInterfaceRecord* getGlobalBlockOutput(unsigned int index);
    const DataInterfaceRecord* getConstantBlockOutput(unsigned int index) const;
    DataInterfaceRecord* getConstantBlockOutput(unsigned int index);
    const DataInterfaceRecord* getExternalBlockOutput(unsigned int index) const;
    DataInterfaceRecord* getExternalBlockOutput(unsigned int index);
    const DataInterfaceRecord* getDWork(unsigned int index) const;
    DataInterfaceRecord* getDWork(unsigned int index);

    std::uint64_t getNumCoderDataGroups() const { return coderDataGroups_.size(); }
    // std::out_of_range ("invalid vector<T> subscript") at or past the end.
    const CoderDataGroup* getCoderDataGroup(std::size_t index) const;
    CoderDataGroup* getCoderDataGroup(std::size_t index);
    // Null for an unknown name.
    const CoderDataGroup* getCoderDataGroup(const std::string& name) const;
    CoderDataGroup* getCoderDataGroup(const std::string& name);

    // Never null.
    const BlockHierarchyMap* getBlockHierarchyMap() const { return blockHierarchyMap_.get(); }
    BlockHierarchyMap* getBlockHierarchyMap() { return blockHierarchyMap_.get(); }
    BlockHierarchyMap* korb_getBlockHierarchyMap() const { return blockHierarchyMap_.get(); }

    // Whole-list setters for the binding layer. They do nothing: lists are
    // only built through the add operations.
    void setSystems(const std::vector<System*>& systems);
    void setVelCGTypes(const std::vector<VelCGType*>& types);
    void setVelTypes(const std::vector<VelType*>& types);
    void setVarGroups(const std::vector<VarGroup*>& groups);
    void setTAQBlocks(const std::vector<ToAsyncQueueBlock*>& blocks);
    void setExternalInputs(const std::vector<ExternalInput*>& inputs);
    void setBlockHierarchyMap(BlockHierarchyMap* map);
    // The exception: deletes every model parameter held, then takes
    // ownership of the given ones. A list that shares a parameter with the
    // current one, holds a null or the same parameter twice is refused with
    // a diagnostic before anything changes.
    void setModelParameters(const std::vector<ModelParameter*>& parameters);

    // A one-shot flag: once set, never cleared.
    bool hasWarnedAboutQuaySFcnHeaderFileIgnore() const { return warnedAboutQuaySFcnHeaderFileIgnore_; }
    void setWarnedAboutQuaySFcnHeaderFileIgnore() { warnedAboutQuaySFcnHeaderFileIgnore_ = true; }

    // Build attributes. No setter validates its argument.
    const std::string& getSubsystemNameForRightClickBuild() const { return subsystemNameForRightClickBuild_; }
    void setSubsystemNameForRightClickBuild(const std::string& v) { subsystemNameForRightClickBuild_ = v; }
    const std::string& getSubsystemPathForRightClickBuild() const { return subsystemPathForRightClickBuild_; }
    void setSubsystemPathForRightClickBuild(const std::string& v) { subsystemPathForRightClickBuild_ = v; }
    const std::string& getModelReferenceTargetType() const { return modelReferenceTargetType_; }
    void setModelReferenceTargetType(const std::string& v) { modelReferenceTargetType_ = v; }
    unsigned int getNumChildSFunctions() const { return numChildSFunctions_; }
    void setNumChildSFunctions(unsigned int v) { numChildSFunctions_ = v; }
    FilePackagingFormat getFilePackagingFormat() const { return filePackagingFormat_; }
    void setFilePackagingFormat(FilePackagingFormat v) { filePackagingFormat_ = v; }
    // True for Compact and CompactWithDataFile (values 1 and 2) only.
    bool getIsCompactFilePackaging() const;
    bool getIsQuayTarget() const { return isQuayTarget_; }
    void setIsQuayTarget(bool v) { isQuayTarget_ = v; }
    bool getIsGeneratingTosharedLocation() const { return isGeneratingToSharedLocation_; }
    void setIsGeneratingToSharedLocation(bool v) { isGeneratingToSharedLocation_ = v; }
    // -1 when not set.
    int getMaxMultiWordBits() const { return maxMultiWordBits_; }
    void setMaxMultiWordBits(int v) { maxMultiWordBits_ = v; }
    bool getIsModelReferenceTarget() const { return isModelReferenceTarget_; }
    void setIsModelReferenceTarget(bool v) { isModelReferenceTarget_ = v; }
    int getNumModelReferenceBlocks() const { return numModelReferenceBlocks_; }
    void setNumModelReferenceBlocks(int v) { numModelReferenceBlocks_ = v; }
    bool getIsHostBasedSimulationTarget() const { return isHostBasedSimulationTarget_; }
    void setIsHostBasedSimulationTarget(bool v) { isHostBasedSimulationTarget_ = v; }
    // Shares the given list; getStringMap hands out the same list (null
    // until set).
    void setStringMap(const boost::shared_ptr<StringMap>& map) { stringMap_ = map; }
    boost::shared_ptr<StringMap> getStringMap() const { return stringMap_; }
    const std::wstring& getSharedCodeManagerPath() const { return sharedCodeManagerPath_; }
    void setSharedCodeManagerPath(const std::wstring& v) { sharedCodeManagerPath_ = v; }

    // The function-prototype I/O map that getOverwritableOutputPort and
    // setOverwritableIOPair forward to.
    const FPCIOMap& getFPCIOMap() const { return *fpcIOMap_; }

    const CGModelCPPConfig& getCPPConfig() const { return cppConfig_; }
    CGModelCPPConfig& getCPPConfig() { return cppConfig_; }
    const ChildCoderGroupMgr& getChildCoderGroupManager() const { return childCoderGroupManager_; }
    ChildCoderGroupMgr& getChildCoderGroupManager() { return childCoderGroupManager_; }

    // Serialization into the code descriptor store, the file
    // kCodeDescriptorFileName in `directory` (an empty directory is the
    // current one), in two passes. The switch VelCGDirectEmitSerialize,
    // read when each call starts and again by the pass, decides:
    //   0 or less  nothing is written;
    //   1          each pass runs on a background thread;
    //   2          each pass runs on the caller's thread;
    //   3          as 2, and serializeModel first records the actual sources
    //              of the async-queue blocks (see isTAQBlockActualSrc);
    //   4 or more  as 2, and serializeModel also writes systems and root
    //              inputs.
    // Each pass is one transaction: a pass that fails leaves the file as it
    // was at its last commit.
    //
    // Threads: at most one background pass runs per model. serializeModel,
    // serializeModelAfterScriv and the destructor each first wait for the
    // pass started before, whatever the switch value. (serializeModel waits
    // too, so that two passes never write at once and a thread is never
    // dropped while it runs; the later pass then replaces the earlier one's
    // description.) While a pass runs the model must not be changed; it may
    // be read, its lazily cached answers included (graphical sources of
    // ports, root group type names), which are safe to fill from two
    // threads.
    //
    // Errors: a pass on the caller's thread throws to the caller. An
    // exception that escapes a background pass is kept and rethrown by the
    // next serializeModelAfterScriv before it writes anything; if the model
    // is destroyed first, the destructor reports it through
    // reportDiagnostic as "VelCG:Model:SerializationFailed" and does not
    // throw. When several background passes fail before that, the first
    // failure is the one kept.

    // Waits until no background pass of any model in this process runs;
    // returns at once on the thread of a pass. Scripts reach the model only
    // through the object system, whose model classes call this before every
    // property write and every call of a method that is not const, so that
    // a script running while the first pass does (the usual order:
    // serializeModel, the templates, then serializeModelAfterScriv) never
    // changes what the pass reads. Its reads go ahead beside the pass.
    static void waitForBackgroundSerialization();
    // How many background passes of any model run now.
    static int runningBackgroundPasses();

    // The first pass, once the model is complete: the model's name, version
    // and shared code manager path, the block hierarchy map, the async-queue
    // blocks and the function-prototype I/O map (at 4 or more also systems
    // and root inputs), replacing any description stored before.
    void serializeModel(const std::wstring& directory);
    // The second pass, after the template scripts have run: appends the
    // coder data groups to the description the first pass stored. The
    // first pass leaves a token of its own in the store, which this pass
    // checks and clears as it commits: finding another (another model, or
    // this one written by another run or by a later first pass elsewhere)
    // or none (a second pass already ran), it raises
    // "VelCG:Model:DescriptorOfAnotherRun", naming both, and writes nothing.
    // So two generations into one directory never mix their descriptions,
    // and the token is gone from the finished file, whose bytes depend only
    // on the model.
    void serializeModelAfterScriv(const std::wstring& directory);
    // Waits for a background pass, if one runs, and rethrows the failure
    // of a background pass kept since, once: a caller that needs to know
    // the store is complete calls it after serializeModelAfterScriv.
    void finishSerialization();
    // The passes themselves, on the caller's thread; they still write
    // nothing while the switch is below 1. REQUIRES: no background pass of
    // this model runs.
    void serializeModelImpl(const std::wstring& directory);
    void serializeModelAfterScrivImpl(const std::wstring& directory);

    static constexpr const char* kCodeDescriptorFileName = "codedescriptor.strata";

protected:
    // Waits for a background pass, if one runs; its failure stays kept as
    // described above. The destructor of a class derived from CGModel whose
    // overrides a pass calls (getName, getKordelVersion, isTAQBlockActualSrc)
    // calls this first: by the time ~CGModel waits, the derived part is gone.
    void waitForSerialization() noexcept;

private:
    static const DataInterfaceRecord* getDataInterfaceRecordByIndex(
        unsigned int index, const std::vector<DataInterfaceRecord*>& list);

    // Waits for the background pass, if one was started, and deletes its
    // thread. Its failure, if any, stays in serializationError_. Throws only
    // when called from the pass itself.
    void joinSerializationThread();
    // Starts pass on a background thread with its own copy of directory.
    // REQUIRES: no background pass runs.
    void startSerializationThread(void (CGModel::*pass)(const std::wstring&), const std::wstring& directory);
    // Inserts the actual source path of every async-queue block and, for a
    // virtual bus, of each of its leaves.
    void recordTAQActualSources();

    std::vector<System*> systems_;
    std::vector<VelCGType*> velCGTypes_;
    std::unique_ptr<BlockHierarchyMap> blockHierarchyMap_;
    std::unordered_map<std::string, System*> functionSystemIndex_;
    std::vector<VarGroup*> varGroups_;
    std::vector<VelType*> velTypes_;
    std::vector<ExternalInput*> externalInputs_;
    std::vector<ModelParameter*> modelParameters_;
    std::vector<DataInterfaceRecord*> globalBlockOutputs_;
    std::vector<DataInterfaceRecord*> constantBlockOutputs_;
    std::vector<DataInterfaceRecord*> externalBlockOutputs_;
    std::vector<DataInterfaceRecord*> dWorks_;
    std::vector<DataInterfaceRecord*> externalInputInterfaces_;
    std::vector<DataInterfaceRecord*> externalOutputInterfaces_;
    std::vector<ToAsyncQueueBlock*> taqBlocks_;
    std::unique_ptr<FPCIOMap> fpcIOMap_;
    bool warnedAboutQuaySFcnHeaderFileIgnore_ = false;
    std::string subsystemNameForRightClickBuild_;
    std::string subsystemPathForRightClickBuild_;
    std::string modelReferenceTargetType_;
    unsigned int numChildSFunctions_ = 0;
    FilePackagingFormat filePackagingFormat_ = FilePackagingFormat::Modular;
    bool isQuayTarget_ = false;
    bool isGeneratingToSharedLocation_ = false;
    int maxMultiWordBits_ = -1;
    bool isModelReferenceTarget_ = false;
    int numModelReferenceBlocks_ = 0;
    bool isHostBasedSimulationTarget_ = false;
    boost::shared_ptr<StringMap> stringMap_;
    std::wstring sharedCodeManagerPath_;
    CGModelCPPConfig cppConfig_;
    std::unique_ptr<boost::thread> serializationThread_;
    // The first failure of a background pass not yet raised or reported;
    // written by the pass, read only once its thread is joined.
    std::exception_ptr serializationError_;
    // The token of the last first pass (see serializeModelAfterScriv),
    // written by the pass, read by the second once the first is joined.
    std::string serializationRun_;
    ChildCoderGroupMgr childCoderGroupManager_;
    std::set<std::wstring> taqActualSourcePaths_;
    std::vector<CoderDataGroup*> coderDataGroups_;
    std::unordered_map<std::string, std::size_t> coderDataGroupIndex_;
};

} // namespace VelCG
