#pragma once

#include "app/StateSentences.h"

#include <QString>

#include <vector>

namespace navrel {

/// What the page about the program says of this installation.
struct AboutFacts {
    QString version;
    QString storeFolder;
    QString preferencesFile;
    std::vector<StateSentence> state = {}; ///< no section about it where there are none
};

/// The page about the program, as HTML of Qt's rich-text subset. Empty when the program lacks the
/// page.
QString aboutPage(const AboutFacts& facts);

} // namespace navrel
