#include "coder/descriptor/System.hpp"

#include <cstdint>

#include "coder/Repository.hpp"

namespace coder::descriptor {

namespace {
enum Field : std::size_t { kIdentifier, kName };
enum List : std::size_t { kGraphicalCallSitesList };
} // namespace

const RecordKind& System::kind() {
    static const RecordKind kind{
        "System",
        {
            {"Identifier", FieldType::Text, false, nullptr, 0, 0},
            {"Name", FieldType::Text, false, nullptr, 0, 0},
        },
        {
            {"GraphicalCallSites", &GraphicalBlock::kind, FieldType::Reference},
        },
    };
    return kind;
}

ustring System::getIdentifier() const { return text(kIdentifier); }
ustring System::getName() const { return text(kName); }
Sequence<GraphicalBlock> System::getGraphicalCallSites() const {
    return Sequence<GraphicalBlock>(sequence(kGraphicalCallSitesList));
}

SystemCreator::SystemCreator(Repository& repository) : Creator(repository, System::kind()) {}

void SystemCreator::setIdentifier(const ustring& value) { setText(kIdentifier, value); }
void SystemCreator::setName(const ustring& value) { setText(kName, value); }

System SystemCreator::createSystem() { return objectAs<System>(create()); }

} // namespace coder::descriptor
