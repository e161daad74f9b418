// Data types in a description: modelling types, code-generation types with
// their members, and the intermediate-representation types that embedded
// types are built from.

#include <algorithm>
#include <memory>
#include <set>

#include "description/Diagnostics.hpp"
#include "description/Fields.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "velcg/CGModel.hpp"
#include "velcg/CGTypeMember.hpp"
#include "velcg/StoredVelType.hpp"
#include "velcg/VelCGType.hpp"

namespace VelCG::description {

namespace {

// Keys of an intermediate-representation type. Which a type has depends on
// its kind, so they are not a field table.
namespace ir {
constexpr const char* kKind = "kind";
constexpr const char* kName = "name";
constexpr const char* kBits = "bits";
constexpr const char* kIsSigned = "isSigned";
constexpr const char* kFields = "fields";
constexpr const char* kType = "type";
constexpr const char* kBase = "base";
constexpr const char* kDimensions = "dimensions";
} // namespace ir

const Enumeration<CG::Type::Kind>& kindNames() {
    using K = CG::Type::Kind;
    static const Enumeration<K> names = {
        {"Void", K::Void},     {"Boolean", K::Boolean}, {"Integer", K::Integer}, {"Float", K::Float},
        {"Struct", K::Struct}, {"Matrix", K::Matrix},   {"Complex", K::Complex}, {"Pointer", K::Pointer},
    };
    return names;
}

std::vector<std::string> keysOf(CG::Type::Kind kind) {
    using K = CG::Type::Kind;
    switch (kind) {
        case K::Void:
            return {ir::kKind};
        case K::Boolean:
            return {ir::kKind, ir::kName};
        case K::Integer:
            return {ir::kKind, ir::kName, ir::kBits, ir::kIsSigned};
        case K::Float:
            return {ir::kKind, ir::kName, ir::kBits};
        case K::Struct:
            return {ir::kKind, ir::kName, ir::kFields};
        case K::Matrix:
            return {ir::kKind, ir::kBase, ir::kDimensions};
        case K::Complex:
        case K::Pointer:
            return {ir::kKind, ir::kBase};
    }
    return {};
}

CG::Type::Ptr buildIRType(DescriptionReader& r, JsonValue v, const Place& place) {
    using K = CG::Type::Kind;
    const K kind = r.enumeration(r.required(v, place, ir::kKind), place / ir::kKind, kindNames());
    r.checkKnown(v, place, keysOf(kind));
    auto text = [&](const char* key) { return r.text(r.required(v, place, key), place / key); };
    auto int32 = [&](const char* key) { return r.int32(r.required(v, place, key), place / key); };
    auto base = [&] { return readIRType(r, r.required(v, place, ir::kBase), place / ir::kBase); };
    switch (kind) {
        case K::Void:
            return CG::Type::voidType();
        case K::Boolean:
            return CG::Type::boolean(text(ir::kName));
        case K::Integer: {
            const std::string name = text(ir::kName);
            const int bits = int32(ir::kBits);
            return CG::Type::integer(name, bits,
                                     r.boolean(r.required(v, place, ir::kIsSigned), place / ir::kIsSigned));
        }
        case K::Float: {
            const std::string name = text(ir::kName);
            return CG::Type::floating(name, int32(ir::kBits));
        }
        case K::Struct: {
            const std::string name = text(ir::kName);
            const Place fieldsPlace = place / ir::kFields;
            const JsonArray fields = r.array(r.required(v, place, ir::kFields), fieldsPlace);
            std::vector<CG::Type::Field> parts;
            for (const JsonValue field : fields) {
                const Place fieldPlace = fieldsPlace / parts.size();
                r.expectObject(field, fieldPlace);
                r.checkKnown(field, fieldPlace, {ir::kName, ir::kType});
                std::string fieldName =
                    r.text(r.required(field, fieldPlace, ir::kName), fieldPlace / ir::kName);
                parts.push_back({std::move(fieldName), readIRType(r, r.required(field, fieldPlace, ir::kType),
                                                                  fieldPlace / ir::kType)});
            }
            return CG::Type::structure(name, std::move(parts));
        }
        case K::Matrix: {
            CG::Type::Ptr element = base();
            return CG::Type::matrix(std::move(element),
                                    r.int32s(r.required(v, place, ir::kDimensions), place / ir::kDimensions));
        }
        case K::Complex:
            return CG::Type::complex(base());
        case K::Pointer:
            return CG::Type::pointer(base());
    }
    r.invalid(place, "unknown kind");
}

const FieldTable<CGTypeMember, const CGTypeMember>& memberFields() {
    static const auto table = [] {
        FieldTable<CGTypeMember, const CGTypeMember> t;
        t.text("name", &CGTypeMember::getName, &CGTypeMember::setName)
            .index("cgTypeIndex", ListKind::CGTypes, false, &CGTypeMember::getCGTypeIndex,
                   &CGTypeMember::setCGTypeIndex)
            .int32("alignment", &CGTypeMember::getAlignment, &CGTypeMember::setAlignment);
        return t;
    }();
    return table;
}

} // namespace

CG::Type::Ptr readIRType(DescriptionReader& reader, JsonValue value, const Place& place) {
    DescriptionReader::Nesting nesting(reader, place);
    reader.expectObject(value, place);
    try {
        return buildIRType(reader, value, place);
    } catch (const vel::diag::Exception& e) {
        // The type system refuses some parts (a duplicate field name, a
        // float of 16 bits); ours pass through unchanged.
        if (isDescriptionDiagnostic(e.identifier())) throw;
        reader.invalid(place, e.diagnostic().message());
    }
}

Json writeIRType(DescriptionWriter& writer, const CG::Type& type, const Place& place) {
    using K = CG::Type::Kind;
    Json out = Json::object();
    out[ir::kKind] = writer.enumeration(type.getKind(), place / ir::kKind, kindNames());
    switch (type.getKind()) {
        case K::Void:
            break;
        case K::Boolean:
            out[ir::kName] = writer.text(type.getName(), place / ir::kName);
            break;
        case K::Integer:
            out[ir::kName] = writer.text(type.getName(), place / ir::kName);
            out[ir::kBits] = type.getBits();
            out[ir::kIsSigned] = type.isSigned();
            break;
        case K::Float:
            out[ir::kName] = writer.text(type.getName(), place / ir::kName);
            out[ir::kBits] = type.getBits();
            break;
        case K::Struct: {
            out[ir::kName] = writer.text(type.getName(), place / ir::kName);
            Json fields = Json::array();
            const auto& parts = type.getFields();
            const Place fieldsPlace = place / ir::kFields;
            for (std::size_t i = 0; i < parts.size(); ++i) {
                const Place fieldPlace = fieldsPlace / i;
                Json field = Json::object();
                field[ir::kName] = writer.text(parts[i].name, fieldPlace / ir::kName);
                field[ir::kType] = writeIRType(writer, *parts[i].type, fieldPlace / ir::kType);
                fields.push_back(std::move(field));
            }
            out[ir::kFields] = std::move(fields);
            break;
        }
        case K::Matrix:
            out[ir::kBase] = writeIRType(writer, *type.getBase(), place / ir::kBase);
            out[ir::kDimensions] = type.getDimensions();
            break;
        case K::Complex:
        case K::Pointer:
            out[ir::kBase] = writeIRType(writer, *type.getBase(), place / ir::kBase);
            break;
    }
    return out;
}

const FieldTable<StoredVelType, const VelType>& velTypeFields() {
    using S = StoredVelType;
    using V = VelType;
    static const auto table = [] {
        FieldTable<S, const V> t;
        t.text("dtName", &V::getDTName, &V::setDTName)
            .int32("id", &V::getID, &V::setID)
            .index("cgTypeIdx", ListKind::CGTypes, true, &V::getCGTypeIdx, &V::setCGTypeIdx)
            .index("containerCGTypeIdx", ListKind::CGTypes, true, &V::getContainerCGTypeIdx,
                   &V::setContainerCGTypeIdx)
            .index("containerVelTypeIdx", ListKind::VelTypes, true, &V::getContainerVelTypeIdx,
                   &V::setContainerVelTypeIdx)
            .text("groundVariableName", &V::getGroundVariableName, &V::setGroundVariableName)
            .boolean("isShared", &V::isShared, &S::setIsShared)
            .boolean("isUserProvided", &V::isUserProvided, &S::setIsUserProvided)
            // Until set, the description and the header file are the
            // data-type name: written only when they differ from it.
            .field(
                "description",
                [](DescriptionWriter& w, const V& type, const Place& p) {
                    const std::string description = type.getDescription();
                    return description == type.getDTName() ? Json() : w.text(description, p);
                },
                [](DescriptionReader& r, JsonValue v, const Place& p, S& type) {
                    type.setDescription(r.text(v, p));
                })
            .int32("idAliasedTo", &V::getIdAliasedTo, &S::setIdAliasedTo)
            .int32("idAliasedThruTo", &V::getIdAliasedThruTo, &S::setIdAliasedThruTo)
            .field(
                "headerFile",
                [](DescriptionWriter& w, const V& type, const Place& p) {
                    return type.getHeaderFile() == type.getDTName() ? Json()
                                                                    : w.text(type.getHeaderFile(), p);
                },
                [](DescriptionReader& r, JsonValue v, const Place& p, S& type) {
                    type.setHeaderFile(r.text(v, p));
                })
            .boolean("isEnumType", &V::isEnumType, &S::setIsEnumType)
            .boolean("isStructType", &V::isStructType, &S::setIsStructType)
            .boolean("isBus", &V::isBus, &S::setIsBus);
        return t;
    }();
    return table;
}

const FieldTable<VelCGType, const VelCGType>& cgTypeFields() {
    using T = VelCGType;
    static const auto table = [] {
        FieldTable<T, const T> t;
        t.text("name", &T::getName, &T::setName)
            .index("velTypeIndex", ListKind::VelTypes, true, &T::getVelTypeIndex, &T::setVelTypeIndex)
            .int32("width", &T::getWidth, &T::setWidth)
            .text("symbolicWidth", &T::getSymbolicWidth, &T::setSymbolicWidth)
            .text("constructor", &T::getConstructor, &T::setConstructor)
            .index("baseIndex", ListKind::CGTypes, true, &T::getBaseIndex, &T::setBaseIndex)
            .int32s("dimensions", &T::getDimensions, &T::setDimensions)
            .texts("symbolicDimensions", &T::getSymbolicDimensions, &T::setSymbolicDimensions)
            .real("bias", &T::getBias, &T::setBias)
            .real("slope", &T::getSlope, &T::setSlope)
            .int32("nBits", &T::getNBits, &T::setNBits)
            .boolean("isSigned", &T::isSigned, &T::setIsSigned)
            .int32("exponent", &T::getExponent, &T::setExponent)
            .boolean("isLoweredMultiword", &T::isLoweredMultiword, &T::setIsLoweredMultiword)
            .int32("structAlignment", &T::getStructAlignment, &T::setStructAlignment)
            .list(
                "members", &T::getMembers,
                [](DescriptionWriter& w, const CGTypeMember* member, const Place& p) {
                    const CGTypeMember defaults;
                    return memberFields().write(w, *member, defaults, p);
                },
                [](DescriptionReader& r, JsonValue v, const Place& p, T& type) {
                    auto member = std::make_unique<CGTypeMember>();
                    memberFields().read(r, v, p, *member);
                    type.addMember(std::move(member));
                })
            .field(
                "embeddedType",
                [](DescriptionWriter& w, const T& type, const Place& p) {
                    const CG::EmbeddedType* embedded = type.getEmbeddedType();
                    return embedded ? writeIRType(w, embedded->getIRType(), p) : Json();
                },
                [](DescriptionReader& r, JsonValue v, const Place& p, T& type) {
                    type.setEmbeddedTypeFromCGType(*readIRType(r, v, p));
                });
        return t;
    }();
    return table;
}

void checkTypeChains(DescriptionReader& reader, const CGModel& model) {
    // A matrix type names its container through its base, recursively; a
    // constructed type without a base has no container at all.
    const auto& types = model.getVelCGTypes();
    auto pointerOf = [](std::size_t i) { return "/cgTypes/" + std::to_string(i) + "/baseIndex"; };
    auto isMatrix = [&](std::size_t i) { return types[i]->getConstructor() == "matrix"; };
    for (std::size_t i = 0; i < types.size(); ++i) {
        const std::string& constructor = types[i]->getConstructor();
        if ((constructor == "matrix" || constructor == "complex") && types[i]->getBaseIndex() == -1)
            reader.checkIndex(-1, Place(pointerOf(i)), "/cgTypes", types.size());
    }
    std::set<std::size_t> done;
    for (std::size_t i = 0; i < types.size(); ++i) {
        if (!isMatrix(i) || done.count(i)) continue;
        std::vector<std::size_t> walk{i};
        std::set<std::size_t> inWalk{i};
        for (std::size_t current = i;;) {
            const auto next = static_cast<std::size_t>(types[current]->getBaseIndex());
            if (!isMatrix(next) || done.count(next)) break;
            if (inWalk.count(next)) {
                std::string chain;
                for (std::size_t k = std::find(walk.begin(), walk.end(), next) - walk.begin();
                     k < walk.size(); ++k)
                    chain += std::to_string(walk[k]) + " -> ";
                reader.fail(messages::ModelDescription::Cycle, Place(pointerOf(current)),
                            {"matrix types built from each other: " + chain + std::to_string(next)});
            }
            walk.push_back(next);
            inWalk.insert(next);
            current = next;
        }
        done.insert(walk.begin(), walk.end());
    }
}

} // namespace VelCG::description
