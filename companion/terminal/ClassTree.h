#pragma once

#include "companion/terminal/TerminalText.h"

#include <QString>

#include <boost/json/object.hpp>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace navrel {

/// What derives from what, as an indented list, from a view of types. Pure.
class ClassTree {
public:
    /// Both must outlive it.
    ClassTree(const boost::json::object& types, const TerminalText& text);

    /// Every type that others derive from, with those below it.
    QString all() const;
    /// What derives from one type, directly or not; empty where nothing does. Nothing where no type
    /// has this name, in whatever letter case.
    std::optional<QString> below(std::string_view name) const;

private:
    using Names = std::set<std::string>;

    void appendBelow(const std::string& name, int depth, Names& entered, QString& result) const;
    QString line(const boost::json::object& type) const;

    const TerminalText& text_;
    std::multimap<std::string, const boost::json::object*> derived_; ///< by what they derive from
    Names names_;                                                    ///< of all types
    Names children_; ///< of the types that derive from another
};

} // namespace navrel
