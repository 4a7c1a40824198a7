#include "web/MapSource.h"

#include "codemap/CodeMapViews.h"

#include <boost/json.hpp>

namespace navrel {

MapSource mapSourceOf(CodeMap& map) {
    return {[&map] { return map.snapshot(); },
            [&map](CodeMap::Observer observer) { return map.addObserver(std::move(observer)); },
            [&map](std::uint64_t token) { map.removeObserver(token); }, &changesView};
}

} // namespace navrel
