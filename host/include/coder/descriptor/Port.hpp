#pragma once

#include <cstdint>

#include "coder/descriptor/DataInterface.hpp"
#include "coder/descriptor/Object.hpp"

namespace coder::descriptor {

// One port of a block. GraphicalSource is the port that feeds this one, a
// port record of its own, so that chains of sources nest.
class VELHOST_API Port : public Object {
public:
    static const RecordKind& kind();

    ustring getGraphicalName() const;
    ustring getSignalLabel() const;
    bool getConnected() const;
    bool getTestPoint() const;
    // Null when not set.
    Port getGraphicalSource() const;
    // Writes at once; needs an open transaction.
    void setGraphicalSource(const Port& value);

    Sequence<DataInterface> getDataInterfaces() const;
};

class VELHOST_API PortCreator : public Creator {
public:
    explicit PortCreator(Repository& repository);

    void setGraphicalName(const ustring& value);
    void setSignalLabel(const ustring& value);
    void setConnected(bool value);
    void setTestPoint(bool value);

    Port createPort();
};

} // namespace coder::descriptor
