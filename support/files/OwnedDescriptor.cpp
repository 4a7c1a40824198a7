#include "support/files/OwnedDescriptor.h"

#include <cerrno>
#include <unistd.h>

namespace navrel {

OwnedDescriptor& OwnedDescriptor::operator=(OwnedDescriptor&& other) noexcept {
    std::swap(value_, other.value_);
    return *this;
}

OwnedDescriptor::~OwnedDescriptor() {
    if (isValid()) {
        const int errnoValue = errno; // that of the failure which ends this socket
        ::close(value_);
        errno = errnoValue;
    }
}

} // namespace navrel
