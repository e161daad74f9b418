#pragma once

#include <boost/intrusive_ptr.hpp>

#include "CG/DataInterface.hpp"
#include "velcg/DataInterfaceRecord.hpp"
#include "velcg/Export.hpp"

namespace VelCG {

// A DataInterfaceRecordImpl holding its data interface by reference count
// (one reference of its own). It has a data interface exactly when one is
// set.
class VELCG_API StoredDataInterfaceRecord : public DataInterfaceRecordImpl {
public:
    StoredDataInterfaceRecord() = default;
    // Holds a reference of its own; the caller keeps its reference.
    explicit StoredDataInterfaceRecord(const CG::DataInterface* dataInterface)
        : dataInterface_(dataInterface) {}
    ~StoredDataInterfaceRecord() override;

    bool hasDataInterface() const override { return dataInterface_ != nullptr; }
    const CG::DataInterface* getDataInterface() const override { return dataInterface_.get(); }
    void setDataInterface(const CG::DataInterface* dataInterface) { dataInterface_.reset(dataInterface); }

private:
    boost::intrusive_ptr<const CG::DataInterface> dataInterface_;
};

} // namespace VelCG
