#pragma once

#include <memory>
#include <string>
#include <vector>

#include <boost/intrusive_ptr.hpp>

#include "CG/DataInterface.hpp"
#include "vel/mi/Handle.hpp"
#include "vel/tuvArray.hpp"
#include "velcg/Export.hpp"

namespace coder {
class Repository;
namespace descriptor {
class Region;
} // namespace descriptor
} // namespace coder

namespace VelCG {

// One contiguous piece of the signal at a port. Holds one reference to its
// data interface. A base class: the bus-selector and ground queries answer
// fixed defaults and their setters do nothing; a derived class supplies the
// storage.
class VELCG_API Region : public vel::mi::Handle {
public:
    Region() = default;
    Region(const Region& other);
    Region& operator=(const Region& other);
    ~Region() override;

    const char* getFullyQualifiedKorbTypeName() const override;

    virtual std::string getBusSelElIdx() const;
    virtual std::string getBusSelElCGTypeId() const;
    virtual int getGroundDataTypeIdx() const;
    virtual std::wstring getGroundLabel() const;
    virtual bool getGroundIsComplex() const;
    virtual bool getGroundIsSynthesized() const;
    virtual void setBusSelElIdx(const std::string& value);
    virtual void setBusSelElCGTypeId(const std::string& value);
    virtual void setGroundDataTypeIdx(int value);
    virtual void setGroundLabel(const std::wstring& value);
    virtual void setGroundIsComplex(bool value);
    virtual void setGroundIsSynthesized(bool value);

    // The expression or variable that supplies the data in generated code.
    const std::string& getSource() const { return source_; }
    void setSource(const std::string& source) { source_ = source; }
    int getOffset() const { return offset_; }
    void setOffset(int offset) { offset_ = offset; }
    // [1] until set. Until dimensions other than [1] are set this is a
    // shared list, so a reference taken then does not show later ones.
    const std::vector<int>& getDimensions() const;
    void setDimensions(const std::vector<int>& dims);
    // -1 when no function argument carries the region.
    int getFunctionArgumentIdx() const { return functionArgumentIdx_; }
    void setFunctionArgumentIdx(int index) { functionArgumentIdx_ = index; }

    const CG::DataInterface* getDataInterface() const { return dataInterface_.get(); }
    // Releases the previous object and holds a reference of its own to the
    // new one (the caller keeps its reference). Null clears it.
    void setDataInterface(const CG::DataInterface* dataInterface);
    // Empty when there is no data interface.
    tuvArrayPtr getDataInterfaceAsTuvArray() const;

    // Writes the region (ground label, source, dimensions in order) into the
    // store. REQUIRES: a transaction is open on repository.
    coder::descriptor::Region serialize(coder::Repository& repository) const;

private:
    std::string source_;
    // Null for the scalar [1] of most regions, which then takes no room.
    std::unique_ptr<std::vector<int>> dimensions_;
    boost::intrusive_ptr<const CG::DataInterface> dataInterface_;
    int offset_ = 0;
    int functionArgumentIdx_ = -1;
};

} // namespace VelCG
