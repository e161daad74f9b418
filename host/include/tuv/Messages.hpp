#pragma once

// The messages of the host's catalogue tuv: each key with its template
// (arguments as {1}, {2}, ...). VEL_TUV_MESSAGES lists them once; this header
// turns the list into the identifier constants that raising code uses, and
// the host's MessageCatalog turns it into the catalogue's texts, so every
// identifier has a text.

// clang-format off
#define VEL_TUV_MESSAGES(X)                                                         \
    X(WrongClass, "Expected a {1} array, but the array is of class {2}.")           \
    X(NotScalar, "Expected a scalar, but the array is {1}-by-{2}.")                 \
    X(IndexOutOfRange, "Index {1} is out of range for an array of {2} element(s).")
// clang-format on

namespace tuv::messages {
#define VEL_DECLARE_MESSAGE_ID(key, text) inline constexpr char key[] = "tuv:" #key;
VEL_TUV_MESSAGES(VEL_DECLARE_MESSAGE_ID)
#undef VEL_DECLARE_MESSAGE_ID
} // namespace tuv::messages
