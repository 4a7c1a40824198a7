#include "transport/frames/PTChannelDelegate.h"

namespace navrel {

// Never called: a delegate with one of these operations overrides it and says so.

bool PTChannelDelegate::ioFrameChannelShouldAcceptFrameOfType(const std::shared_ptr<PTChannel>&,
                                                              quint32, quint32, quint32) {
    return true;
}

void PTChannelDelegate::ioFrameChannelDidEndWithError(const std::shared_ptr<PTChannel>&,
                                                      const std::optional<Error>&) {}

void PTChannelDelegate::ioFrameChannelDidAcceptConnection(const std::shared_ptr<PTChannel>&,
                                                          const std::shared_ptr<PTChannel>&,
                                                          const std::shared_ptr<const PTAddress>&) {
}

} // namespace navrel
