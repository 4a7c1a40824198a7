#include "codemap/cfamily/Scopes.h"

#include "support/core/Assertion.h"

#include <algorithm>
#include <utility>

namespace navrel::cfamily {

Scopes::Scopes(OutlineBuilder& builder) : builder_(builder), scopes_(1) {}

void Scopes::open(Scope scope) {
    scope.parent = current_;
    scope.depth = static_cast<std::uint16_t>(current().depth + 1);
    current_ = static_cast<Number>(scopes_.size());
    scopes_.push_back(std::move(scope));
}

void Scopes::open(Scope scope, OutlineBuilder::Declaration declaration) {
    declaration.line = inOrder(declaration.line);
    builder_.open(declaration);
    scope.hasSymbol = true;
    open(std::move(scope));
}

void Scopes::add(OutlineBuilder::Declaration declaration, std::uint32_t endLine) {
    declaration.line = inOrder(declaration.line);
    lastEndLine_ = std::max({lastEndLine_, endLine, declaration.line});
    builder_.add(declaration, std::max(endLine, declaration.line));
}

void Scopes::close(std::uint32_t line) {
    NAVREL_ASSERT(current_ != 0);
    closeSymbol(line);
    current_ = current().parent;
}

void Scopes::restore(Number number, std::uint32_t line) {
    Number other = number;
    while (current_ != other) {
        if (current().depth >= at(other).depth) {
            close(line);
        } else {
            other = at(other).parent;
        }
    }
    current_ = number;
}

void Scopes::closeSymbol(std::uint32_t line) {
    if (current().hasSymbol) {
        lastEndLine_ = std::max({lastEndLine_, line, lastLine_});
        builder_.close(lastEndLine_);
        current().hasSymbol = false;
    }
}

std::uint32_t Scopes::inOrder(std::uint32_t line) {
    lastLine_ = std::max(lastLine_, line);
    return lastLine_;
}

} // namespace navrel::cfamily
