#include "velcg/ChildCoderDataGroup.hpp"

#include "coder/descriptor/CoderGroup.hpp"
#include "vel/i18n/Text.hpp"

namespace VelCG {

ChildCoderDataGroup::~ChildCoderDataGroup() = default;

void ChildCoderDataGroup::WriteToBriskFile() const {}

namespace {

CoderDataGroup::AsStructure asStructureOf(const vel::i18n::ustring& text) {
    if (text == u"InParent") return CoderDataGroup::AsStructure::InParent;
    if (text == u"InSelf") return CoderDataGroup::AsStructure::InSelf;
    if (text == u"Standalone") return CoderDataGroup::AsStructure::Standalone;
    return CoderDataGroup::AsStructure::None;
}

} // namespace

ChildCoderDataGroup::ChildCoderDataGroup(const coder::descriptor::CoderGroup& group)
    : CoderDataGroup(vel::i18n::toUtf8(group.getName()), nullptr) {
    using vel::i18n::toUtf8;
    setRootGroupTypeName(toUtf8(group.getRootTypeName()));
    setStructureTypeNameRule(toUtf8(group.getStructureTypeNameRule()));
    setStructureInstanceNameRule(toUtf8(group.getStructureInstanceNameRule()));
    setSelfStructureInstanceNameRule(toUtf8(group.getSelfStructureInstanceNameRule()));
    setSelfStructureTypeNameRule(toUtf8(group.getSelfStructureTypeNameRule()));
    setStructureReferenceNameRule(toUtf8(group.getStructureReferenceNameRule()));
    setSelfStructureReferenceNameRule(toUtf8(group.getSelfStructureReferenceNameRule()));
    setStructureArgumentNameRule(toUtf8(group.getStructureArgumentNameRule()));
    setSelfStructureArgumentNameRule(toUtf8(group.getSelfStructureArgumentNameRule()));
    setHeaderFileRule(toUtf8(group.getHeaderFileRule()));
    setAsStructure(asStructureOf(group.getAsStructure()));
    setSelfGroup(group.getGroupSize() > 0);
}

} // namespace VelCG
