#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "vel/mi/Handle.hpp"
#include "velcg/Export.hpp"

namespace coder {
class Repository;
namespace descriptor {
class Port;
} // namespace descriptor
} // namespace coder

namespace VelCG {

class CGModel;
class Region;

// One input, output or control port of a graphical block. Owns its regions.
// A base class: the name and connection state come from a derived class,
// so their setters do nothing here.
class VELCG_API Port : public vel::mi::Handle {
public:
    Port() = default;
    ~Port() override;
    Port(const Port&) = delete;
    Port& operator=(const Port&) = delete;

    const char* getFullyQualifiedKorbTypeName() const override;

    virtual std::wstring getVelName() const;
    virtual bool getConnected() const;

    // While no label is set, a shared empty text: a reference taken then
    // does not show a later label.
    const std::wstring& getSignalLabel() const;
    void setSignalLabel(const std::wstring& label);
    bool getTestPoint() const { return testPoint_; }
    void setTestPoint(bool value) { testPoint_ = value; }
    bool getMdlRefSimLoggableTestPoint() const { return mdlRefSimLoggableTestPoint_; }
    void setMdlRefSimLoggableTestPoint(bool value) { mdlRefSimLoggableTestPoint_ = value; }
    const CGModel* getCGModel() const { return model_; }
    void setCGModel(const CGModel* model) { model_ = model; }

    const std::vector<Region*>& getRegions() const { return regions_; }
    // Appends the region; the port owns it. A null region is refused.
    void addRegion(std::unique_ptr<Region> region);

    // Where the source port sits in the model's block hierarchy map.
    void setGrSrcPortIdx(int subsystemIdx, int blockIdx, int portIdx);
    struct SourceIndices {
        int subsystem;
        int block;
        int port;
    };
    // The indices given to setGrSrcPortIdx; -1 each until set.
    SourceIndices getGrSrcPortIdx() const { return {srcSubsystemIdx_, srcBlockIdx_, srcPortIdx_}; }

    // The port that feeds this one, resolved through the model's block
    // hierarchy map and cached. Null when no model is set, when the
    // subsystem index is -1, or when the port index is not below the
    // source block's number of data output ports (nothing is cached then,
    // so a later call tries again). A subsystem or block index that does not
    // exist raises "VelCG:Model:IndexOutOfRange". Safe on two threads at
    // once.
    const Port* getGraphicalSource() const;
    // The cached source only, without resolving.
    const Port* getGraphicalSourceSerialize() const {
        return graphicalSource_.load(std::memory_order_acquire);
    }

    // These do nothing: connection state and name come from a derived
    // class, the source only from the indices, regions only from addRegion.
    void setConnected(bool connected);
    void setGraphicalSource(const Port* source);
    void setRegions(const std::vector<Region*>& regions);
    void setVelName(const std::wstring& name);

    // Writes the port (name, signal label, connection, test point) into the
    // store, followed by its chain of graphical sources, each a port record
    // of its own set as the previous one's source. When withDataInterfaces
    // is true and the VelCGDirectEmitSerialize level is at least 2 (read
    // once per port of the chain), each port also carries the data
    // interfaces of its regions, in order.
    //
    // REQUIRES: a transaction is open on repository. A chain that leads back
    // to one of its ports raises "VelCG:Model:CyclicSource" before anything
    // is written; failures of getGraphicalSource pass through.
    coder::descriptor::Port serialize(coder::Repository& repository, bool withDataInterfaces) const;

private:
    // The port's own record, without its source and data interfaces.
    coder::descriptor::Port createRecord(coder::Repository& repository) const;

    std::vector<Region*> regions_;
    const CGModel* model_ = nullptr;
    // Both threads that may resolve it at once store the same port.
    mutable std::atomic<const Port*> graphicalSource_{nullptr};
    // Most ports have no label: it takes room only once set.
    std::unique_ptr<std::wstring> signalLabel_;
    int srcSubsystemIdx_ = -1;
    int srcBlockIdx_ = -1;
    int srcPortIdx_ = -1;
    bool testPoint_ = false;
    bool mdlRefSimLoggableTestPoint_ = false;
};

} // namespace VelCG
