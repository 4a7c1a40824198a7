#include "companion/terminal/CodeSource.h"

namespace navrel {

CodeAnswer CodeSource::missing(const std::string&) {
    return CodeAnswer::failure(
        CommandResult::notFound, QStringLiteral("A device is not served that."),
        QStringLiteral("Run navrel-companion without --device, as the user who runs Navrel."));
}

} // namespace navrel
