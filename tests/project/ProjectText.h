#pragma once

#include <QByteArray>
#include <QByteArrayList>

namespace navrel {

/// Composes the text of a project file.
class ProjectText {
public:
    /// A group; an empty path or name is left out.
    ProjectText& group(const char* identifier, const QByteArrayList& children,
                       const QByteArray& path = "", const QByteArray& name = "") {
        return entry(identifier,
                     "isa = PBXGroup;" + list(children) + pair("path", path) + pair("name", name));
    }

    /// A file reference; an empty type is left out.
    ProjectText& file(const char* identifier, const QByteArray& path, const QByteArray& type = "",
                      const QByteArray& name = "") {
        return entry(identifier, "isa = PBXFileReference;" + pair("path", path) +
                                     pair("lastKnownFileType", type) + pair("name", name));
    }

    /// Any object; `body` is what stands between its braces.
    ProjectText& entry(const QByteArray& identifier, const QByteArray& body) {
        objects_ += '"' + identifier + "\" = {" + body + "};\n";
        return *this;
    }

    /// The whole file, whose main group is "MAIN".
    QByteArray text() const {
        return "// !$*UTF8*$!\n{ archiveVersion = 1; objects = {\n" + objects_ +
               "PROJECT = {isa = PBXProject; mainGroup = MAIN;};\n}; rootObject = PROJECT; }\n";
    }

    static QByteArray list(const QByteArrayList& children) {
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
