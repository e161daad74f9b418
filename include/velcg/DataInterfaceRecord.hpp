#pragma once

#include <memory>

#include "vel/mi/Handle.hpp"
#include "vel/tuvArray.hpp"
#include "velcg/Export.hpp"

namespace CG {
class DataInterface;
}

namespace VelCG {

// What the modelling environment knows about one discrete state or work
// vector: whether it has a data interface, and that interface.
class VELCG_API DataInterfaceRecordImpl {
public:
    DataInterfaceRecordImpl() = default;
    DataInterfaceRecordImpl(const DataInterfaceRecordImpl&) = default;
    DataInterfaceRecordImpl& operator=(const DataInterfaceRecordImpl&) = default;
    virtual ~DataInterfaceRecordImpl();

    virtual bool hasDataInterface() const = 0;
    // Null when hasDataInterface() is false.
    virtual const CG::DataInterface* getDataInterface() const = 0;
};

// A discrete-state or work-vector record: a facade over its implementation
// object, which it owns.
class VELCG_API DataInterfaceRecord {
public:
    // Takes ownership of impl; a null impl raises "VelCG:Model:NullArgument".
    explicit DataInterfaceRecord(DataInterfaceRecordImpl* impl);
    virtual ~DataInterfaceRecord();
    DataInterfaceRecord(const DataInterfaceRecord&) = delete;
    DataInterfaceRecord& operator=(const DataInterfaceRecord&) = delete;

    bool hasDataInterface() const { return impl_->hasDataInterface(); }
    const CG::DataInterface* getDataInterface() const { return impl_->getDataInterface(); }
    // The data interface as a host value; empty when there is none.
    tuvArrayPtr getDataInterfaceAsTuvArray() const;

    DataInterfaceRecordImpl* getImpl() { return impl_.get(); }
    const DataInterfaceRecordImpl* getImpl() const { return impl_.get(); }

private:
    std::unique_ptr<DataInterfaceRecordImpl> impl_;
};

// The script-visible record, "VelCG.DataInterfaceRecord".
class VELCG_API DataInterfaceRecordKorb : public DataInterfaceRecord, public vel::mi::Handle {
public:
    explicit DataInterfaceRecordKorb(DataInterfaceRecordImpl* impl) : DataInterfaceRecord(impl) {}
    ~DataInterfaceRecordKorb() override;

    const char* getFullyQualifiedKorbTypeName() const override;
};

} // namespace VelCG
