#pragma once

// The messages of the host's catalogue Korb: each key with its template
// (arguments as {1}, {2}, ...). VEL_KORB_MESSAGES lists them once; this header
// turns the list into the identifier constants that raising code uses, and
// the host's MessageCatalog turns it into the catalogue's texts, so every
// identifier has a text.

// clang-format off
#define VEL_KORB_MESSAGES(X)                                                                     \
    X(InvalidHandle, "Invalid or deleted object.")                                               \
    X(UnknownClass, "No class '{1}' is registered with the object system.")                      \
    X(UnknownProperty, "No property '{1}' for class '{2}'.")                                     \
    X(UnknownMethod, "No method '{1}' for class '{2}'.")                                         \
    X(ReadOnlyProperty, "Property '{1}' of class '{2}' is read-only.")                           \
    X(ObjectLocked, "Cannot set property '{1}': the object of class '{2}' is locked.")           \
    X(InvalidPropertyValue, "Invalid value for property '{1}' of class '{2}': {3}")              \
    X(InvalidArgument, "Argument {1} is invalid: {2}")                                           \
    X(InvalidMethodArgument, "Invalid argument {3} for method '{1}' of class '{2}': {4}")        \
    X(TypeMismatch, "Expected a value of type '{1}', but got {2}.")                              \
    X(WrongNumberOfArguments, "Expected {1} argument(s), but got {2}.")                          \
    X(WrongClass, "An object of class '{1}' cannot be used as '{2}'.")                           \
    X(NotAHandle, "A native object of type '{1}' is not a handle object and cannot be given to " \
          "scripts.")                                                                            \
    X(DuplicatePackage, "A package named '{1}' is already registered.")                          \
    X(DuplicateClass, "A class named '{1}' is already registered.")                              \
    X(DuplicateMember, "Class '{2}' already has a member named '{1}'.")                          \
    X(UnknownSuperclass, "Class '{1}' names the superclass '{2}', which is not registered.")     \
    X(NotRegistering, "Class '{1}' can only be registered while its package is being added.")
// clang-format on

namespace korb::messages {
#define VEL_DECLARE_MESSAGE_ID(key, text) inline constexpr char key[] = "Korb:" #key;
VEL_KORB_MESSAGES(VEL_DECLARE_MESSAGE_ID)
#undef VEL_DECLARE_MESSAGE_ID
} // namespace korb::messages
