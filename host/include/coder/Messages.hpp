#pragma once

// The messages of the host's catalogues coder:Repository (opening, reading
// and writing a code descriptor store) and coder:descriptor (its records):
// each key with its template (arguments as {1}, {2}, ...). The two lists
// below name each message once; this header turns them into the identifier
// constants that raising code uses, and the host's MessageCatalog turns
// them into the catalogues' texts, so every identifier has a text.

// clang-format off
#define VEL_CODER_REPOSITORY_MESSAGES(X)                                                                   \
    X(CannotOpen, "Cannot open the code descriptor '{1}': {2}")                                            \
    X(NotAStore, "'{1}' is not a code descriptor store; it was left unchanged.")                           \
    X(NewerFormat, "The code descriptor '{1}' has format version {2}, newer than version {3} that "        \
          "this program reads; it was left unchanged.")                                                    \
    X(Corrupt, "The code descriptor '{1}' is damaged: {2}")                                                \
    X(ReadOnly, "Cannot write the code descriptor '{1}': {2}")                                             \
    X(LeftMidWrite, "The code descriptor '{1}' was left by a writer that stopped in the middle of a "      \
          "transaction, which must be rolled back before the file can be read, and here it cannot be: "    \
          "{2}. Nothing committed is lost: run 'velcg-descriptor check {1}' as a user that may write the " \
          "file and its directory, or open the file once for writing.")                                    \
    X(RolledBack, "The code descriptor '{1}' was left by a writer that stopped; its unfinished "           \
          "transaction was rolled back.")                                                                  \
    X(Busy, "The code descriptor '{1}' is locked by another writer: {2}")                                  \
    X(Full, "The code descriptor '{1}' cannot grow: {2}. The transaction was rolled back.")                \
    X(Failed, "The code descriptor '{1}' failed: {2}")                                                     \
    X(TransactionActive, "A transaction is already open on the code descriptor '{1}'.")                    \
    X(NoTransaction, "No transaction is open on the code descriptor '{1}'; records are written only "      \
          "inside one.")

#define VEL_CODER_DESCRIPTOR_MESSAGES(X)                                                              \
    X(Closed, "The code descriptor '{1}' was closed; its descriptor objects can no longer be used.")  \
    X(NullObject, "The descriptor object was released or never created.")                             \
    X(NoModel, "The code descriptor '{1}' holds no model.")                                           \
    X(MissingRecord, "The code descriptor '{1}' has no {2} record {3}.")                              \
    X(WrongType, "The code descriptor '{1}' holds a value of the wrong type in {2}.{3}.")             \
    X(WrongKind, "Expected a {1} record, but got {2}.")                                               \
    X(WrongRepository, "{1}.{2} can only hold records of its own code descriptor.")                   \
    X(IndexOutOfRange, "Position {1} is out of range for {3}, which has {2} element(s).")             \
    X(OutOfRange, "The value {3} does not fit {1}.{2}.")                                              \
    X(TooDeep, "The records nest more than {1} levels deep.")                                         \
    X(BrokenSequence, "The code descriptor '{1}' is damaged: the positions of {2}.{3} of record {4} " \
          "are not 0, 1, 2, ...")
// clang-format on

namespace coder::messages {
namespace Repository {
#define VEL_DECLARE_MESSAGE_ID(key, text) inline constexpr char key[] = "coder:Repository:" #key;
VEL_CODER_REPOSITORY_MESSAGES(VEL_DECLARE_MESSAGE_ID)
#undef VEL_DECLARE_MESSAGE_ID
} // namespace Repository
namespace descriptor {
#define VEL_DECLARE_MESSAGE_ID(key, text) inline constexpr char key[] = "coder:descriptor:" #key;
VEL_CODER_DESCRIPTOR_MESSAGES(VEL_DECLARE_MESSAGE_ID)
#undef VEL_DECLARE_MESSAGE_ID
} // namespace descriptor
} // namespace coder::messages
