#include "velcg/TemplateReference.hpp"

#include "MessageEntries.hpp"
#include "files/FileKindSections.hpp"
#include "scriv/BridgeAttributes.hpp"
#include "vel/diag/MessageCatalog.hpp"

namespace VelCG::reference {

const char* valueTypeName(ValueType type) {
    switch (type) {
        case ValueType::Boolean:
            return "boolean";
        case ValueType::String:
            return "string";
        case ValueType::StringList:
            return "string list";
        case ValueType::None:
            break;
    }
    return "";
}

std::string sectionLabel(VelCGFileSectionKind kind) {
    return kind == FORWARD_DECLS_SECTION ? "ForwardDecls" : getScrivSectionNameFromEnum(kind);
}

std::vector<FileKind> fileKinds() {
    std::vector<FileKind> out;
    for (int f = 0; f < files_detail::kNumberOfFileKinds; ++f) {
        const files_detail::FileKindNames& names = files_detail::kFileKindNames[f];
        FileKind kind{names.label, names.className, names.descriptionKinds, {}};
        for (const files_detail::SectionRow& row : files_detail::kSectionRows)
            if (row.slots[f].present) kind.sections.push_back(row.kind);
        out.push_back(std::move(kind));
    }
    return out;
}

std::vector<BridgeAttribute> bridgeAttributes() {
    std::vector<BridgeAttribute> out;
    for (const scriv_detail::AttributeRow& row : scriv_detail::attributeRows())
        out.push_back({row.name, row.readAs, row.setAs, row.description});
    return out;
}

std::vector<Message> templateMessages() {
    std::vector<Message> out;
    for (const messages_detail::MessageEntry& entry : messages_detail::messageEntries()) {
        if (!entry.advice) continue;
        // The host's own messages are listed with the host's text.
        std::string text = entry.text
                               ? entry.text
                               : vel::diag::MessageCatalog::instance().lookup(entry.identifier).value_or("");
        out.push_back({entry.identifier, std::move(text), entry.advice, entry.warning});
    }
    return out;
}

} // namespace VelCG::reference
