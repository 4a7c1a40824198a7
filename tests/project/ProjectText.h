#pragma once

#include <QByteArray>
#include <QByteArrayList>

namespace navrel {

/// Builds the text of a project file. Paths, names and types are put in quotes, not escaped.
class ProjectText {
public:
    /// Adds a group; an empty path or name is left out.
    ProjectText& group(const char* identifier, const QByteArrayList& children,
                       const QByteArray& path = "", const QByteArray& name = "") {
        return entry(identifier, "isa = PBXGroup;" + childrenPair(children) + pair("path", path) +
                                     pair("name", name));
    }

    /// Adds a file reference; an empty type or name is left out.
    ProjectText& file(const char* identifier, const QByteArray& path, const QByteArray& type = "",
                      const QByteArray& name = "") {
        return entry(identifier, "isa = PBXFileReference;" + pair("path", path) +
                                     pair("lastKnownFileType", type) + pair("name", name));
    }

    /// Adds any object; `body` is the text between its braces.
    ProjectText& entry(const QByteArray& identifier, const QByteArray& body) {
        objects_ += '"' + identifier + "\" = {" + body + "};\n";
        return *this;
    }

    /// The whole file. Its main group is the object "MAIN", which must have been added.
    QByteArray text() const {
        return "// !$*UTF8*$!\n{ archiveVersion = 1; objects = {\n" + objects_ +
               "PROJECT = {isa = PBXProject; mainGroup = MAIN;};\n}; rootObject = PROJECT; }\n";
    }

    static QByteArray childrenPair(const QByteArrayList& children) {
        QByteArray text = "children = (";
        for (const QByteArray& child : children) {
            text += '"' + child + "\", ";
        }
        return text + ");";
    }

private:
    static QByteArray pair(const char* key, const QByteArray& value) {
        return value.isEmpty() ? QByteArray() : QByteArray(key) + " = \"" + value + "\";";
    }

    QByteArray objects_;
};

} // namespace navrel
