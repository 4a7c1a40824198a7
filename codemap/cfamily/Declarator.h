#pragma once

#include "codemap/cfamily/Head.h"

#include <cstddef>

namespace navrel::cfamily {

/// What one declarator of a head declares: "f" of "int *f(void)", "g" of "void (*g)(int)".
struct Declarator {
    NameRange name;
    bool isFunction = false;
    bool isOperator = false;
    /// Whether a type stands before the name. Constructors have none, nor have calls of macros.
    bool hasType = false;
    bool isAfterMacro = false;  ///< the call of a macro stands where the type would be
    std::size_t parameters = 0; ///< of a function: index of the opening parenthesis
    std::size_t end = 0; ///< index of the comma or other sign after it; the head's size without one
};

/// Reads the declarator that begins at an index. `hasType` says whether an earlier one of the same
/// declaration had a type, which goes for all. `className` is the class that the declaration is in:
/// its constructors have no type.
Declarator readDeclarator(const Head& head, std::size_t begin, bool hasType,
                          std::string_view className);

/// Whether a name's last part is its only one.
bool isQualified(const Head& head, NameRange name);

/// Whether a function's parameters look like the arguments of a constructor: a variable is defined.
bool looksLikeArguments(const Head& head, const Declarator& declarator);

/// Whether ";" ends the declaration of a parameter of a definition in the old style of C.
bool isOldStyleParameter(const Head& head);

} // namespace navrel::cfamily
