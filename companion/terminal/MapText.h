#pragma once

#include "companion/terminal/TerminalText.h"

#include <QList>
#include <QPair>
#include <QString>

#include <boost/json/object.hpp>

namespace navrel {

/// The code map's views as a terminal shows them, line by line. Texts from the project are made
/// harmless. The functions take the views' JSON objects, and return text with a line feed at the
/// end of each line.
class MapText {
public:
    using Object = boost::json::object;

    explicit MapText(TerminalText text) : text_(text) {}

    QString tree(const Object& view) const;
    QString outline(const Object& view) const;
    /// Its lines, each with its number in the source. `lit` is the number of the line that the
    /// cursor's declaration begins in; 0 for none.
    QList<QPair<qint64, QString>> outlineLines(const Object& view, qint64 lit = 0) const;
    /// One group: its folders and files.
    QString group(const Object& node) const;
    QString search(const Object& view) const;
    QString types(const Object& view) const;
    QString notes(const Object& view) const;
    QString changes(const Object& view) const;

private:
    void appendNode(const Object& node, const QString& branches, const QString& branchesBelow,
                    QString& result) const;
    QString nodeLine(const Object& node) const;
    void appendSymbols(const Object& parent, const char* key, int depth,
                       QList<QPair<qint64, QString>>& lines) const;
    QString declaration(const Object& symbol) const;
    QString place(const Object& item) const;

    TerminalText text_;
};

} // namespace navrel
