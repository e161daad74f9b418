#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "vel/HostExport.hpp"

namespace CG {

// A type of the code generator's intermediate representation: a named
// scalar, or a type built from others (structure, matrix, complex, pointer).
// Immutable; composite types share their parts.
class VELHOST_API Type {
public:
    enum class Kind { Void, Boolean, Integer, Float, Struct, Matrix, Complex, Pointer };
    using Ptr = std::shared_ptr<const Type>;
    struct Field {
        std::string name;
        Ptr type;
    };

    static Ptr voidType();
    static Ptr boolean(std::string name = "bool");
    static Ptr integer(std::string name, int bits, bool isSigned);
    static Ptr floating(std::string name, int bits);
    // Raise "CG:InvalidType" for a null part or a duplicate field name.
    static Ptr structure(std::string name, std::vector<Field> fields);
    static Ptr matrix(Ptr element, std::vector<std::int32_t> dimensions);
    static Ptr complex(Ptr element);
    static Ptr pointer(Ptr target);

    Kind getKind() const { return kind_; }
    // Empty for the unnamed constructed kinds (matrix, complex, pointer).
    const std::string& getName() const { return name_; }
    int getBits() const { return bits_; }
    bool isSigned() const { return signed_; }
    // The element, base or target of a constructed type; null otherwise.
    const Ptr& getBase() const { return base_; }
    const std::vector<std::int32_t>& getDimensions() const { return dimensions_; }
    const std::vector<Field>& getFields() const { return fields_; }

    // A C-like rendering: "int32_t", "struct Bus { int32_t a; double b; }",
    // "double[2][3]", "complex<double>", "int32_t*".
    std::string toString() const;

    struct Private;
    Type(const Private&, Kind kind, std::string name);

private:
    Kind kind_;
    std::string name_;
    int bits_ = 0;
    bool signed_ = false;
    Ptr base_;
    std::vector<std::int32_t> dimensions_;
    std::vector<Field> fields_;
};

} // namespace CG
