#pragma once

#include "codemap/Outline.h"
#include "codemap/cfamily/Head.h"

#include <cstddef>
#include <optional>
#include <string>

namespace navrel::cfamily {

/// What stands before the body of a type.
struct TypeHead {
    SymbolKind kind{};
    std::size_t keyword = 0; ///< index of the word "struct", "enum" …, or of the macro
    NameRange name;          ///< not valid for a type without a name
    std::string inherits;    ///< bases without their arguments, a line feed between two
};

/// The type whose body follows a head; nothing where the head is not one of a type.
std::optional<TypeHead> readTypeHead(const Head& head);

} // namespace navrel::cfamily
