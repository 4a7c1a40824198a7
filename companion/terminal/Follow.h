#pragma once

#include "companion/link/OwnerLink.h"
#include "companion/terminal/CodeSource.h"
#include "companion/terminal/MapText.h"
#include "companion/terminal/Output.h"

#include <QString>
#include <QStringList>

#include <boost/json/object.hpp>
#include <functional>
#include <string>

namespace navrel {

/// What a screen of `height` lines shows of an outline: all of it, or the part around the line at
/// `lit` (from 0; negative for none). Pure.
QStringList linesAround(const QStringList& lines, qsizetype lit, int height);

/// Shows the outline of the file in the editor, and lights the declaration that the cursor is in,
/// as the user moves.
class Follow {
public:
    struct World {
        const OwnerLink& link;
        CodeSource& source;
        TerminalText text;
        TerminalTraits traits;
        /// Draws over what stands on the screen; else each place is a line of its own.
        bool redraws = false;
        std::function<void(const QString& text)> print;
    };

    explicit Follow(World world) : world_(std::move(world)), mapText_(world_.text) {}

    /// Until `stopDescriptor` can be read, or Navrel goes.
    CommandResult run(int stopDescriptor);

private:
    using View = boost::json::object;

    void show(const View& active);
    void showPlace(const View& file, const View& symbol);
    void showOutline(const View& file, const View& symbol);

    World world_;
    MapText mapText_;
    std::string file_; ///< whose outline is known
    View outline_;
    QString lastPlace_;
};

} // namespace navrel
