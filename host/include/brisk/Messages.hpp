#pragma once

// The messages of the host's catalogue Brisk:codeGen: each key with its template
// (arguments as {1}, {2}, ...). VEL_BRISK_CODEGEN_MESSAGES lists them once; this header
// turns the list into the identifier constants that raising code uses, and
// the host's MessageCatalog turns it into the catalogue's texts, so every
// identifier has a text.

// clang-format off
#define VEL_BRISK_CODEGEN_MESSAGES(X)                                                                     \
    X(CustomContentPreviousAssociation, "Custom section '{1}' cannot be associated with section "         \
          "'{2}': it is already associated with section '{3}'.")                                          \
    X(CustomContentSectionDoesNotExist, "Cannot add content to custom section '{2}' of file '{1}': "      \
          "the section has not been declared.")                                                           \
    X(CustomContentSectionAlreadyRetrieved, "The content of custom section '{1}' was already "            \
          "retrieved and cannot be retrieved again in {2}. Each custom section can be placed only once; " \
          "mark '{3}' as in use or remove the second placement.")                                         \
    X(CustomContentInvalidBuiltin, "Custom section '{1}' cannot be declared: '{2}' is not the name "      \
          "of a built-in file section.")
// clang-format on

namespace brisk::messages {
#define VEL_DECLARE_MESSAGE_ID(key, text) inline constexpr char key[] = "Brisk:codeGen:" #key;
VEL_BRISK_CODEGEN_MESSAGES(VEL_DECLARE_MESSAGE_ID)
#undef VEL_DECLARE_MESSAGE_ID
} // namespace brisk::messages
