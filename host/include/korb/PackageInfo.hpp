#pragma once

#include "vel/HostExport.hpp"

namespace korb {

class Client;
class ObjectSystem;

// A package of classes that a library adds to the object system.
class VELHOST_API PackageInfo {
public:
    virtual ~PackageInfo();

    virtual const char* getName() const = 0;

    // Creates the package's class records, in order, and registers each with
    // system.registerClass().
    virtual void registerClasses(ObjectSystem& system) = 0;

    // Called when the library that provides the package is unloaded. The
    // default removes the package's classes from the object system; the
    // package record itself stays known by name.
    virtual void terminate(Client& client);
};

} // namespace korb
