#include "system/FileDescriptor.h"

#include <unistd.h>

namespace velmora {

FileDescriptor::~FileDescriptor() {
    if (m_descriptor >= 0) {
        ::close(m_descriptor);
    }
}

} // namespace velmora
