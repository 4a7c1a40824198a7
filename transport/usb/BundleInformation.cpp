#include "transport/usb/BundleInformation.h"

namespace navrel {

const BundleInformation& BundleInformation::mainBundle() {
    static const BundleInformation information = {QStringLiteral("Navrel"),
                                                  QStringLiteral(NAVREL_VERSION)};
    return information;
}

} // namespace navrel
