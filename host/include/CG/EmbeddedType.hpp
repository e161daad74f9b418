#pragma once

#include <atomic>
#include <memory>
#include <string>

#include "vel/HostExport.hpp"

class tuvArray;

namespace CG {

class Type;

// An object of the code generator's type system, built from an IR type and
// shared by reference count: whoever stores a pointer holds one reference
// and releases it when done; the object is destroyed with its last
// reference. Counting is thread-safe.
class VELHOST_API EmbeddedType {
public:
    // A new object holding one reference, owned by the caller.
    static EmbeddedType* createFromIRType(const Type& irType);

    void addRef() const;
    void release() const;
    int getRefCount() const { return refs_.load(std::memory_order_acquire); }

    const Type& getIRType() const { return *irType_; }
    std::string getName() const;

    // The object as a host value of the legacy class "embedded.type"; the
    // array holds its own reference. A null object converts to the empty value.
    static std::shared_ptr<tuvArray> toTuvArray(const EmbeddedType* type);
    // The object a host value of class "embedded.type" holds, valid while the value
    // lives (addRef to keep it longer); null for the empty value. Any other
    // value raises "Korb:TypeMismatch".
    static const EmbeddedType* fromTuvArray(const tuvArray& value);

    // Number of live objects in the process, for leak checks in tools and tests.
    static long liveCount();

private:
    explicit EmbeddedType(std::shared_ptr<const Type> irType);
    ~EmbeddedType();

    std::shared_ptr<const Type> irType_;
    mutable std::atomic<int> refs_{1};
};

inline void intrusive_ptr_add_ref(const EmbeddedType* p) { p->addRef(); }
inline void intrusive_ptr_release(const EmbeddedType* p) { p->release(); }

} // namespace CG
