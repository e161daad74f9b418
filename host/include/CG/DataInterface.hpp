#pragma once

#include <atomic>
#include <memory>
#include <string>

#include "vel/HostExport.hpp"

class tuvArray;

namespace CG {

// The code generator core's description of where a piece of model data lives
// in generated code: the identifier through which it is reached, how it is
// implemented (a variable, a structure element, ...), the owning structure
// and its type. Shared by reference count like EmbeddedType.
class VELHOST_API DataInterface {
public:
    struct Description {
        std::string identifier;     // e.g. "model_State.delay_state"
        std::string implementation; // e.g. "StructElement", "Variable"
        std::string owner;          // e.g. "model_State"; empty for a standalone variable
        std::string typeName;       // e.g. "double"
        std::string graphicalName;  // the block or signal in the model
    };

    // A new object holding one reference, owned by the caller.
    static DataInterface* create(Description description);

    void addRef() const;
    void release() const;
    int getRefCount() const { return refs_.load(std::memory_order_acquire); }

    const Description& getDescription() const { return description_; }

    // The object as a host value of class "coder.DataInterface", holding its
    // own reference; null converts to the empty value.
    static std::shared_ptr<tuvArray> toTuvArray(const DataInterface* dataInterface);
    // The object a host value of class "coder.DataInterface" holds, valid while the value
    // lives (addRef to keep it longer); null for the empty value. Any other
    // value raises "Korb:TypeMismatch".
    static const DataInterface* fromTuvArray(const tuvArray& value);

    static long liveCount();

private:
    explicit DataInterface(Description description);
    ~DataInterface();

    Description description_;
    mutable std::atomic<int> refs_{1};
};

inline void intrusive_ptr_add_ref(const DataInterface* p) { p->addRef(); }
inline void intrusive_ptr_release(const DataInterface* p) { p->release(); }

} // namespace CG
